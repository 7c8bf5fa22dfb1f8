#include "units/UnitString.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "common/Contract.h"
#include "units/UnitPrefixes.h"
#include "xun.h"

// How the parser works
//
// A recursive descent over the bytes of the text, one function per level of
// the grammar (docs/unit-strings.md):
//
//   shift    := quotient [ ("@" | "after" | "from") number ]
//   quotient := product { "per" product }             (written names only)
//   product  := power { ("*" | "." | "·" | "×" | "/" | blank) power }
//   power    := basic [ exponent ] [ "squared" | "cubed" ]
//   basic    := name | number | "(" shift ")"
//
// Each level returns an operand: its meaning (XunUnitValue) and the parts of
// its normalised form. The depth of the recursion is bounded by the nesting
// limit of parentheses; everything else is a loop.

namespace {

using xun::contract::kUnitStringMaxDepth;
using xun::contract::kUnitStringMaxExponent;
using xun::contract::kUnitStringMaxLength;
using xun::contract::kUnitStringMaxNumberLength;

const int kBases = CKVdimension::kBaseCount;

// The terms an atom's operand makes room for: the first operand of a
// product collects the terms of the others, which then need no new memory
// up to this many atoms.
const std::size_t kTermsReserved = 4;
const char* const kDimensionNames[kBases] = {"length",
                                             "mass",
                                             "time",
                                             "temperature",
                                             "electric current",
                                             "amount of substance",
                                             "luminous intensity"};

bool IsSpace(unsigned long c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f' || c == 0xA0 ||
           (c >= 0x2000 && c <= 0x200A) || c == 0x202F || c == 0x205F || c == 0x3000;
}

// '*' alone (the caller tells it from "**"), '.', the middle dot, the
// multiplication sign, the dot operator and the bullet operator.
bool IsMultiply(unsigned long c) {
    return c == '*' || c == '.' || c == 0xB7 || c == 0xD7 || c == 0x22C5 || c == 0x2219;
}

// '/', the division sign and the division slash.
bool IsDivide(unsigned long c) {
    return c == '/' || c == 0xF7 || c == 0x2215;
}

int SuperscriptDigit(unsigned long c) {
    switch (c) {
    case 0x2070:
        return 0;
    case 0xB9:
        return 1;
    case 0xB2:
        return 2;
    case 0xB3:
        return 3;
    default:
        return c >= 0x2074 && c <= 0x2079 ? static_cast<int>(c - 0x2074) + 4 : -1;
    }
}

int SuperscriptSign(unsigned long c) {
    return c == 0x207A ? 1 : c == 0x207B ? -1 : 0;
}

// '-' and the minus sign U+2212.
bool IsMinus(unsigned long c) {
    return c == '-' || c == 0x2212;
}

bool IsDigit(unsigned long c) {
    return c >= '0' && c <= '9';
}

bool IsAsciiLetter(unsigned long c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsControl(unsigned long c) {
    return (c < 0x20 && !IsSpace(c)) || c == 0x7F || (c >= 0x80 && c <= 0x9F);
}

bool IsNameStart(unsigned long c) {
    if (c < 0x80)
        return IsAsciiLetter(c) || c == '_';
    return !IsControl(c) && !IsSpace(c) && !IsMultiply(c) && !IsDivide(c) &&
           SuperscriptDigit(c) < 0 && SuperscriptSign(c) == 0 && c != 0x2212;
}

// A sign of "per cent" (alone it is a name of its own).
bool IsPercent(unsigned long c) {
    return c == '%';
}

// The operand of one atom: its value and its single term, to the power 1;
// bare when it is the atom as written (not a stem whose digits are its
// exponent).
XunParsedUnit AtomOperand(const XunAtom& atom, bool bare) {
    XunParsedUnit operand;
    operand.terms.reserve(kTermsReserved);
    operand.value = atom.value;
    operand.bare = bare;
    operand.terms.push_back(XunTerm{atom.key, atom.prefix, 1.0});
    return operand;
}

void RemoveZeroTerms(std::vector<XunTerm>& terms) {
    std::size_t kept = 0;
    for (const XunTerm& term : terms)
        if (term.exponent != 0.0)
            terms[kept++] = term;
    terms.resize(kept);
}

void AddTerms(std::vector<XunTerm>& into, const std::vector<XunTerm>& from, double scale) {
    for (const XunTerm& term : from) {
        bool merged = false;
        for (XunTerm& existing : into) {
            if (existing.key == term.key && existing.prefix == term.prefix) {
                existing.exponent += term.exponent * scale;
                merged = true;
                break;
            }
        }
        if (!merged)
            into.push_back(XunTerm{term.key, term.prefix, term.exponent * scale});
    }
    RemoveZeroTerms(into);
}

// 0 dimensionless, 1..7 a single base dimension, 8 composite (as
// CKVdimension::GetDimType).
int DimType(const double powers[]) {
    for (int i = 0; i < kBases; ++i) {
        if (powers[i] != 0.0) {
            for (int j = i + 1; j < kBases; ++j)
                if (powers[j] != 0.0)
                    return 8;
            return i + 1;
        }
    }
    return 0;
}

// The unit arithmetic of units/KVunit.cpp on plain values: every result has
// offset 0; a unit scaled by a number scales the per-dimension factor of a
// single base dimension; a product or quotient of units combines the
// per-dimension factors slot by slot; a power or an inverse starts afresh.
void ScaleValue(XunUnitValue& v, double d, bool divide) {
    v.factor = divide ? v.factor / d : v.factor * d;
    const int type = DimType(v.powers);
    if (type >= 1 && type <= kBases) {
        double& slot = v.dimFactors[type - 1];
        slot = divide ? slot / d : slot * d;
    }
    v.offset = 0.0;
}

void FreshValue(XunUnitValue& v, double factor) {
    v.factor = factor;
    v.offset = 0.0;
    for (double& slot : v.dimFactors)
        slot = 1.0;
    const int type = DimType(v.powers);
    if (type >= 1 && type <= kBases)
        v.dimFactors[type - 1] = factor;
}

void UnitTimes(XunUnitValue& a, const XunUnitValue& b, bool divide) {
    a.factor = divide ? a.factor / b.factor : a.factor * b.factor;
    for (int i = 0; i < kBases; ++i) {
        a.powers[i] = divide ? a.powers[i] - b.powers[i] : a.powers[i] + b.powers[i];
        a.dimFactors[i] =
            divide ? a.dimFactors[i] / b.dimFactors[i] : a.dimFactors[i] * b.dimFactors[i];
    }
    a.offset = 0.0;
}

XunUnitValue NumberOver(double d, const XunUnitValue& u) {
    XunUnitValue r;
    for (int i = 0; i < kBases; ++i)
        r.powers[i] = u.powers[i] * -1.0;
    FreshValue(r, 1.0 / u.factor);
    ScaleValue(r, d, false);
    return r;
}

// std::pow, without the call where the result is known: 1 to any power is
// 1 (also to a NaN power, as std::pow has it).
double Power(double base, double exponent) {
    return base == 1.0 ? 1.0 : std::pow(base, exponent);
}

void PowerValue(XunUnitValue& u, double exponent) {
    for (int i = 0; i < kBases; ++i)
        u.powers[i] = u.powers[i] * exponent;
    FreshValue(u, Power(u.factor, exponent));
}

XunParsedUnit NumberOperand(double value) {
    XunParsedUnit operand;
    operand.number = true;
    operand.value.factor = value;
    operand.numberPart = value;
    return operand;
}

void Multiply(XunParsedUnit& a, const XunParsedUnit& b) {
    if (a.number && b.number) {
        a.value.factor *= b.value.factor;
    } else if (a.number) {
        XunUnitValue v = b.value;
        ScaleValue(v, a.value.factor, false);
        a.value = v;
    } else if (b.number) {
        ScaleValue(a.value, b.value.factor, false);
    } else {
        UnitTimes(a.value, b.value, false);
    }
    a.number = a.number && b.number;
    a.numberPart *= b.numberPart;
    AddTerms(a.terms, b.terms, 1.0);
    a.bare = false;
    a.shifted = false;
    a.value.offset = 0.0;
}

void Divide(XunParsedUnit& a, const XunParsedUnit& b) {
    if (a.number && b.number)
        a.value.factor /= b.value.factor;
    else if (b.number)
        ScaleValue(a.value, b.value.factor, true);
    else if (a.number)
        a.value = NumberOver(a.value.factor, b.value);
    else
        UnitTimes(a.value, b.value, true);
    a.number = a.number && b.number;
    a.numberPart /= b.numberPart;
    AddTerms(a.terms, b.terms, -1.0);
    a.bare = false;
    a.shifted = false;
    a.value.offset = 0.0;
}

void Raise(XunParsedUnit& a, double exponent) {
    if (a.number)
        a.value.factor = Power(a.value.factor, exponent);
    else
        PowerValue(a.value, exponent);
    a.numberPart = Power(a.numberPart, exponent);
    for (XunTerm& term : a.terms)
        term.exponent *= exponent;
    RemoveZeroTerms(a.terms);
    a.bare = false;
    a.shifted = false;
    a.value.offset = 0.0;
}

std::string CodePointText(std::string_view text, std::size_t at) {
    unsigned long c = 0;
    const std::size_t length = xunDecodeUtf8_(text, at, c);
    if (length == 0)
        return "the byte 0x??";
    if (c < 0x20 || c == 0x7F) {
        char buffer[32];
        std::snprintf(buffer, sizeof buffer, "the control character 0x%02lX", c);
        return buffer;
    }
    return "'" + std::string(text.substr(at, length)) + "'";
}

class Parser {
  public:
    Parser(std::string_view text, const IUnitAtoms& atoms, const XunParseOptions& options,
           XunParseError& error)
        : m_text(text), m_end(text.size()), m_atoms(atoms), m_options(options), m_error(error) {}

    bool Run(XunParsedUnit& result);

  private:
    enum Kind { kAtom, kNumber, kGroup, kComposite };

    bool ParseShift(XunParsedUnit& out, Kind& kind);
    bool ParseQuotient(XunParsedUnit& out, Kind& kind);
    bool ParseProduct(XunParsedUnit& out, Kind& kind);
    bool ParsePower(XunParsedUnit& out, Kind& kind);
    bool ParseBasic(XunParsedUnit& out, Kind& kind);
    bool ParseName(XunParsedUnit& out, Kind& kind, bool allowModifier);
    // exponent: a '.' belongs to the number only when a digit follows it,
    // so that "m^2.s" is m² times s, as in UDUNITS-2.
    bool ParseNumber(double& value, bool allowSign, bool nonZero, bool exponent = false);
    bool ParseExponentValue(double& exponent);
    // 1 when an exponent was read, 0 when none is written here, -1 on an
    // error.
    int ReadDirectExponent(double& exponent, bool allowPlainDigits);
    bool Check(const XunParsedUnit& u, std::size_t at);
    bool CheckExponent(double exponent, std::size_t at);

    bool Fail(int code, std::size_t at, const std::string& reason) {
        m_error.code = code;
        m_error.position = at;
        m_error.reason = reason;
        return false;
    }
    bool Unexpected(std::size_t at);

    unsigned long Peek(std::size_t at, std::size_t* length = nullptr) const {
        // ASCII, most of any text, without the decoder.
        if (at < m_end && static_cast<unsigned char>(m_text[at]) < 0x80) {
            if (length != nullptr)
                *length = 1;
            return static_cast<unsigned char>(m_text[at]);
        }
        unsigned long c = 0;
        std::size_t n = at < m_end ? xunDecodeUtf8_(m_text, at, c) : 0;
        if (length != nullptr)
            *length = n;
        return n == 0 ? 0 : c;
    }
    // The position after the blanks at `at`.
    std::size_t SpacesEnd(std::size_t at) const {
        for (;;) {
            std::size_t length = 0;
            const unsigned long c = Peek(at, &length);
            if (length == 0 || !IsSpace(c))
                return at;
            at += length;
        }
    }
    bool SkipSpaces() {
        const std::size_t start = m_pos;
        for (;;) {
            std::size_t length = 0;
            const unsigned long c = Peek(m_pos, &length);
            if (length == 0 || !IsSpace(c))
                break;
            m_pos += length;
        }
        return m_pos != start;
    }
    // The end of the name that starts at `at` (at itself when none does).
    std::size_t NameEnd(std::size_t at) const {
        std::size_t length = 0;
        unsigned long c = Peek(at, &length);
        if (length == 0)
            return at;
        if (IsPercent(c))
            return at + 1;
        if (!IsNameStart(c))
            return at;
        std::size_t pos = at + length;
        for (;;) {
            c = Peek(pos, &length);
            if (length == 0 || !(IsNameStart(c) || IsDigit(c)))
                return pos;
            pos += length;
        }
    }
    // Whether the name at `at` is exactly `word` (ASCII letters compared
    // without case when ignoreCase).
    bool IsWordAt(std::size_t at, const char* word, bool ignoreCase = false) const {
        const std::size_t end = NameEnd(at);
        const std::size_t length = std::strlen(word);
        if (end - at != length)
            return false;
        for (std::size_t i = 0; i < length; ++i) {
            char a = m_text[at + i];
            char b = word[i];
            if (ignoreCase) {
                if (a >= 'A' && a <= 'Z')
                    a = static_cast<char>(a - 'A' + 'a');
            }
            if (a != b)
                return false;
        }
        return true;
    }
    bool AtPer(std::size_t at) const { return m_options.words && IsWordAt(at, "per", true); }
    bool AtShiftWord(std::size_t at) const { return IsWordAt(at, "after") || IsWordAt(at, "from"); }
    bool AtOriginWord(std::size_t at) const { return IsWordAt(at, "since") || IsWordAt(at, "ref"); }
    // A word that ends a name of several words.
    bool IsKeywordAt(std::size_t at) const {
        return IsWordAt(at, "per", true) || AtShiftWord(at) || AtOriginWord(at) ||
               IsWordAt(at, "squared") || IsWordAt(at, "cubed");
    }
    // Whether an exponent starts at `at`, right after a name.
    bool ExponentFollows(std::size_t at) const {
        std::size_t length = 0;
        const unsigned long c = Peek(at, &length);
        if (length == 0)
            return false;
        if (SuperscriptDigit(c) >= 0 || SuperscriptSign(c) != 0 || IsDigit(c) || c == '^')
            return true;
        if (c == '*' && Peek(at + 1) == '*')
            return true;
        if ((IsMinus(c) || c == '+') && IsDigit(Peek(at + length)))
            return true;
        return false;
    }
    bool StartsBasic(std::size_t at) const {
        std::size_t length = 0;
        const unsigned long c = Peek(at, &length);
        if (length == 0)
            return false;
        return c == '(' || IsDigit(c) || (c == '.' && IsDigit(Peek(at + 1))) || IsNameStart(c) ||
               IsPercent(c);
    }

    std::string_view m_text;
    std::size_t m_pos = 0;
    std::size_t m_end;
    int m_depth = 0;
    const IUnitAtoms& m_atoms;
    const XunParseOptions& m_options;
    XunParseError& m_error;
};

bool Parser::Unexpected(std::size_t at) {
    const unsigned long c = Peek(at);
    if (c == ')')
        return Fail(XUN_ERR_EXPRESSION, at, "')' has no '(' before it");
    if (IsMultiply(c) || IsDivide(c) || c == '^' || c == '@')
        return Fail(XUN_ERR_EXPRESSION, at,
                    "a unit or number is missing before " + CodePointText(m_text, at));
    return Fail(XUN_ERR_EXPRESSION, at, CodePointText(m_text, at) + " is not part of a unit");
}

bool Parser::Check(const XunParsedUnit& u, std::size_t at) {
    const XunUnitValue& v = u.value;
    if (std::isnan(v.factor))
        return Fail(XUN_ERR_EXPRESSION, at, "the unit's factor would not be a number");
    if (std::isinf(v.factor))
        return Fail(XUN_ERR_EXPRESSION, at, "the unit's factor would be infinite");
    if (v.factor == 0.0)
        return Fail(XUN_ERR_EXPRESSION, at, "the unit's factor would be 0");
    if (!std::isfinite(v.offset))
        return Fail(XUN_ERR_EXPRESSION, at, "the unit's offset would not be finite");
    for (int i = 0; i < kBases; ++i) {
        if (std::isnan(v.powers[i]))
            return Fail(XUN_ERR_EXPRESSION, at,
                        std::string("the exponent of ") + kDimensionNames[i] +
                            " would not be a number");
        if (std::fabs(v.powers[i]) > kUnitStringMaxExponent)
            return Fail(XUN_ERR_LIMIT, at,
                        std::string("the exponent of ") + kDimensionNames[i] + " would be " +
                            xunShortestNumber_(v.powers[i]) + ", more than " +
                            xunShortestNumber_(kUnitStringMaxExponent) + " in size");
    }
    return true;
}

bool Parser::CheckExponent(double exponent, std::size_t at) {
    if (!std::isfinite(exponent) || std::fabs(exponent) > kUnitStringMaxExponent)
        return Fail(XUN_ERR_LIMIT, at,
                    "the exponent " +
                        (std::isfinite(exponent) ? xunShortestNumber_(exponent)
                                                 : std::string("written here")) +
                        " is larger than " + xunShortestNumber_(kUnitStringMaxExponent) +
                        " in size");
    return true;
}

bool Parser::Run(XunParsedUnit& result) {
    if (m_text.size() > kUnitStringMaxLength)
        return Fail(XUN_ERR_LIMIT, kUnitStringMaxLength,
                    "the text is longer than " + std::to_string(kUnitStringMaxLength) + " bytes");
    // Every byte is checked once before the grammar reads any: valid UTF-8,
    // no control character.
    for (std::size_t i = 0; i < m_end;) {
        unsigned long c = 0;
        const std::size_t length = xunDecodeUtf8_(m_text, i, c);
        if (length == 0) {
            char buffer[64];
            std::snprintf(buffer, sizeof buffer, "the byte 0x%02X is not valid UTF-8 here",
                          static_cast<unsigned>(static_cast<unsigned char>(m_text[i])));
            return Fail(XUN_ERR_EXPRESSION, i, buffer);
        }
        if (IsControl(c))
            return Fail(XUN_ERR_EXPRESSION, i, CodePointText(m_text, i) + " is not part of a unit");
        if (m_options.asciiOnly && c >= 0x80)
            return Fail(XUN_ERR_EXPRESSION, i, CodePointText(m_text, i) + " is not ASCII");
        i += length;
    }
    SkipSpaces();
    std::size_t end = m_end;
    while (end > m_pos) {
        // Back over trailing blanks (whole code points).
        std::size_t start = end - 1;
        while (start > m_pos && (static_cast<unsigned char>(m_text[start]) & 0xC0) == 0x80)
            --start;
        unsigned long c = 0;
        xunDecodeUtf8_(m_text, start, c);
        if (!IsSpace(c))
            break;
        end = start;
    }
    m_end = end;
    if (m_pos >= m_end)
        return Fail(XUN_ERR_EXPRESSION, 0, "the text is empty");
    Kind kind = kComposite;
    if (!ParseShift(result, kind))
        return false;
    SkipSpaces();
    if (m_pos < m_end)
        return Unexpected(m_pos);
    return Check(result, 0);
}

bool Parser::ParseShift(XunParsedUnit& out, Kind& kind) {
    if (!ParseQuotient(out, kind))
        return false;
    const std::size_t save = m_pos;
    SkipSpaces();
    const std::size_t at = m_pos;
    if (Peek(at) == '@' || AtShiftWord(at)) {
        m_pos = Peek(at) == '@' ? at + 1 : NameEnd(at);
        SkipSpaces();
        double shift = 0.0;
        if (!IsDigit(Peek(m_pos)) && !(Peek(m_pos) == '.' && IsDigit(Peek(m_pos + 1))) &&
            !((IsMinus(Peek(m_pos)) || Peek(m_pos) == '+')))
            return Fail(XUN_ERR_EXPRESSION, m_pos, "a number must follow '@'");
        if (!ParseNumber(shift, true, false))
            return false;
        const std::size_t after = m_pos;
        SkipSpaces();
        if (m_pos < m_end && Peek(m_pos) != ')') {
            const unsigned long c = Peek(after);
            if (IsMinus(c) || c == ':' || c == 'T' || c == 'Z')
                return Fail(XUN_ERR_EXPRESSION, after,
                            "only a number may follow '@': time stamps are not read");
            return Unexpected(m_pos);
        }
        // The number written counts in the unit before it: x in the new unit
        // is x + shift in the old one.
        out.value.offset =
            (out.bare || out.shifted ? out.value.offset : 0.0) + shift * out.value.factor;
        out.shift = out.shifted ? out.shift + shift : shift;
        out.shifted = true;
        kind = kComposite;
        return Check(out, at);
    }
    if (AtOriginWord(at))
        return Fail(XUN_ERR_EXPRESSION, at,
                    "units of time with an origin ('since') are not read: only a number may "
                    "follow '@'");
    m_pos = save;
    return true;
}

bool Parser::ParseQuotient(XunParsedUnit& out, Kind& kind) {
    SkipSpaces();
    if (AtPer(m_pos)) {
        // "per hour" alone: one per hour.
        out = NumberOperand(1.0);
        kind = kNumber;
    } else if (!ParseProduct(out, kind)) {
        return false;
    }
    for (;;) {
        const std::size_t save = m_pos;
        SkipSpaces();
        const std::size_t at = m_pos;
        if (!AtPer(at)) {
            m_pos = save;
            return true;
        }
        m_pos = NameEnd(at);
        SkipSpaces();
        XunParsedUnit divisor;
        Kind divisorKind = kComposite;
        if (!ParseProduct(divisor, divisorKind))
            return false;
        Divide(out, divisor);
        kind = out.number ? kNumber : kComposite;
        if (!Check(out, at))
            return false;
    }
}

bool Parser::ParseProduct(XunParsedUnit& out, Kind& kind) {
    if (!ParsePower(out, kind))
        return false;
    for (;;) {
        const std::size_t save = m_pos;
        const bool space = SkipSpaces();
        const std::size_t at = m_pos;
        if (at >= m_end) {
            m_pos = save;
            return true;
        }
        std::size_t length = 0;
        const unsigned long c = Peek(at, &length);
        if (c == ')' || c == '@' || AtShiftWord(at) || AtOriginWord(at) || AtPer(at)) {
            m_pos = save;
            return true;
        }
        XunParsedUnit operand;
        Kind operandKind = kComposite;
        bool divide = false;
        if (c == '*' && Peek(at + 1) == '*') {
            return Fail(XUN_ERR_EXPRESSION, at, "a unit or number is missing before '**'");
        } else if (IsMultiply(c) || IsDivide(c)) {
            divide = IsDivide(c);
            m_pos = at + length;
            SkipSpaces();
        } else if (c == '-' && !space && IsNameStart(Peek(at + 1))) {
            // A hyphen between names multiplies, as in UDUNITS-2 ("N-m").
            m_pos = at + 1;
        } else if (StartsBasic(at) && (space || c == '(' || kind == kNumber || kind == kGroup)) {
            m_pos = at;
        } else {
            return Unexpected(at);
        }
        if (!ParsePower(operand, operandKind))
            return false;
        if (divide)
            Divide(out, operand);
        else
            Multiply(out, operand);
        kind = out.number ? kNumber : kComposite;
        if (!Check(out, at))
            return false;
    }
}

int Parser::ReadDirectExponent(double& exponent, bool allowPlainDigits) {
    // Superscripts: "m²", "s⁻¹".
    std::size_t length = 0;
    unsigned long c = Peek(m_pos, &length);
    if (SuperscriptDigit(c) >= 0 || SuperscriptSign(c) != 0) {
        const std::size_t at = m_pos;
        int sign = 1;
        if (SuperscriptSign(c) != 0) {
            sign = SuperscriptSign(c);
            m_pos += length;
            c = Peek(m_pos, &length);
        }
        if (SuperscriptDigit(c) < 0) {
            Fail(XUN_ERR_EXPRESSION, m_pos, "a superscript digit must follow the sign");
            return -1;
        }
        double value = 0.0;
        while (SuperscriptDigit(c) >= 0) {
            value = value * 10 + SuperscriptDigit(c);
            if (value > kUnitStringMaxExponent) {
                CheckExponent(value, at);
                return -1;
            }
            m_pos += length;
            c = Peek(m_pos, &length);
        }
        exponent = sign * value;
        return 1;
    }
    // Digits right after a name or a parenthesis: "m-2", "s+1", "(m/s)2".
    int sign = 1;
    std::size_t digits = m_pos;
    if (IsMinus(c) || c == '+') {
        sign = c == '+' ? 1 : -1;
        digits = m_pos + length;
    } else if (!allowPlainDigits) {
        return 0;
    }
    if (!IsDigit(Peek(digits)))
        return 0;
    const std::size_t at = m_pos;
    double value = 0.0;
    std::size_t pos = digits;
    while (IsDigit(Peek(pos))) {
        value = value * 10 + (m_text[pos] - '0');
        if (value > kUnitStringMaxExponent) {
            CheckExponent(value, at);
            return -1;
        }
        ++pos;
    }
    m_pos = pos;
    exponent = sign * value;
    return 1;
}

bool Parser::ParsePower(XunParsedUnit& out, Kind& kind) {
    if (!ParseBasic(out, kind))
        return false;
    const std::size_t at = m_pos;
    double exponent = 0.0;
    int direct = 0;
    if (kind == kAtom || kind == kGroup)
        direct = ReadDirectExponent(exponent, kind == kGroup);
    else if (SuperscriptDigit(Peek(m_pos)) >= 0 || SuperscriptSign(Peek(m_pos)) != 0)
        direct = ReadDirectExponent(exponent, false);
    if (direct < 0)
        return false;
    bool hasExponent = direct > 0;
    if (!hasExponent) {
        const std::size_t save = m_pos;
        SkipSpaces();
        const unsigned long c = Peek(m_pos);
        if (c == '^' || (c == '*' && Peek(m_pos + 1) == '*')) {
            m_pos += c == '^' ? 1 : 2;
            if (!ParseExponentValue(exponent))
                return false;
            hasExponent = true;
        } else {
            m_pos = save;
        }
    }
    if (hasExponent) {
        Raise(out, exponent);
        kind = out.number ? kNumber : kComposite;
        if (!Check(out, at))
            return false;
    }
    if (m_options.words) {
        const std::size_t save = m_pos;
        if (SkipSpaces() && (IsWordAt(m_pos, "squared") || IsWordAt(m_pos, "cubed"))) {
            const std::size_t wordAt = m_pos;
            const double power = IsWordAt(m_pos, "squared") ? 2.0 : 3.0;
            m_pos = NameEnd(m_pos);
            Raise(out, power);
            kind = out.number ? kNumber : kComposite;
            return Check(out, wordAt);
        }
        m_pos = save;
    }
    return true;
}

bool Parser::ParseExponentValue(double& exponent) {
    SkipSpaces();
    const std::size_t at = m_pos;
    if (Peek(m_pos) == '(') {
        ++m_pos;
        SkipSpaces();
        double numerator = 0.0;
        if (!ParseNumber(numerator, true, false))
            return false;
        SkipSpaces();
        if (IsDivide(Peek(m_pos))) {
            std::size_t length = 0;
            Peek(m_pos, &length);
            m_pos += length;
            SkipSpaces();
            const std::size_t denominatorAt = m_pos;
            double denominator = 0.0;
            if (!ParseNumber(denominator, true, false))
                return false;
            if (denominator == 0.0)
                return Fail(XUN_ERR_EXPRESSION, denominatorAt, "the exponent divides by 0");
            numerator /= denominator;
            SkipSpaces();
        }
        if (Peek(m_pos) != ')')
            return m_pos < m_end
                       ? Unexpected(m_pos)
                       : Fail(XUN_ERR_EXPRESSION, m_pos, "')' is missing after the exponent");
        ++m_pos;
        exponent = numerator;
    } else {
        if (!ParseNumber(exponent, true, false, true))
            return false;
    }
    return CheckExponent(exponent, at);
}

bool Parser::ParseNumber(double& value, bool allowSign, bool nonZero, bool exponent) {
    const std::size_t at = m_pos;
    bool negative = false;
    std::size_t length = 0;
    const unsigned long first = Peek(m_pos, &length);
    if (allowSign && (IsMinus(first) || first == '+')) {
        negative = IsMinus(first);
        m_pos += length;
    }
    const std::size_t start = m_pos;
    std::size_t pos = start;
    bool digits = false;
    while (IsDigit(Peek(pos))) {
        ++pos;
        digits = true;
    }
    if (Peek(pos) == '.' && (!exponent || IsDigit(Peek(pos + 1)))) {
        ++pos;
        while (IsDigit(Peek(pos))) {
            ++pos;
            digits = true;
        }
    }
    if (!digits) {
        if (m_pos >= m_end)
            return Fail(XUN_ERR_EXPRESSION, m_pos, "a number is missing at the end");
        return Fail(XUN_ERR_EXPRESSION, m_pos,
                    "a number is missing before " + CodePointText(m_text, m_pos));
    }
    const unsigned long e = Peek(pos);
    if (e == 'e' || e == 'E') {
        std::size_t exp = pos + 1;
        if (Peek(exp) == '+' || Peek(exp) == '-')
            ++exp;
        if (IsDigit(Peek(exp))) {
            while (IsDigit(Peek(exp)))
                ++exp;
            pos = exp;
        }
    }
    if (pos - start > kUnitStringMaxNumberLength)
        return Fail(XUN_ERR_LIMIT, at,
                    "a number is longer than " + std::to_string(kUnitStringMaxNumberLength) +
                        " characters");
    // from_chars reads no leading '.', so one is read as "0.".
    char buffer[kUnitStringMaxNumberLength + 2];
    std::size_t n = 0;
    if (m_text[start] == '.')
        buffer[n++] = '0';
    std::memcpy(buffer + n, m_text.data() + start, pos - start);
    n += pos - start;
    double parsed = 0.0;
    const std::from_chars_result read = std::from_chars(buffer, buffer + n, parsed);
    if (read.ec == std::errc::result_out_of_range || !std::isfinite(parsed))
        return Fail(XUN_ERR_EXPRESSION, at,
                    "the number " + std::string(m_text.substr(start, pos - start)) +
                        " is out of range");
    if (read.ec != std::errc() || read.ptr != buffer + n)
        return Fail(XUN_ERR_EXPRESSION, at, "a number cannot be read here");
    if (nonZero && parsed == 0.0)
        return Fail(XUN_ERR_EXPRESSION, at, "a factor of 0 gives no unit");
    m_pos = pos;
    value = negative ? -parsed : parsed;
    return true;
}

bool Parser::ParseBasic(XunParsedUnit& out, Kind& kind) {
    if (m_pos >= m_end)
        return Fail(XUN_ERR_EXPRESSION, m_pos, "a unit or number is missing at the end");
    const unsigned long c = Peek(m_pos);
    if (c == '(') {
        if (m_depth >= kUnitStringMaxDepth)
            return Fail(XUN_ERR_LIMIT, m_pos,
                        "parentheses nest deeper than " + std::to_string(kUnitStringMaxDepth));
        ++m_depth;
        ++m_pos;
        SkipSpaces();
        Kind inner = kComposite;
        if (!ParseShift(out, inner))
            return false;
        SkipSpaces();
        if (Peek(m_pos) != ')') {
            if (m_pos >= m_end)
                return Fail(XUN_ERR_EXPRESSION, m_pos, "')' is missing at the end");
            return Unexpected(m_pos);
        }
        ++m_pos;
        --m_depth;
        kind = out.number ? kNumber : kGroup;
        return true;
    }
    if (IsDigit(c) || (c == '.' && IsDigit(Peek(m_pos + 1)))) {
        double value = 0.0;
        if (!ParseNumber(value, false, true))
            return false;
        out = NumberOperand(value);
        kind = kNumber;
        return true;
    }
    if (IsNameStart(c) || IsPercent(c))
        return ParseName(out, kind, true);
    if (IsMinus(c) || c == '+')
        return Fail(XUN_ERR_EXPRESSION, m_pos, "a sign may stand only in an exponent or after '@'");
    return Unexpected(m_pos);
}

bool Parser::ParseName(XunParsedUnit& out, Kind& kind, bool allowModifier) {
    const std::size_t start = m_pos;
    // The words from here that may form one name: joined by blanks or by a
    // hyphen, up to the most words a name has, none of them a keyword.
    struct Word {
        std::size_t begin, end;
        bool hyphen; // joined to the word before by a hyphen
    };
    Word words[16];
    int count = 0;
    const int maxWords = m_options.words ? std::min(m_atoms.MaxWords(), 16) : 1;
    words[count++] = Word{start, NameEnd(start), false};
    while (count < maxWords) {
        std::size_t pos = words[count - 1].end;
        bool hyphen = false;
        const unsigned long c = Peek(pos);
        if (IsSpace(c)) {
            pos = SpacesEnd(pos);
        } else if (c == '-') {
            ++pos;
            hyphen = true;
        } else {
            break;
        }
        std::size_t length = 0;
        const unsigned long next = Peek(pos, &length);
        if (length == 0 || !IsNameStart(next) || IsKeywordAt(pos))
            break;
        words[count++] = Word{pos, NameEnd(pos), hyphen};
    }
    XunAtom atom;
    for (int n = count; n >= 2; --n) {
        // A power written after it belongs to its last word.
        if (ExponentFollows(words[n - 1].end))
            continue;
        std::string name(m_text.substr(words[0].begin, words[0].end - words[0].begin));
        for (int i = 1; i < n; ++i) {
            name += words[i].hyphen ? '-' : ' ';
            name.append(m_text.substr(words[i].begin, words[i].end - words[i].begin));
        }
        if (m_atoms.FindAtom(name, false, atom) == XunAtomLookup::Found) {
            m_pos = words[n - 1].end;
            out = AtomOperand(atom, true);
            kind = kAtom;
            return true;
        }
    }
    const std::string_view word = m_text.substr(start, words[0].end - start);
    const std::size_t nextWord = SpacesEnd(words[0].end);
    if (allowModifier && m_options.words && nextWord > words[0].end &&
        IsNameStart(Peek(nextWord)) &&
        (IsWordAt(start, "square", true) || IsWordAt(start, "cubic", true))) {
        const double power = IsWordAt(start, "square", true) ? 2.0 : 3.0;
        m_pos = nextWord;
        if (!ParseName(out, kind, false))
            return false;
        Raise(out, power);
        kind = kComposite;
        return Check(out, start);
    }
    XunAtomLookup found = m_atoms.FindAtom(word, true, atom);
    if (found == XunAtomLookup::Found) {
        m_pos = words[0].end;
        out = AtomOperand(atom, true);
        kind = kAtom;
        return true;
    }
    // Digits at the end of a name that is not known with them are its
    // exponent: "dam3", "km2" where only "km" is a name.
    std::size_t stemEnd = words[0].end;
    while (stemEnd > start && IsDigit(static_cast<unsigned char>(m_text[stemEnd - 1])))
        --stemEnd;
    if (found == XunAtomLookup::Unknown && stemEnd > start && stemEnd < words[0].end) {
        XunAtom stemAtom;
        if (m_atoms.FindAtom(m_text.substr(start, stemEnd - start), true, stemAtom) ==
            XunAtomLookup::Found) {
            double exponent = 0.0;
            for (std::size_t i = stemEnd; i < words[0].end; ++i) {
                exponent = exponent * 10 + (m_text[i] - '0');
                if (exponent > kUnitStringMaxExponent)
                    return CheckExponent(exponent, stemEnd);
            }
            out = AtomOperand(stemAtom, false);
            m_pos = words[0].end;
            Raise(out, exponent);
            kind = kComposite;
            return Check(out, stemEnd);
        }
    }
    m_error.unknown = std::string(word);
    if (found == XunAtomLookup::Ambiguous)
        return Fail(XUN_ERR_NOT_FOUND, start,
                    "'" + std::string(word) + "' names several units when case is ignored");
    return Fail(XUN_ERR_NOT_FOUND, start, "no unit is named '" + std::string(word) + "'");
}

} // namespace

bool xunParseUnitString_(std::string_view text, const IUnitAtoms& atoms,
                         const XunParseOptions& options, XunParsedUnit& result,
                         XunParseError& error) {
    error = XunParseError();
    result = XunParsedUnit();
    Parser parser(text, atoms, options, error);
    return parser.Run(result);
}

bool xunSameDimension_(const XunUnitValue& a, const XunUnitValue& b) {
    for (int i = 0; i < kBases; ++i)
        if (a.powers[i] != b.powers[i])
            return false;
    return true;
}

bool xunValuesAgree_(const XunUnitValue& a, const XunUnitValue& b, bool exact) {
    if (!xunSameDimension_(a, b))
        return false;
    if (exact)
        return a.factor == b.factor && a.offset == b.offset;
    const double scale = std::fabs(b.factor);
    return std::fabs(a.factor - b.factor) <= 1e-12 * scale &&
           std::fabs(a.offset - b.offset) <= 1e-12 * std::max(std::fabs(b.offset), scale);
}

std::string xunShortestNumber_(double value) {
    // The shortest digits that read back; written without an exponent
    // from 1e-5 to below 1e16, else as "1e-6", "2.5e20".
    char buffer[400];
    std::to_chars_result written =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific);
    const std::string scientific(buffer, written.ptr);
    const std::size_t e = scientific.find('e');
    if (e == std::string::npos)
        return scientific; // inf, nan
    const int exponent = std::atoi(scientific.c_str() + e + 1);
    if (exponent >= -5 && exponent < 16) {
        written = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
        return std::string(buffer, written.ptr);
    }
    return scientific.substr(0, e) + "e" + std::to_string(exponent);
}

