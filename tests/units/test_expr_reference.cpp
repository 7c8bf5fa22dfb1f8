// The evaluator against a plain reference: the designed scan written as
// directly as possible - a copy of the text between parentheses, a
// recursion per nesting level, the rest after a sign evaluated again
// wherever the scan meets it - which takes exponential time on some texts
// and so can only run on short ones. On many random short texts over a
// small alphabet (units, numbers, "pi", an unknown name, every operator,
// parentheses, a blank) both must agree on everything: success, and the
// unit (factor, offset, dimension, per-dimension factors, key) and number
// they accumulate, also after a failure.
#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "unit_fixture.h"
#include "common/Assert.h"
#include "units/KVexpr.h"
#include "registry_access.h"

namespace {

using xuntest::Define;
using xuntest::RegisterBaseUnits;
using xuntest::RegisterUnit;

typedef std::unique_ptr<CKVunit> UnitPtr;
typedef std::unique_ptr<double> NumberPtr;

UnitPtr Tmp(const CKVunit& source) {
    return UnitPtr(new CKVunit("tmp", "tmp", 1, source));
}

// The reference scan of one text (a NUL-terminated copy).
class Reference {
  public:
    explicit Reference(const std::string& text) : m_text(text) {}

    bool Run() {
        if (m_text.empty())
            return false;
        size_t pos = 0;
        while (pos < m_text.size()) {
            const char c = m_text[pos];
            const CKVunit* unit = nullptr;
            UnitPtr owned;
            NumberPtr number;
            if (c == '(') {
                int depth = 1;
                size_t close = pos + 1;
                for (; close < m_text.size(); ++close) {
                    if (m_text[close] == '(')
                        ++depth;
                    else if (m_text[close] == ')' && --depth == 0)
                        break;
                }
                if (close >= m_text.size())
                    return false;
                Reference inner(m_text.substr(pos + 1, close - pos - 1));
                if (!inner.Run())
                    return false;
                owned = std::move(inner.unit);
                unit = owned.get();
                number = std::move(inner.value);
                pos = close + 1;
            } else if (std::isdigit(static_cast<unsigned char>(c))) {
                int state = 1;
                size_t end = pos;
                for (; end < m_text.size(); ++end) {
                    const char d = m_text[end];
                    if (std::isdigit(static_cast<unsigned char>(d))) {
                        if (state >= 3)
                            state = 5;
                    } else if (d == szDecimalSymbol && state == 1) {
                        state = 2;
                    } else if ((d == 'E' || d == 'e' || d == 'd' || d == 'D') &&
                               (state == 1 || state == 2)) {
                        state = 3;
                    } else if (d == '-' && state == 3) {
                        state = 4;
                    } else {
                        break;
                    }
                }
                if (state == 3 || state == 4 || end - pos > 23)
                    return false;
                number.reset(
                    new double(std::strtod(m_text.substr(pos, end - pos).c_str(), nullptr)));
                pos = end;
            } else if (c == '*' || c == '/' || c == '^') {
                pending = c;
                ++pos;
                continue;
            } else if (c == '+' || c == '-') {
                Reference right(m_text.substr(pos + 1));
                if (right.Run())
                    return ApplySign(c, right);
                ++pos;
                owned = std::move(right.unit);
                unit = owned.get();
                number = std::move(right.value);
            } else {
                size_t end = pos;
                while (end < m_text.size() && std::isalnum(static_cast<unsigned char>(m_text[end])))
                    ++end;
                const std::string name = m_text.substr(pos, end - pos);
                if (name.empty() || name.size() > 127)
                    return false;
                pos = end;
                unit = xuntest::UnitByIdent(name);
                if (unit == nullptr) {
                    if (name != "pi")
                        return false;
                    number.reset(new double(3.141592653589793));
                }
            }
            if (!Combine(unit, number))
                return false;
        }
        return true;
    }

    UnitPtr unit;
    NumberPtr value;
    char pending = 0;

