// Derived units: the registered unit that is a power, product or quotient of
// units, and the factors for integrating or deriving a quantity over a
// single base dimension.
#include <cmath>

#include "registry/UnitRegistry.h"
#include "units/KVunit.h"
#include "xun.h"

namespace {

const double kMatchTolerance = 1e-12;
const double kFactorTolerance = 1e-14;

// Looks for the registered unit that equals the derived unit d: same
// dimension and the same factor within a relative difference of 1e-12.
int FindDerived(const CKVunit& d, int* matchKey, int* eqvKey, double* factor) {
    for (const CKVunit* w : UnitList_) {
        if (w == nullptr || !w->IsEqv(d))
            continue;
        if (*eqvKey == 0) {
            const CKVunit* first = xunFirstEqvUnit_(w->GetDim());
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
    return *eqvKey != 0 ? 1 : 0;
}

// Integration (derive = false) or derivation of a quantity in unit over a
// variable of a single base dimension.
int IntegrationOrDerivation(bool derive, int unitKey, int variableKey, int* resultKey,
                            int* inverseKey, double* factor) {
    *resultKey = unitKey;
    *inverseKey = 0;
    *factor = 1.0;
    const CKVunit* unit = xunFindUnitByKey_(unitKey);
    const CKVunit* variable = xunFindUnitByKey_(variableKey);
    if (unit == nullptr || variable == nullptr)
        return 0;
    const int k = variable->GetDim().GetDimType();
    if (k < 1 || k > CKVdimension::kBaseCount)
        return 0;
    const double e = unit->GetDim().GetPower(k);
    const double fu = unit->m_dDimFactors[k - 1];
    const double fx = variable->m_dDimFactors[k - 1];
    if (e == 0.0)
        return 0;
    const double s = derive ? std::pow(fu, 1.0 / e) / fx : fx * std::pow(fu, -1.0 / e);
    double correction[CKVdimension::kBaseCount];
    for (double& slot : correction)
        slot = 1.0;
    correction[k - 1] = s;
    *factor = s;
    *resultKey = 0;

    const CKVunit r(derive ? *unit / *variable : *unit * *variable);
    for (const CKVunit* w : UnitList_) {
        if (w == nullptr || !w->IsEqv(r))
            continue;
        bool same = std::fabs(1 - r.m_dFactor / (w->m_dFactor * s)) < kFactorTolerance;
        for (int i = 0; same && i < CKVdimension::kBaseCount; ++i)
            same = std::fabs(1 - r.m_dDimFactors[i] / (w->m_dDimFactors[i] * correction[i])) <
                   kFactorTolerance;
        if (same) {
            *resultKey = static_cast<int>(w->m_lKey);
            break;
        }
    }

    const CKVunit q(*unit / r);
    for (const CKVunit* w : UnitList_) {
        if (w == nullptr || !w->IsEqv(q))
            continue;
        bool same = std::fabs(1 - s * q.m_dFactor / w->m_dFactor) < kFactorTolerance;
        for (int i = 0; same && i < CKVdimension::kBaseCount; ++i)
            same = std::fabs(1 - q.m_dDimFactors[i] * correction[i] / w->m_dDimFactors[i]) <
                   kFactorTolerance;
        if (same) {
            *inverseKey = static_cast<int>(w->m_lKey);
            break;
        }
    }
    return 1;
}

} // namespace

extern "C" {

int xunUnitPower(int unit, int* matchKey, int* eqvKey, double* factor, double power) {
    *factor = 1.0;
    *matchKey = 0;
    *eqvKey = 0;
    const CKVunit* u = xunFindUnitByKey_(unit);
    if (u == nullptr)
        return 0;
    const CKVunit d(*u ^ power);
    return FindDerived(d, matchKey, eqvKey, factor);
}

int xunUnitMultiply(int unit1, int unit2, int* matchKey, int* eqvKey, double* factor) {
    *factor = 1.0;
    *matchKey = 0;
    *eqvKey = 0;
    const CKVunit* u1 = xunFindUnitByKey_(unit1);
    const CKVunit* u2 = xunFindUnitByKey_(unit2);
    if (u1 == nullptr || u2 == nullptr)
        return 0;
    const CKVunit d(*u1 * *u2);
    return FindDerived(d, matchKey, eqvKey, factor);
}

int xunUnitDivide(int unit1, int unit2, int* matchKey, int* eqvKey, double* factor) {
    *factor = 1.0;
    *matchKey = 0;
    *eqvKey = 0;
    const CKVunit* u1 = xunFindUnitByKey_(unit1);
    const CKVunit* u2 = xunFindUnitByKey_(unit2);
    if (u1 == nullptr || u2 == nullptr)
        return 0;
    const CKVunit d(*u1 / *u2);
    return FindDerived(d, matchKey, eqvKey, factor);
}

int xunUnitGetIntegrationFactor(int unit, int variable, int* resultKey, int* inverseKey,
                                double* factor) {
    return IntegrationOrDerivation(false, unit, variable, resultKey, inverseKey, factor);
}

int xunUnitGetDerivationFactor(int unit, int variable, int* resultKey, int* inverseKey,
                               double* factor) {
    return IntegrationOrDerivation(true, unit, variable, resultKey, inverseKey, factor);
}

} // extern "C"
