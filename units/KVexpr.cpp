#include "units/KVexpr.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "units/KVunit.h"
#include "units/UnitSet.h"

char szDecimalSymbol = ' ';

// How the evaluator works
//
// The scan is the designed one: left to right, a nested evaluation of the
// text between matching parentheses, and a nested evaluation of the whole
// rest of the text after '+' or '-', whose failure makes the scan go on
// after the sign. Two things keep it bounded on any text:
//
// - Nested evaluations run on an explicit stack of frames on the heap, not
//   on the thread's stack: nesting is bounded by memory only.
// - The outcome of an evaluation depends only on the part of the text it
//   covers (the registry and the decimal symbol do not change during a
//   call). Evaluations that may be asked for again - those started while the
//   rest after some sign is being evaluated, because a failure there makes
//   the scan read that text again - are remembered by the part they cover.
//   The rescans after failed signs, which would otherwise take exponential
//   time, then reuse what was found. A scan that goes on after a failed sign
//   with nothing accumulated is the evaluation of the rest from there, which
//   is remembered too.
//
// Nested evaluations cover ranges of the text: no copy is made per level.

namespace {

const double kPi = 3.141592653589793;

typedef std::unique_ptr<CKVunit> UnitPtr;
typedef std::optional<double> Number;

// A "tmp" copy: every intermediate unit carries this name and key 1, which
// the caller overwrites. The copying constructor drops the offset.
UnitPtr TmpCopy(const CKVunit& source) {
    return UnitPtr(new CKVunit("tmp", "tmp", 1, source));
}

// A copy of an evaluation's unit that keeps everything of it, its offset
// included, for an outcome handed out a second time.
UnitPtr Clone(const CKVunit& unit) {
    UnitPtr copy(new CKVunit(unit.m_strDesc, unit.m_strAbbr, unit.m_lKey, unit));
    copy->m_dOffset = unit.m_dOffset;
    return copy;
}

// What one evaluation yields: success or failure, and what it accumulated
// (also after a failure).
struct Outcome {
    bool ok = false;
    UnitPtr unit;
    Number value;

    Outcome Copy() const {
        Outcome copy;
        copy.ok = ok;
        if (unit)
            copy.unit = Clone(*unit);
        copy.value = value;
        return copy;
    }
};

// The operand just read: a unit (borrowed from the registry or owned) and/or
// a number.
struct Operand {
    const CKVunit* unit = nullptr;
    UnitPtr ownedUnit;
    Number number;

    void Own(UnitPtr u) {
        ownedUnit = std::move(u);
        unit = ownedUnit.get();
    }
};

// One evaluation in progress: the range [begin, end) of the text it scans.
struct Frame {
    Frame(size_t b, size_t e, bool afterSign) : begin(b), end(e), pos(b), bySign(afterSign) {}

    size_t begin;
    size_t end;
    size_t pos;
    // Started for the rest after a sign.
    bool bySign;
    char pending = 0;
    UnitPtr unit;
    Number value;
    // The nested evaluation the frame waits for: '(' for a parenthesis (the
    // scan goes on at resume, after the ')'), '+' or '-' for the rest after
    // the sign at resume.
    char waiting = 0;
    size_t resume = 0;
};

// What a step of a frame's scan ends with.
struct Step {
    enum Kind { Done, Nested } kind;
    bool ok;           // Done: the outcome
    size_t begin, end; // Nested: the range to evaluate
};

Step Done(bool ok) {
    return Step{Step::Done, ok, 0, 0};
}

class Evaluator {
  public:
    Evaluator(const char* text, size_t length, const IUnitSet& units)
        : m_text(text), m_length(length), m_units(units) {}

    Outcome Run();

  private:
    Step Start(Frame& f);
    Step Scan(Frame& f);
    Step Resume(Frame& f, Outcome nested);
    bool ReadNumber(Frame& f, Operand& operand);
    bool ReadName(Frame& f, Operand& operand);
    bool ApplySign(Frame& f, char sign, Outcome& right);
    bool Combine(Frame& f, Operand& operand);
    size_t MatchingParenthesis(size_t open, size_t end);
    const Outcome* Remembered(size_t begin, size_t end) const;

    struct RangeHash {
        size_t operator()(const std::pair<size_t, size_t>& r) const {
            return std::hash<size_t>()(r.first * 0x9E3779B97F4A7C15ull ^ r.second);
        }
    };

