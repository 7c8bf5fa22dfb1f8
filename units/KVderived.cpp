#include "units/KVderived.h"

#include <cmath>

#include "units/KVunit.h"

namespace {

const double kMatchTolerance = 1e-12;
const double kFactorTolerance = 1e-14;

// Looks for the registered unit that equals the derived unit d: same
// dimension and the same factor within a relative difference of 1e-12.
XunDerived FindDerived(const IUnitSet& units, const CKVunit& d, int* matchKey, int* eqvKey,
                       double* factor) {
    const std::size_t count = units.UnitCount();
    for (std::size_t i = 0; i < count; ++i) {
        const CKVunit* w = units.UnitAt(i);
        if (w == nullptr || !w->IsEqv(d))
            continue;
        if (*eqvKey == 0) {
            const CKVunit* first = xunFirstUnitOfDimension_(units, w->GetDim());
            if (first != nullptr)
                *eqvKey = static_cast<int>(first->m_lKey);
            *factor = d.m_dFactor;
        }
        const double df = d.m_dFactor;
        const double wf = w->m_dFactor;
        if (df == wf ||
            std::fabs(df - wf) / std::fmax(std::fabs(df), std::fabs(wf)) <= kMatchTolerance) {
            *matchKey = static_cast<int>(w->m_lKey);
            break;
        }
    }
    return *eqvKey != 0 ? XunDerived::Ok : XunDerived::NoUnitOfDimension;
}

void Start(int* matchKey, int* eqvKey, double* factor) {
    *factor = 1.0;
    *matchKey = 0;
    *eqvKey = 0;
}

// Integration (derive = false) or derivation of a quantity in unit over a
// variable of a single base dimension.
XunDerived IntegrationOrDerivation(const IUnitSet& units, bool derive, long unitKey,
                                   long variableKey, int* resultKey, int* inverseKey,
                                   double* factor) {
    *resultKey = static_cast<int>(unitKey);
    *inverseKey = 0;
    *factor = 1.0;
    const CKVunit* unit = units.FindUnitByKey(unitKey);
    const CKVunit* variable = units.FindUnitByKey(variableKey);
    if (unit == nullptr)
        return XunDerived::UnknownFirst;
    if (variable == nullptr)
        return XunDerived::UnknownSecond;
    const int k = variable->GetDim().GetDimType();
    if (k < 1 || k > CKVdimension::kBaseCount)
        return XunDerived::CompositeVariable;
    const double e = unit->GetDim().GetPower(k);
    const double fu = unit->m_dDimFactors[k - 1];
    const double fx = variable->m_dDimFactors[k - 1];
    if (e == 0.0)
        return XunDerived::VariableNotInUnit;
    const double s = derive ? std::pow(fu, 1.0 / e) / fx : fx * std::pow(fu, -1.0 / e);
    double correction[CKVdimension::kBaseCount];
    for (double& slot : correction)
        slot = 1.0;
    correction[k - 1] = s;
    *factor = s;
    *resultKey = 0;

    const std::size_t count = units.UnitCount();
    const CKVunit r(derive ? *unit / *variable : *unit * *variable);
    for (std::size_t i = 0; i < count; ++i) {
        const CKVunit* w = units.UnitAt(i);
        if (w == nullptr || !w->IsEqv(r))
            continue;
        bool same = std::fabs(1 - r.m_dFactor / (w->m_dFactor * s)) < kFactorTolerance;
        for (int j = 0; same && j < CKVdimension::kBaseCount; ++j)
            same = std::fabs(1 - r.m_dDimFactors[j] / (w->m_dDimFactors[j] * correction[j])) <
                   kFactorTolerance;
        if (same) {
            *resultKey = static_cast<int>(w->m_lKey);
            break;
        }
    }

    const CKVunit q(*unit / r);
    for (std::size_t i = 0; i < count; ++i) {
        const CKVunit* w = units.UnitAt(i);
        if (w == nullptr || !w->IsEqv(q))
            continue;
        bool same = std::fabs(1 - s * q.m_dFactor / w->m_dFactor) < kFactorTolerance;
        for (int j = 0; same && j < CKVdimension::kBaseCount; ++j)
            same = std::fabs(1 - q.m_dDimFactors[j] * correction[j] / w->m_dDimFactors[j]) <
                   kFactorTolerance;
        if (same) {
            *inverseKey = static_cast<int>(w->m_lKey);
            break;
        }
    }
    return XunDerived::Ok;
}

} // namespace

const CKVunit* xunFirstUnitOfDimension_(const IUnitSet& units, const CKVdimension& dim) {
    const std::size_t count = units.UnitCount();
    for (std::size_t i = 0; i < count; ++i) {
        const CKVunit* unit = units.UnitAt(i);
        if (unit != nullptr && unit->IsEqv(dim) && unit->m_lKey != 0)
            return unit;
    }
    return nullptr;
}

XunDerived xunDerivePower_(const IUnitSet& units, long unit, double power, int* matchKey,
                           int* eqvKey, double* factor) {
    Start(matchKey, eqvKey, factor);
    const CKVunit* u = units.FindUnitByKey(unit);
    if (u == nullptr)
        return XunDerived::UnknownFirst;
    const CKVunit d(*u ^ power);
    return FindDerived(units, d, matchKey, eqvKey, factor);
}

namespace {

// The product or quotient of two registered units, searched for.
template <class Combine>
XunDerived DeriveFromTwo(const IUnitSet& units, long unit1, long unit2, int* matchKey, int* eqvKey,
                         double* factor, Combine combine) {
    Start(matchKey, eqvKey, factor);
    const CKVunit* u1 = units.FindUnitByKey(unit1);
    const CKVunit* u2 = units.FindUnitByKey(unit2);
    if (u1 == nullptr)
        return XunDerived::UnknownFirst;
    if (u2 == nullptr)
        return XunDerived::UnknownSecond;
    const CKVunit d(combine(*u1, *u2));
    return FindDerived(units, d, matchKey, eqvKey, factor);
}

} // namespace

XunDerived xunDeriveProduct_(const IUnitSet& units, long unit1, long unit2, int* matchKey,
                             int* eqvKey, double* factor) {
    return DeriveFromTwo(units, unit1, unit2, matchKey, eqvKey, factor,
                         [](const CKVunit& a, const CKVunit& b) { return a * b; });
}

XunDerived xunDeriveQuotient_(const IUnitSet& units, long unit1, long unit2, int* matchKey,
                              int* eqvKey, double* factor) {
    return DeriveFromTwo(units, unit1, unit2, matchKey, eqvKey, factor,
                         [](const CKVunit& a, const CKVunit& b) { return a / b; });
}

XunDerived xunIntegrationFactor_(const IUnitSet& units, long unit, long variable, int* resultKey,
                                 int* inverseKey, double* factor) {
    return IntegrationOrDerivation(units, false, unit, variable, resultKey, inverseKey, factor);
}

XunDerived xunDerivationFactor_(const IUnitSet& units, long unit, long variable, int* resultKey,
                                int* inverseKey, double* factor) {
    return IntegrationOrDerivation(units, true, unit, variable, resultKey, inverseKey, factor);
}
