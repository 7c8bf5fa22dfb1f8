#include "registry/Registries.h"

#include <stdexcept>

#include "units/KVexpr.h"

// Never destroyed: the objects of the process-wide registry live until the
// process ends, also while other static objects are destroyed.
CKVregistries* xunRegistriesInstance_ = new CKVregistries();

void xunResetRegistries_() {
    CKVregistries* old = xunRegistriesInstance_;
    xunRegistriesInstance_ = new CKVregistries();
    delete old;
}

void xunReplaceRegistries_(std::unique_ptr<CKVregistries> registries) {
    CKVregistries* old = xunRegistriesInstance_;
    xunRegistriesInstance_ = registries.release();
    delete old;
}

bool bEvaluateExpression(const char* expr, CKVunit** unit, double** value) {
    return xunEvaluateExpression_(expr, xunRegistries_().units, unit, value);
}

std::unique_ptr<CKVregistries> CKVregistries::Copy() const {
    std::unique_ptr<CKVregistries> copy(new CKVregistries());
    for (const CKVunit* unit : units) {
        std::unique_ptr<CKVunit> clone = xunCloneUnit_(*unit);
        if (!copy->units.Add(clone, false))
            throw std::logic_error("registry copy: a unit could not be added");
    }
    for (const CKVitemType* item : itemTypes) {
        std::unique_ptr<CKVdimension> dimension(
            item->m_pDimension != nullptr ? new CKVdimension(*item->m_pDimension) : nullptr);
        std::unique_ptr<CKVitemType> clone(
            new CKVitemType(item->m_strKey, item->m_nNumId, item->m_strIdent,
                            dimension ? *dimension : CKVdimension::GetNonDim()));
        if (!dimension)
            clone->m_pDimension = nullptr;
        clone->m_lUserUnit = item->m_lUserUnit;
        clone->m_lFilter = item->m_lFilter;
        clone->m_nFileItem = item->m_nFileItem;
        clone->m_nDecimals = item->m_nDecimals;
        clone->m_dDefault = item->m_dDefault;
        for (const CKVunit* allowed : item->m_lstUnits)
            clone->m_lstUnits.push_back(copy->units.FindByKey(allowed->m_lKey));
        if (!copy->itemTypes.Add(clone, dimension))
            throw std::logic_error("registry copy: an item type could not be added");
    }
    for (const CKVfilter* filter : filters) {
        std::unique_ptr<CKVfilter> clone(new CKVfilter(filter->m_strKey, filter->m_lKey));
        clone->m_strIdent = filter->m_strIdent;
        if (!copy->filters.Add(clone))
            throw std::logic_error("registry copy: a filter could not be added");
    }
    return copy;
}

void CKVregistries::CheckInvariants() const {
    units.CheckInvariants();
    itemTypes.CheckInvariants();
    filters.CheckInvariants();
    for (const CKVitemType* item : itemTypes) {
        for (const CKVunit* allowed : item->m_lstUnits) {
            if (units.FindByKey(allowed->m_lKey) != allowed)
                throw std::logic_error("registries: an allowed unit is not a registered unit");
            if (item->m_pDimension == nullptr || !allowed->IsEqv(*item->m_pDimension))
                throw std::logic_error("registries: an allowed unit of another dimension");
        }
    }
}