    const char* m_text;
    size_t m_length;
    const IUnitSet& m_units;
    std::vector<Frame> m_frames;
    // Frames on the stack that were started after a sign.
    size_t m_signFrames = 0;
    std::unordered_map<std::pair<size_t, size_t>, Outcome, RangeHash> m_remembered;
    // The matching ')' of every '(' of the text (m_length when there is
    // none), made on first need.
    std::vector<size_t> m_match;
    bool m_matched = false;
};

Outcome Evaluator::Run() {
    m_frames.emplace_back(0, m_length, false);
    Step step = Start(m_frames.back());
    for (;;) {
        if (step.kind == Step::Nested) {
            const bool bySign = m_frames.back().waiting != '(';
            if (const Outcome* known = Remembered(step.begin, step.end)) {
                step = Resume(m_frames.back(), known->Copy());
                continue;
            }
            m_frames.emplace_back(step.begin, step.end, bySign);
            if (bySign)
                ++m_signFrames;
            step = Start(m_frames.back());
            continue;
        }
        Frame& done = m_frames.back();
        Outcome outcome;
        outcome.ok = step.ok;
        outcome.unit = std::move(done.unit);
        outcome.value = done.value;
        const std::pair<size_t, size_t> range(done.begin, done.end);
        if (done.bySign)
            --m_signFrames;
        m_frames.pop_back();
        if (m_frames.empty())
            return outcome;
        // Only text inside the rest after a sign is ever scanned again.
        if (m_signFrames > 0)
            m_remembered.emplace(range, outcome.Copy());
        step = Resume(m_frames.back(), std::move(outcome));
    }
}

const Outcome* Evaluator::Remembered(size_t begin, size_t end) const {
    if (m_remembered.empty())
        return nullptr;
    const auto it = m_remembered.find(std::make_pair(begin, end));
    return it != m_remembered.end() ? &it->second : nullptr;
}

Step Evaluator::Start(Frame& f) {
    // An expression whose length is below 1 fails at once.
    if (f.end <= f.begin)
        return Done(false);
    return Scan(f);
}

Step Evaluator::Scan(Frame& f) {
    while (f.pos < f.end) {
        const char c = m_text[f.pos];
        Operand operand;
        if (c == '(') {
            const size_t close = MatchingParenthesis(f.pos, f.end);
            if (close >= f.end)
                return Done(false);
            f.waiting = '(';
            f.resume = close + 1;
            return Step{Step::Nested, false, f.pos + 1, close};
        } else if (std::isdigit(static_cast<unsigned char>(c))) {
            if (!ReadNumber(f, operand))
                return Done(false);
        } else if (c == '*' || c == '/' || c == '^') {
            f.pending = c;
            ++f.pos;
            continue;
        } else if (c == '+' || c == '-') {
            // The whole rest is the right-hand side, so '+' and '-' bind
            // weakest and group to the right.
            f.waiting = c;
            f.resume = f.pos;
            return Step{Step::Nested, false, f.pos + 1, f.end};
        } else {
            if (!ReadName(f, operand))
                return Done(false);
        }
        if (!Combine(f, operand))
            return Done(false);
    }
    return Done(true);
}

Step Evaluator::Resume(Frame& f, Outcome nested) {
    const char waiting = f.waiting;
    f.waiting = 0;
    Operand operand;
    if (waiting == '(') {
        if (!nested.ok)
            return Done(false);
        operand.Own(std::move(nested.unit));
        operand.number = nested.value;
        f.pos = f.resume;
        if (!Combine(f, operand))
            return Done(false);
        return Scan(f);
    }
    // After a sign: when the rest evaluates, the scan ends here. When it
    // fails, the sign is skipped, what the failed evaluation accumulated
    // becomes the operand and the scan goes on with the character after the
    // sign.
    if (nested.ok) {
        f.pos = f.end;
        return Done(ApplySign(f, waiting, nested));
    }
    f.pos = f.resume + 1;
    operand.Own(std::move(nested.unit));
    operand.number = nested.value;
    if (!Combine(f, operand))
        return Done(false);
    if (!f.unit && !f.value && f.pending == 0 && f.pos < f.end) {
        // Nothing accumulated: the rest of this scan is the evaluation of
        // the text from here, which may be known already.
        if (const Outcome* known = Remembered(f.pos, f.end)) {
            Outcome copy = known->Copy();
            f.unit = std::move(copy.unit);
            f.value = copy.value;
            f.pos = f.end;
            return Done(copy.ok);
        }
    }
    return Scan(f);
}

size_t Evaluator::MatchingParenthesis(size_t open, size_t end) {
    // The ')' that closes a '(' does not depend on what lies before it: the
    // depth counted from the character after it first returns to zero
    // there. So one pass over the whole text finds every match.
    if (!m_matched) {
        m_match.assign(m_length, m_length);
        std::vector<size_t> opens;
        for (size_t i = 0; i < m_length; ++i) {
            if (m_text[i] == '(') {
                opens.push_back(i);
            } else if (m_text[i] == ')' && !opens.empty()) {
                m_match[opens.back()] = i;
                opens.pop_back();
            }
        }
        m_matched = true;
    }
    const size_t close = m_match[open];
    return close < end ? close : m_length;
}

// Number states: 1 integer part, 2 after the decimal symbol, 3 after an
// exponent letter, 4 after an exponent sign, 5 in the exponent digits.
bool Evaluator::ReadNumber(Frame& f, Operand& operand) {
    int state = 1;
    size_t end = f.pos;
    // A number longer than the limit fails whatever follows, so the scan
    // need not look further.
    const size_t last =
        f.pos + kExprMaxNumberLength + 1 < f.end ? f.pos + kExprMaxNumberLength + 1 : f.end;
    for (; end < last; ++end) {
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
    const size_t length = end - f.pos;
    if (length > static_cast<size_t>(kExprMaxNumberLength))
        return false;
    // strtod does not know the exponent letters 'd' and 'D': "1d3" reads as 1.
    char buffer[kExprMaxNumberLength + 1] = {0};
    std::memcpy(buffer, m_text + f.pos, length);
    operand.number = std::strtod(buffer, nullptr);
    f.pos = end;
    return true;
}

bool Evaluator::ReadName(Frame& f, Operand& operand) {
    size_t end = f.pos;
    const size_t last =
        f.pos + kExprMaxNameLength + 1 < f.end ? f.pos + kExprMaxNameLength + 1 : f.end;
    while (end < last && std::isalnum(static_cast<unsigned char>(m_text[end])))
        ++end;
    const size_t length = end - f.pos;
    if (length == 0 || length > static_cast<size_t>(kExprMaxNameLength))
        return false;
    const std::string name(m_text + f.pos, length);
    f.pos = end;
    if (const CKVunit* unit = m_units.FindUnitByIdent(name)) {
        operand.unit = unit;
        return true;
    }
    if (name == "pi") {
        operand.number = kPi;
        return true;
    }
    return false;
}

bool Evaluator::ApplySign(Frame& f, char sign, Outcome& right) {
    const bool minus = sign == '-';
    if (f.unit && right.value) {
        const double s = minus ? -*right.value : *right.value;
        f.unit->m_dOffset += s;
        return true;
    }
    if (!f.unit && f.value && right.unit) {
        // The offset set here is dropped again by the copy, so the result has
        // offset 0 and the accumulated number stays the numeric result.
        right.unit->m_dOffset = (minus ? -right.unit->m_dOffset : right.unit->m_dOffset) + *f.value;
        f.unit = TmpCopy(*right.unit);
        return true;
    }
    if (!right.value)
        return false;
    const double s = minus ? -*right.value : *right.value;
    if (!f.value)
        f.value = s;
    else
        f.value = *f.value + s;
    return true;
}

bool Evaluator::Combine(Frame& f, Operand& operand) {
    const char pending = f.pending;
    f.pending = 0;
    const CKVunit* unit = operand.unit;
    Number& number = operand.number;
    if (pending == 0 || (!f.unit && !f.value)) {
        if (unit) {
            if (f.unit)
                return false;
            f.unit = TmpCopy(*unit);
        }
        if (number) {
            if (f.value)
                return false;
            f.value = number;
        }
        return true;
    }
    if (pending == '*') {
        if (f.unit && number)
            f.unit = TmpCopy(*f.unit * *number);
        else if (f.value && !f.unit && unit) {
            f.unit = TmpCopy(*unit * *f.value);
            f.value.reset();
        } else if (f.value && number)
            f.value = *f.value * *number;
        else if (f.unit && unit)
            f.unit = TmpCopy(*f.unit * *unit);
        return true;
    }
    if (pending == '/') {
        if (f.unit && number)
            f.unit = TmpCopy(*f.unit / *number);
        else if (f.value && !f.unit && unit) {
            f.unit = TmpCopy(*f.value / *unit);
            f.value.reset();
        } else if (f.value && number)
            f.value = *f.value / *number;
        else if (f.unit && unit)
            f.unit = TmpCopy(*f.unit / *unit);
        return true;
    }
    // '^': a unit exponent is an error.
    if (f.unit && number)
        f.unit = TmpCopy(*f.unit ^ *number);
    else if (f.value && number)
        f.value = std::pow(*f.value, *number);
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

bool xunEvaluateExpression_(const char* expr, const IUnitSet& units, CKVunit** unit,
                            double** value) {
    *unit = nullptr;
    *value = nullptr;
    DetermineDecimalSymbol();
    Outcome outcome = Evaluator(expr, std::strlen(expr), units).Run();
    if (outcome.value)
        *value = new double(*outcome.value);
    *unit = outcome.unit.release();
    return outcome.ok;
}
