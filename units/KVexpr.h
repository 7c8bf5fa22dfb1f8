// The unit-expression evaluator: turns a text such as "km/h" or "meter*1000"
// into a new unit and/or a number, over the units registered by ident.
#pragma once

class CKVunit;

// The process-wide decimal symbol for number tokens; ' ' until the first
// evaluation takes it from the current locale.
extern char szDecimalSymbol;

// Limits that replace fixed-size buffers: a longer name or number token makes
// the evaluation fail.
const int kExprMaxNameLength = 127;
const int kExprMaxNumberLength = 23;
// Nesting depth of parentheses and signs, and the number of nested
// evaluations one call may start; beyond either the evaluation fails. They
// bound the stack and the time spent on pathological texts (a failed
// evaluation after a sign rescans the rest, which could otherwise take
// exponential time).
const int kExprMaxDepth = 200;
const int kExprMaxEvaluations = 10000;

// Evaluates expr, left to right without precedence. Both outputs are set to
// null first; whatever they hold on return, also after a failure, belongs to
// the caller. Returns true on success.
bool bEvaluateExpression(const char* expr, CKVunit** unit, double** value);