bool xunIsNameCodePoint_(unsigned long codePoint) {
    return IsNameStart(codePoint) || IsDigit(codePoint);
}

std::size_t xunDecodeUtf8_(std::string_view text, std::size_t i, unsigned long& codePoint) {
    if (i >= text.size())
        return 0;
    const unsigned char b0 = static_cast<unsigned char>(text[i]);
    if (b0 < 0x80) {
        codePoint = b0;
        return 1;
    }
    std::size_t length = 0;
    unsigned long c = 0;
    unsigned long minimum = 0;
    if (b0 >= 0xC2 && b0 <= 0xDF) {
        length = 2;
        c = b0 & 0x1F;
        minimum = 0x80;
    } else if (b0 >= 0xE0 && b0 <= 0xEF) {
        length = 3;
        c = b0 & 0x0F;
        minimum = 0x800;
    } else if (b0 >= 0xF0 && b0 <= 0xF4) {
        length = 4;
        c = b0 & 0x07;
        minimum = 0x10000;
    } else {
        return 0;
    }
    if (i + length > text.size())
        return 0;
    for (std::size_t k = 1; k < length; ++k) {
        const unsigned char b = static_cast<unsigned char>(text[i + k]);
        if ((b & 0xC0) != 0x80)
            return 0;
        c = (c << 6) | (b & 0x3F);
    }
    if (c < minimum || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
        return 0;
    codePoint = c;
    return length;
}
