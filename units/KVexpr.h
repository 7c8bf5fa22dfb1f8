// The unit-expression evaluator: turns a text such as "km/h" or "meter*1000"
// into a new unit and/or a number, over the units registered by ident.
#pragma once

class CKVunit;

// The process-wide decimal symbol for number tokens; ' ' until the first
// evaluation takes it from the current locale.
extern char szDecimalSymbol;

// Limits that replace fixed-size buffers: a longer name or number token makes
// the evaluation fail. Nothing else is limited: nesting of parentheses and
// signs is bounded by memory alone, and the time spent is polynomial in the
// length of the text.
const int kExprMaxNameLength = 127;
const int kExprMaxNumberLength = 23;

// Evaluates expr, left to right without precedence. Both outputs are set to
// null first; whatever they hold on return, also after a failure, belongs to
// the caller. Returns true on success.
bool bEvaluateExpression(const char* expr, CKVunit** unit, double** value);
