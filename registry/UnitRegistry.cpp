#include "registry/UnitRegistry.h"

CKVunitList UnitList_;
CKVunitMap UnitMap_;
CKVunitStringMap UnitStringMap_;

namespace {
// The find cache: the unit found by the last successful search and its place.
const CKVunit* PrevFoundUn = nullptr;
CKVunitList::iterator PrevFoundPos;
bool PrevFoundPosSet = false;
} // namespace

CKVunit* xunFindUnitByKey_(long key) {
    CKVunitMap::const_iterator it = UnitMap_.find(key);
    return it == UnitMap_.end() ? nullptr : it->second;
}

CKVunit* xunFindUnitByIdent_(const std::string& ident) {
    CKVunitStringMap::const_iterator it = UnitStringMap_.find(ident);
    return it == UnitStringMap_.end() ? nullptr : it->second;
}

int AddUnit_(CKVunit& unit, int atFront) {
    const long key = unit.m_lKey;
    const std::string& ident = unit.m_strIdent;
    if (xunFindUnitByKey_(key) != nullptr || xunFindUnitByIdent_(ident) != nullptr)
        return 0;
    if (atFront)
        UnitList_.push_front(&unit);
    else
        UnitList_.push_back(&unit);
    UnitMap_[key] = &unit;
    UnitStringMap_[ident] = &unit;
    return 1;
}

CKVunitList::iterator xunFindUnit_(const CKVunit* unit) {
    if (!PrevFoundPosSet) {
        PrevFoundPos = UnitList_.begin();
        PrevFoundPosSet = true;
    }
    CKVunitList::iterator it = (unit == PrevFoundUn) ? PrevFoundPos : UnitList_.begin();
    for (; it != UnitList_.end(); ++it) {
        if (*it == unit) {
            PrevFoundUn = unit;
            PrevFoundPos = it;
            return it;
        }
    }
    return UnitList_.end();
}

void xunRemoveUnit_(const CKVunit* unit) {
    CKVunitStringMap::iterator byIdent = UnitStringMap_.find(unit->m_strIdent);
    if (byIdent != UnitStringMap_.end() && byIdent->second == unit)
        UnitStringMap_.erase(byIdent);
    CKVunitMap::iterator byKey = UnitMap_.find(unit->m_lKey);
    if (byKey != UnitMap_.end() && byKey->second == unit)
        UnitMap_.erase(byKey);
    for (CKVunitList::iterator it = UnitList_.begin(); it != UnitList_.end(); ++it) {
        if (*it == unit) {
            UnitList_.erase(it);
            break;
        }
    }
    PrevFoundUn = nullptr;
    PrevFoundPosSet = false;
}
