#include "units/KVexpr.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "registry/UnitRegistry.h"
#include "units/KVunit.h"

char szDecimalSymbol = ' ';

namespace {

const double kPi = 3.141592653589793;

// Shared by one top-level evaluation and all evaluations nested in it.
struct Budget {
    int evaluations = 0;
    bool exhausted = false;
};

typedef std::unique_ptr<CKVunit> UnitPtr;
typedef std::unique_ptr<double> NumberPtr;

// A "tmp" copy: every intermediate unit carries this name and key 1, which
// the caller overwrites. The copying constructor drops the offset.
UnitPtr TmpCopy(const CKVunit& source) {
    return UnitPtr(new CKVunit("tmp", "tmp", 1, source));
}

// The operand just read: a unit (borrowed from the registry or owned) and/or
// a number.
struct Operand {
    const CKVunit* unit = nullptr;
    UnitPtr ownedUnit;
    NumberPtr number;

    void Own(UnitPtr u) {
        ownedUnit = std::move(u);
        unit = ownedUnit.get();
    }
};

class Evaluator {
  public:
    Evaluator(const char* text, size_t length, int depth, Budget& budget)
        : m_text(text), m_length(length), m_depth(depth), m_budget(budget) {}

    // Scans the whole text; the accumulated results stay in m_unit and
    // m_value, also after a failure.
    bool Run();

    UnitPtr m_unit;
    NumberPtr m_value;

  private:
    bool Nested(const char* text, size_t length, UnitPtr& unit, NumberPtr& value);
    bool ReadParenthesis(Operand& operand);
    bool ReadNumber(Operand& operand);
    bool ReadName(Operand& operand);
    bool ApplySign(char sign, UnitPtr& rightUnit, NumberPtr& rightValue);
    bool Combine(Operand& operand);

