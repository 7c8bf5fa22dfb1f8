// The table of unit strings (tests/data/unit-strings.txt): reading it, for
// the tests that run its lines through xunParseUnit and compare them with
// UDUNITS-2. The format is described at the top of the table.
#pragma once

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace xuntest {

struct UnitStringCase {
    int line = 0;
    std::string text;      // the bytes, escapes decoded
    std::string written;   // the text as the table writes it
    char kind = 0;         // '=' a registered unit, '~' a meaning, '!' a failure
    std::string ident;     // '=': the unit
    double factor = 0.0;   // '~'
    double offset = 0.0;   // '~'
    std::string dimension; // '~'
    std::string code;      // '!': the name after XUN_ERR_
    std::string message;   // '!': a part of the message
    std::vector<std::string> notes;

    bool Has(const std::string& note) const {
        for (const std::string& n : notes)
            if (n == note)
                return true;
        return false;
    }
    // The value of a note "name=value" ("" when none).
    std::string Note(const std::string& name) const {
        for (const std::string& n : notes)
            if (n.compare(0, name.size() + 1, name + "=") == 0)
                return n.substr(name.size() + 1);
        return "";
    }
};

// Decodes \\, \t, \s, \xNN and \R{count}{text} (whose text may hold the
// others but no repeat).
inline std::string DecodeUnitString(const std::string& written, bool& ok) {
    std::string out;
    ok = true;
    for (std::size_t i = 0; i < written.size(); ++i) {
        if (written[i] != '\\') {
            out += written[i];
            continue;
        }
        if (i + 1 >= written.size()) {
            ok = false;
            return out;
        }
        const char c = written[++i];
        if (c == '\\')
            out += '\\';
        else if (c == 't')
            out += '\t';
        else if (c == 's')
            out += ' ';
        else if (c == 'x' && i + 2 < written.size()) {
            out += static_cast<char>(std::strtol(written.substr(i + 1, 2).c_str(), nullptr, 16));
            i += 2;
        } else if (c == 'R' && i + 1 < written.size() && written[i + 1] == '{') {
            const std::size_t countEnd = written.find('}', i + 2);
            if (countEnd == std::string::npos || written[countEnd + 1] != '{') {
                ok = false;
                return out;
            }
            const long count =
                std::strtol(written.substr(i + 2, countEnd - i - 2).c_str(), nullptr, 10);
            const std::size_t bodyEnd = written.find('}', countEnd + 2);
            if (bodyEnd == std::string::npos) {
                ok = false;
                return out;
            }
            bool bodyOk = true;
            const std::string body =
                DecodeUnitString(written.substr(countEnd + 2, bodyEnd - countEnd - 2), bodyOk);
            ok = ok && bodyOk;
            for (long n = 0; n < count; ++n)
                out += body;
            i = bodyEnd;
        } else {
            ok = false;
            return out;
        }
    }
    return out;
}

inline std::vector<std::string> SplitTabs(const std::string& line) {
    std::vector<std::string> fields;
    std::size_t start = 0;
    for (;;) {
        const std::size_t tab = line.find('\t', start);
        fields.push_back(
            line.substr(start, tab == std::string::npos ? std::string::npos : tab - start));
        if (tab == std::string::npos)
            return fields;
        start = tab + 1;
    }
}

// The cases of the table, or an empty list with error set.
inline std::vector<UnitStringCase> ReadUnitStringTable(std::string& error) {
    std::vector<UnitStringCase> cases;
    const char* data = std::getenv("XUN_TEST_DATA");
    const std::string path =
        std::string(data != nullptr ? data : "tests/data") + "/unit-strings.txt";
    std::ifstream in(path);
    if (!in) {
        error = "cannot read " + path;
        return cases;
    }
    std::string line;
    int number = 0;
    while (std::getline(in, line)) {
        ++number;
        if (line.empty() || line[0] == '#')
            continue;
        const std::vector<std::string> fields = SplitTabs(line);
        if (fields.size() < 2) {
            error = path + ":" + std::to_string(number) + ": no expectation";
            return std::vector<UnitStringCase>();
        }
        UnitStringCase c;
        c.line = number;
        c.written = fields[0];
        bool ok = true;
        c.text = DecodeUnitString(fields[0], ok);
        const std::string& expectation = fields[1];
        std::istringstream words(expectation);
        std::string kind;
        words >> kind;
        if (!ok || kind.size() != 1) {
            error = path + ":" + std::to_string(number) + ": cannot read the line";
            return std::vector<UnitStringCase>();
        }
        c.kind = kind[0];
        if (c.kind == '=') {
            words >> c.ident;
        } else if (c.kind == '~') {
            std::string factor, next;
            words >> factor;
            c.factor = std::strtod(factor.c_str(), nullptr);
            words >> next;
            if (next == "@") {
                std::string offset;
                words >> offset;
                c.offset = std::strtod(offset.c_str(), nullptr);
                words >> next;
            }
            std::string rest;
            std::getline(words, rest);
            c.dimension = next + rest;
        } else if (c.kind == '!') {
            words >> c.code;
            std::getline(words, c.message);
            if (!c.message.empty() && c.message[0] == ' ')
                c.message.erase(0, 1);
        } else {
            error = path + ":" + std::to_string(number) + ": unknown expectation " + kind;
            return std::vector<UnitStringCase>();
        }
        if (fields.size() > 2) {
            std::istringstream notes(fields[2]);
            std::string note;
            while (notes >> note)
                c.notes.push_back(note);
        }
        cases.push_back(c);
    }
    return cases;
}

} // namespace xuntest
