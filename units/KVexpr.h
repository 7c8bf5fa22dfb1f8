// The unit-expression evaluator: turns a text such as "km/h" or "meter*1000"
// into a new unit and/or a number, over units looked up by ident.
#pragma once

#include "common/Contract.h"

class CKVunit;
class IUnitSet;

// The process-wide decimal symbol for number tokens; ' ' until the first
// evaluation takes it from the current locale.
extern char szDecimalSymbol;

// Limits that replace fixed-size buffers: a longer name or number token makes
// the evaluation fail. Nothing else is limited: nesting of parentheses and
// signs is bounded by memory alone, and the time spent is polynomial in the
// length of the text.
const int kExprMaxNameLength = xun::contract::kExprMaxNameLength;
const int kExprMaxNumberLength = xun::contract::kExprMaxNumberLength;

// Evaluates expr, left to right without precedence, over the units of
// units. Both outputs are set to null first; whatever they hold on return,
// also after a failure, belongs to the caller. Returns true on success.
bool xunEvaluateExpression_(const char* expr, const IUnitSet& units, CKVunit** unit,
                            double** value);

// The same over the process-wide unit registry (defined with the registry).
bool bEvaluateExpression(const char* expr, CKVunit** unit, double** value);
