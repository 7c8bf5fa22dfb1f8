// Derived units: the registered unit that is a power, product or quotient
// of units, and the factors for integrating or deriving a quantity over a
// single base dimension. The searches walk the units of an IUnitSet in
// registration order.
#pragma once

#include "units/KVdim.h"
#include "units/UnitSet.h"

// Why a derivation gives no unit (Ok: it did).
enum class XunDerived {
    Ok,
    UnknownFirst,       // the (first) unit key names no unit
    UnknownSecond,      // the second unit key (or the variable) names no unit
    NoUnitOfDimension,  // no registered unit has the derived dimension
    CompositeVariable,  // the variable is not of a single base dimension
    VariableNotInUnit,  // the variable's base dimension does not occur in the unit
};

// The outputs are written as the exported functions write them: first the
// initial values (factor 1, keys 0; for the integration and derivation
// factors resultKey = unit), then what the search finds.
XunDerived xunDerivePower_(const IUnitSet& units, long unit, double power, int* matchKey,
                           int* eqvKey, double* factor);
XunDerived xunDeriveProduct_(const IUnitSet& units, long unit1, long unit2, int* matchKey,
                             int* eqvKey, double* factor);
XunDerived xunDeriveQuotient_(const IUnitSet& units, long unit1, long unit2, int* matchKey,
                              int* eqvKey, double* factor);
XunDerived xunIntegrationFactor_(const IUnitSet& units, long unit, long variable, int* resultKey,
                                 int* inverseKey, double* factor);
XunDerived xunDerivationFactor_(const IUnitSet& units, long unit, long variable, int* resultKey,
                                int* inverseKey, double* factor);

// The first unit in registration order of the given dimension whose key is
// not 0; null when there is none.
const CKVunit* xunFirstUnitOfDimension_(const IUnitSet& units, const CKVdimension& dim);
