// Exported derived-unit functions: the registered unit of a power, product
// or quotient of units, and the factors for integrating or deriving a
// quantity over a single base dimension.
#include "capi/Api.h"
#include "units/KVderived.h"

using namespace xun::capi;

namespace {

// Records why a derivation gave no unit; 1 when it did.
int Outcome(const char* function, XunDerived result, long first, long second) {
    switch (result) {
    case XunDerived::Ok:
        return 1;
    case XunDerived::UnknownFirst:
        return UnknownUnit(function, first);
    case XunDerived::UnknownSecond:
        return UnknownUnit(function, second);
    case XunDerived::NoUnitOfDimension:
        return xunFail_(XUN_ERR_NOT_FOUND, "%s: no registered unit has the derived dimension",
                        function);
    case XunDerived::CompositeVariable:
        return xunFail_(XUN_ERR_DIMENSION,
                        "%s: the variable %ld is not of a single base dimension", function,
                        second);
    case XunDerived::VariableNotInUnit:
        return xunFail_(XUN_ERR_DIMENSION,
                        "%s: the base dimension of the variable %ld does not occur in unit %ld",
                        function, second, first);
    }
    return 0;
}

template <class Derive>
int MatchSearch(const char* function, long first, long second, int* matchKey, int* eqvKey,
                double* factor, Derive derive) {
    return Guard(function, 0, [&] {
        if (matchKey == nullptr)
            return NullArgument(function, "matchKey");
        if (eqvKey == nullptr)
            return NullArgument(function, "eqvKey");
        if (factor == nullptr)
            return NullArgument(function, "factor");
        return Outcome(function, derive(matchKey, eqvKey, factor), first, second);
    });
}

template <class Derive>
int FactorSearch(const char* function, long unit, long variable, int* resultKey, int* inverseKey,
                 double* factor, Derive derive) {
    return Guard(function, 0, [&] {
        if (resultKey == nullptr)
            return NullArgument(function, "resultKey");
        if (inverseKey == nullptr)
            return NullArgument(function, "inverseKey");
        if (factor == nullptr)
            return NullArgument(function, "factor");
        return Outcome(function, derive(xunRegistries_().units, unit, variable, resultKey,
                                        inverseKey, factor),
                       unit, variable);
    });
}

} // namespace

extern "C" {

int xunUnitPower(int unit, int* matchKey, int* eqvKey, double* factor, double power) {
    return MatchSearch("xunUnitPower", unit, 0, matchKey, eqvKey, factor,
                       [&](int* m, int* e, double* f) {
                           return xunDerivePower_(Units(), unit, power, m, e, f);
                       });
}

int xunUnitMultiply(int unit1, int unit2, int* matchKey, int* eqvKey, double* factor) {
    return MatchSearch("xunUnitMultiply", unit1, unit2, matchKey, eqvKey, factor,
                       [&](int* m, int* e, double* f) {
                           return xunDeriveProduct_(Units(), unit1, unit2, m, e, f);
                       });
}

int xunUnitDivide(int unit1, int unit2, int* matchKey, int* eqvKey, double* factor) {
    return MatchSearch("xunUnitDivide", unit1, unit2, matchKey, eqvKey, factor,
                       [&](int* m, int* e, double* f) {
                           return xunDeriveQuotient_(Units(), unit1, unit2, m, e, f);
                       });
}

int xunUnitGetIntegrationFactor(int unit, int variable, int* resultKey, int* inverseKey,
                                double* factor) {
    return FactorSearch("xunUnitGetIntegrationFactor", unit, variable, resultKey, inverseKey,
                        factor, xunIntegrationFactor_);
}

int xunUnitGetDerivationFactor(int unit, int variable, int* resultKey, int* inverseKey,
                               double* factor) {
    return FactorSearch("xunUnitGetDerivationFactor", unit, variable, resultKey, inverseKey,
                        factor, xunDerivationFactor_);
}

} // extern "C"