    const char* m_text;
    size_t m_length;
    size_t m_pos = 0;
    char m_pending = 0;
    int m_depth;
    Budget& m_budget;
};

bool Evaluator::Nested(const char* text, size_t length, UnitPtr& unit, NumberPtr& value) {
    if (m_depth + 1 > kExprMaxDepth || ++m_budget.evaluations > kExprMaxEvaluations) {
        m_budget.exhausted = true;
        return false;
    }
    Evaluator inner(text, length, m_depth + 1, m_budget);
    bool ok = inner.Run();
    unit = std::move(inner.m_unit);
    value = std::move(inner.m_value);
    return ok && !m_budget.exhausted;
}

bool Evaluator::Run() {
    if (m_length < 1)
        return false;
    while (m_pos < m_length) {
        const char c = m_text[m_pos];
        Operand operand;
        if (c == '(') {
            if (!ReadParenthesis(operand))
                return false;
        } else if (std::isdigit(static_cast<unsigned char>(c))) {
            if (!ReadNumber(operand))
                return false;
        } else if (c == '*' || c == '/' || c == '^') {
            m_pending = c;
            ++m_pos;
            continue;
        } else if (c == '+' || c == '-') {
            // The whole rest is the right-hand side, so '+' and '-' bind
            // weakest and group to the right. When it evaluates, the scan
            // ends here. When it fails, the sign is skipped, what the failed
            // evaluation accumulated becomes the operand and the scan goes on
            // with the character after the sign.
            UnitPtr rightUnit;
            NumberPtr rightValue;
            if (Nested(m_text + m_pos + 1, m_length - m_pos - 1, rightUnit, rightValue)) {
                m_pos = m_length;
                return ApplySign(c, rightUnit, rightValue);
            }
            if (m_budget.exhausted)
                return false;
            ++m_pos;
            operand.Own(std::move(rightUnit));
            operand.number = std::move(rightValue);
        } else {
            if (!ReadName(operand))
                return false;
        }
        if (!Combine(operand))
            return false;
    }
    return true;
}

bool Evaluator::ReadParenthesis(Operand& operand) {
    int depth = 1;
    size_t close = m_pos + 1;
    for (; close < m_length; ++close) {
        if (m_text[close] == '(')
            ++depth;
        else if (m_text[close] == ')' && --depth == 0)
            break;
    }
    if (close >= m_length)
        return false;
    const size_t innerLength = close - m_pos - 1;
    // The copy is freed however the nested evaluation ends, also when an
    // exception leaves it (memory running out, or an assertion hook that
    // throws).
    std::unique_ptr<char, decltype(&std::free)> inner(
        static_cast<char*>(std::malloc(innerLength + 1)), &std::free);
    if (!inner)
        throw std::bad_alloc();
    std::memcpy(inner.get(), m_text + m_pos + 1, innerLength);
    inner.get()[innerLength] = '\0';
    UnitPtr unit;
    NumberPtr value;
    const bool ok = Nested(inner.get(), innerLength, unit, value);
    inner.reset();
    if (!ok)
        return false;
    operand.Own(std::move(unit));
    operand.number = std::move(value);
    m_pos = close + 1;
    return true;
}

// Number states: 1 integer part, 2 after the decimal symbol, 3 after an
// exponent letter, 4 after an exponent sign, 5 in the exponent digits.
bool Evaluator::ReadNumber(Operand& operand) {
    int state = 1;
    size_t end = m_pos;
    for (; end < m_length; ++end) {
        const char c = m_text[end];
        if (std::isdigit(static_cast<unsigned char>(c))) {
            if (state >= 3)
                state = 5;
        } else if (c == szDecimalSymbol && state == 1) {
            state = 2;
        } else if ((c == 'E' || c == 'e' || c == 'd' || c == 'D') && (state == 1 || state == 2)) {
            state = 3;
        } else if (c == '-' && state == 3) {
            state = 4;
        } else {
            break;
        }
    }
    if (state == 3 || state == 4)
        return false;
    const size_t length = end - m_pos;
    if (length > static_cast<size_t>(kExprMaxNumberLength))
        return false;
    // strtod does not know the exponent letters 'd' and 'D': "1d3" reads as 1.
    char buffer[kExprMaxNumberLength + 1] = {0};
    std::memcpy(buffer, m_text + m_pos, length);
    operand.number.reset(new double(std::strtod(buffer, nullptr)));
    m_pos = end;
    return true;
}

bool Evaluator::ReadName(Operand& operand) {
    size_t end = m_pos;
    while (end < m_length && std::isalnum(static_cast<unsigned char>(m_text[end])))
        ++end;
    const size_t length = end - m_pos;
    if (length == 0 || length > static_cast<size_t>(kExprMaxNameLength))
        return false;
    const std::string name(m_text + m_pos, length);
    m_pos = end;
    if (const CKVunit* unit = xunFindUnitByIdent_(name)) {
        operand.unit = unit;
        return true;
    }
    if (name == "pi") {
        operand.number.reset(new double(kPi));
        return true;
    }
    return false;
}

bool Evaluator::ApplySign(char sign, UnitPtr& rightUnit, NumberPtr& rightValue) {
    const bool minus = sign == '-';
    if (m_unit && rightValue) {
        const double s = minus ? -*rightValue : *rightValue;
        m_unit->m_dOffset += s;
        return true;
    }
    if (!m_unit && m_value && rightUnit) {
        // The offset set here is dropped again by the copy, so the result has
        // offset 0 and the accumulated number stays the numeric result.
        rightUnit->m_dOffset = (minus ? -rightUnit->m_dOffset : rightUnit->m_dOffset) + *m_value;
        m_unit = TmpCopy(*rightUnit);
        return true;
    }
    if (!rightValue)
        return false;
    const double s = minus ? -*rightValue : *rightValue;
    if (!m_value)
        m_value.reset(new double(s));
    else
        *m_value = *m_value + s;
    return true;
}

bool Evaluator::Combine(Operand& operand) {
    const char pending = m_pending;
    m_pending = 0;
    const CKVunit* unit = operand.unit;
    NumberPtr& number = operand.number;
    if (pending == 0 || (!m_unit && !m_value)) {
        if (unit) {
            if (m_unit)
                return false;
            m_unit = TmpCopy(*unit);
        }
        if (number) {
            if (m_value)
                return false;
            m_value = std::move(number);
        }
        return true;
    }
    if (pending == '*') {
        if (m_unit && number)
            m_unit = TmpCopy(*m_unit * *number);
        else if (m_value && !m_unit && unit) {
            m_unit = TmpCopy(*unit * *m_value);
            m_value.reset();
        } else if (m_value && number)
            *m_value = *m_value * *number;
        else if (m_unit && unit)
            m_unit = TmpCopy(*m_unit * *unit);
        return true;
    }
    if (pending == '/') {
        if (m_unit && number)
            m_unit = TmpCopy(*m_unit / *number);
        else if (m_value && !m_unit && unit) {
            m_unit = TmpCopy(*m_value / *unit);
            m_value.reset();
        } else if (m_value && number)
            *m_value = *m_value / *number;
        else if (m_unit && unit)
            m_unit = TmpCopy(*m_unit / *unit);
        return true;
    }
    // '^': a unit exponent is an error.
    if (m_unit && number)
        m_unit = TmpCopy(*m_unit ^ *number);
    else if (m_value && number)
        *m_value = std::pow(*m_value, *number);
    else if (unit)
        return false;
    return true;
}

void DetermineDecimalSymbol() {
    if (szDecimalSymbol != ' ')
        return;
    char text[64];
    std::snprintf(text, sizeof text, "%f", 1.1);
    szDecimalSymbol = text[1];
}

} // namespace

bool bEvaluateExpression(const char* expr, CKVunit** unit, double** value) {
    *unit = nullptr;
    *value = nullptr;
    DetermineDecimalSymbol();
    Budget budget;
    Evaluator evaluator(expr, std::strlen(expr), 0, budget);
    bool ok = evaluator.Run();
    *unit = evaluator.m_unit.release();
    *value = evaluator.m_value.release();
    return ok;
}