  private:
    bool ApplySign(char sign, Reference& right) {
        const bool minus = sign == '-';
        if (unit && right.value) {
            unit->m_dOffset += minus ? -*right.value : *right.value;
            return true;
        }
        if (!unit && value && right.unit) {
            right.unit->m_dOffset =
                (minus ? -right.unit->m_dOffset : right.unit->m_dOffset) + *value;
            unit = Tmp(*right.unit);
            return true;
        }
        if (!right.value)
            return false;
        const double s = minus ? -*right.value : *right.value;
        if (!value)
            value.reset(new double(s));
        else
            *value = *value + s;
        return true;
    }

    bool Combine(const CKVunit* operand, NumberPtr& number) {
        const char p = pending;
        pending = 0;
        if (p == 0 || (!unit && !value)) {
            if (operand) {
                if (unit)
                    return false;
                unit = Tmp(*operand);
            }
            if (number) {
                if (value)
                    return false;
                value = std::move(number);
            }
            return true;
        }
        if (p == '*') {
            if (unit && number)
                unit = Tmp(*unit * *number);
            else if (value && !unit && operand) {
                unit = Tmp(*operand * *value);
                value.reset();
            } else if (value && number)
                *value = *value * *number;
            else if (unit && operand)
                unit = Tmp(*unit * *operand);
            return true;
        }
        if (p == '/') {
            if (unit && number)
                unit = Tmp(*unit / *number);
            else if (value && !unit && operand) {
                unit = Tmp(*value / *operand);
                value.reset();
            } else if (value && number)
                *value = *value / *number;
            else if (unit && operand)
                unit = Tmp(*unit / *operand);
            return true;
        }
        if (unit && number)
            unit = Tmp(*unit ^ *number);
        else if (value && number)
            *value = std::pow(*value, *number);
        else if (operand)
            return false;
        return true;
    }

    std::string m_text;
};

uint64_t Bits(double d) {
    uint64_t b;
    std::memcpy(&b, &d, sizeof b);
    return b;
}

// Everything observable of an evaluation, as text.
std::string Describe(bool ok, const CKVunit* unit, const double* value) {
    std::string text = ok ? "ok" : "failed";
    char buffer[64];
    if (unit != nullptr) {
        double p[7], f[7];
        unit->GetDim().GetPowers(p[0], p[1], p[2], p[3], p[4], p[5], p[6]);
        unit->GetFactors(f[0], f[1], f[2], f[3], f[4], f[5], f[6]);
        text += " unit key " + std::to_string(unit->m_lKey) + " " + unit->m_strDesc;
        std::snprintf(buffer, sizeof buffer, " factor %016llx",
                      static_cast<unsigned long long>(Bits(unit->m_dFactor)));
        text += buffer;
        std::snprintf(buffer, sizeof buffer, " offset %016llx",
                      static_cast<unsigned long long>(Bits(unit->m_dOffset)));
        text += buffer;
        for (int i = 0; i < 7; ++i) {
            std::snprintf(buffer, sizeof buffer, " %016llx/%016llx",
                          static_cast<unsigned long long>(Bits(p[i])),
                          static_cast<unsigned long long>(Bits(f[i])));
            text += buffer;
        }
    }
    if (value != nullptr) {
        std::snprintf(buffer, sizeof buffer, " value %016llx",
                      static_cast<unsigned long long>(Bits(*value)));
        text += buffer;
    }
    return text;
}

// A unit arithmetic whose factor becomes 0 ends the process through an
// assertion; here it throws instead, so that both sides can be compared.
struct AssertionReached {
    std::string what;
};
void ThrowingHook(const char* expr, const char*, unsigned, const char*) {
    throw AssertionReached{expr};
}

std::string ByReference(const std::string& text) {
    try {
        Reference reference(text);
        const bool ok = reference.Run();
        return Describe(ok, reference.unit.get(), reference.value.get());
    } catch (const AssertionReached& assertion) {
        return "assertion " + assertion.what;
    }
}

std::string ByEvaluator(const std::string& text) {
    CKVunit* unit = nullptr;
    double* value = nullptr;
    try {
        const bool ok = bEvaluateExpression(text.c_str(), &unit, &value);
        std::unique_ptr<CKVunit> ownedUnit(unit);
        std::unique_ptr<double> ownedValue(value);
        return Describe(ok, unit, value);
    } catch (const AssertionReached& assertion) {
        return "assertion " + assertion.what;
    }
}

class ExprReference : public ::testing::Test {
  protected:
    void SetUp() override {
        RegisterBaseUnits();
        Define("m", 1000, "Length");
        Define("km", 1001, "m*1000");
        Define("s", 1100, "Time");
        RegisterUnit("C", 1201, 1.0, 273.15, CKVdimension::GetTemp());
        // Fix the decimal symbol before the reference reads it.
        ByEvaluator("1");
        m_previousHook = xunSetAssertHook_(ThrowingHook);
    }
    void TearDown() override { xunSetAssertHook_(m_previousHook); }

    XunAssertHook m_previousHook = nullptr;
};

TEST_F(ExprReference, HandPickedTexts) {
    const char* texts[] = {"km/s",   "m-s",     "-m",          "+-m",     "m-",      "-",
                           "+",      "2-3-4",   "C+1",         "2+C",     "2-C",     "(2+C)*m",
                           "m*(-2)", "-(m)",    "2*-3",        "m^-2",    "m^(0-2)", "(m)(s)",
                           "m--2",   "1-x-2",   "--x",         "-(-x)-1", "km+-1",   "(m+1)-(s+2)",
                           "m(",     "(",       ")",           "()",      "1e-3*m",  "1d3",
                           "pi*m",   "m s",     "x",           "-+-+5",   "C-+-+2",  "m+1+x+1",
                           "2+m+3",  "(C+1)+1", "((m-1)-1)-1", "m*0",     "km^-9^9"};
    for (const char* text : texts)
        EXPECT_EQ(ByEvaluator(text), ByReference(text)) << text;
}

TEST_F(ExprReference, RandomShortTexts) {
    const std::vector<std::string> alphabet = {"m", "km", "s", "C", "2", "1.5",  "pi", "x",
                                               "(", ")",  "(", ")", "+", "-",    "+",  "-",
                                               "*", "/",  "^", " ", "0", "3e-1", "9"};
    std::mt19937_64 random(13);
    std::map<std::string, int> seen;
    for (int round = 0; round < 40000; ++round) {
        std::string text;
        const int tokens = 1 + static_cast<int>(random() % 14);
        for (int t = 0; t < tokens; ++t)
            text += alphabet[random() % alphabet.size()];
        const std::string outcome = ByReference(text);
        ASSERT_EQ(ByEvaluator(text), outcome) << "'" << text << "'";
        ++seen[outcome.substr(0, 2)];
    }
    // The texts reach every kind of outcome, often.
    EXPECT_GT(seen["ok"], 3000);
    EXPECT_GT(seen["fa"], 3000);
    EXPECT_GT(seen["as"], 0);
}

// Many signs: the reference takes time exponential in their number, so
// they stay short here; the evaluator must give the same.
TEST_F(ExprReference, SignHeavyTexts) {
    const std::vector<std::string> alphabet = {"+", "-", "-",   "+",     "1", "2",
                                               "C", "*", "(1)", "(C-1)", "m", "x"};
    std::mt19937_64 random(17);
    std::map<std::string, int> seen;
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        const int tokens = 10 + static_cast<int>(random() % 9);
        for (int t = 0; t < tokens; ++t)
            text += alphabet[random() % alphabet.size()];
        const std::string outcome = ByReference(text);
        ASSERT_EQ(ByEvaluator(text), outcome) << "'" << text << "'";
        ++seen[outcome.substr(0, 2)];
    }
    EXPECT_GT(seen["ok"], 200);
    EXPECT_GT(seen["fa"], 2000);
}

} // namespace
