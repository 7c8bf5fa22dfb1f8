// xun includes: the include files and the allowed-units report, and with
// --fixed-form a fixed-form twin of the Fortran file; xun where: which data
// the other commands use.
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "Location.h"
#include "Output.h"
#include "xun.h"

namespace xuntool {

namespace {

const char* const kWrittenFiles[] = {"xunDefine.c__", "xunDefine.f__", "xunDefine.p__",
                                     "xunDefine.cs", "xunAllowedUnits.HTML"};

const char kFreeForm[] = "xunDefine.f__";
const char kFixedForm[] = "xunDefine.f77";

// Fixed form: a comment line has C in column 1, a statement starts in column
// 7, a continuation line has a character in column 6, and nothing counts
// beyond column 72.
const size_t kFixedLastColumn = 72;
const size_t kFixedStatementWidth = kFixedLastColumn - 6;
const size_t kFixedCommentWidth = kFixedLastColumn - 6;

std::string TrimBlanks(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos)
        return "";
    const size_t last = text.find_last_not_of(" \t");
    return text.substr(first, last - first + 1);
}

// A comment as "C     text" lines, the text wrapped at blanks (or cut where a
// word is longer than a line).
void AppendFixedComment(const std::string& text, std::vector<std::string>& lines) {
    std::string rest = TrimBlanks(text);
    if (rest.empty()) {
        lines.push_back("C");
        return;
    }
    while (!rest.empty()) {
        size_t take = rest.size();
        if (take > kFixedCommentWidth) {
            const size_t blank = rest.rfind(' ', kFixedCommentWidth);
            take = blank != std::string::npos && blank > 0 ? blank : kFixedCommentWidth;
        }
        lines.push_back("C     " + TrimBlanks(rest.substr(0, take)));
        rest = TrimBlanks(rest.substr(take));
    }
}

// A statement from column 7, continued on lines with '&' in column 6. A line
// breaks after a blank or a comma outside quotes where one lies in its
// second half, else at column 72: blanks do not count in fixed form, so a
// break may fall within a name, and within quotes the line is filled.
void AppendFixedStatement(const std::string& statement, std::vector<std::string>& lines) {
    std::string rest = statement;
    const char* margin = "      ";
    while (!rest.empty()) {
        size_t take = rest.size();
        if (take > kFixedStatementWidth) {
            take = kFixedStatementWidth;
            char quote = 0;
            size_t lastBreak = 0;
            for (size_t i = 0; i < kFixedStatementWidth; ++i) {
                const char c = rest[i];
                if (quote != 0) {
                    if (c == quote)
                        quote = 0;
                } else if (c == '\'' || c == '"') {
                    quote = c;
                } else if (c == ' ' || c == ',') {
                    lastBreak = i + 1;
                }
            }
            if (quote == 0 && lastBreak > kFixedStatementWidth / 2)
                take = lastBreak;
        }
        std::string piece = rest.substr(0, take);
        rest = rest.substr(take);
        if (take < kFixedStatementWidth)
            piece = piece.substr(0, piece.find_last_not_of(' ') + 1);
        lines.push_back(margin + piece);
        margin = "     &";
    }
}

// The position of a '!' that starts a comment (outside quotes), or npos.
size_t CommentStart(const std::string& line) {
    char quote = 0;
    for (size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (quote != 0) {
            if (c == quote)
                quote = 0;
        } else if (c == '\'' || c == '"') {
            quote = c;
        } else if (c == '!') {
            return i;
        }
    }
    return std::string::npos;
}

// The fixed-form twin of the free-form Fortran include file: comments become
// C lines (a trailing comment goes on a line of its own before its
// statement), "integer, parameter :: NAME = VALUE" becomes the Fortran 77
// pair "INTEGER NAME" and "PARAMETER (NAME = VALUE)", and any other
// statement is kept as it is, continued where it is longer than a line.
std::vector<std::string> FixedFormLines(std::istream& freeForm) {
    static const std::regex parameter(
        R"(^\s*integer\s*,\s*parameter\s*::\s*([A-Za-z][A-Za-z0-9_]*)\s*=\s*(\S+)\s*$)",
        std::regex::icase);
    std::vector<std::string> lines;
    AppendFixedComment(std::string(kFixedForm) + ": the fixed-form twin of " + kFreeForm +
                           ", written by xun includes --fixed-form",
                       lines);
    std::string line;
    while (std::getline(freeForm, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        const size_t bang = CommentStart(line);
        const std::string statement = TrimBlanks(line.substr(0, bang));
        const std::string comment = bang == std::string::npos ? "" : line.substr(bang + 1);
        if (statement.empty()) {
            if (bang == std::string::npos)
                lines.push_back("");
            else
                AppendFixedComment(comment, lines);
            continue;
        }
        if (bang != std::string::npos)
            AppendFixedComment(comment, lines);
        std::smatch match;
        if (std::regex_match(statement, match, parameter)) {
            AppendFixedStatement("INTEGER " + match.str(1), lines);
            AppendFixedStatement("PARAMETER (" + match.str(1) + " = " + match.str(2) + ")", lines);
        } else {
            AppendFixedStatement(statement, lines);
        }
    }
    return lines;
}

// Writes xunDefine.f77 from the xunDefine.f__ that the library just wrote.
bool WriteFixedForm(std::string& error) {
    std::ifstream in(kFreeForm);
    if (!in) {
        error = std::string("cannot read '") + kFreeForm + "': " + std::strerror(errno);
        return false;
    }
    const std::vector<std::string> lines = FixedFormLines(in);
    std::FILE* out = std::fopen(kFixedForm, "w");
    if (out == nullptr) {
        error = std::string("cannot write '") + kFixedForm + "': " + std::strerror(errno);
        return false;
    }
    for (const std::string& text : lines)
        std::fprintf(out, "%s\n", text.c_str());
    if (std::fclose(out) != 0) {
        error = std::string("cannot write '") + kFixedForm + "': " + std::strerror(errno);
        return false;
    }
    return true;
}

} // namespace

int RunIncludes(const Invocation& call) {
    DataLocation location;
    int status = kExitOk;
    if (!LoadData(call, location, status))
        return status;

    const std::string out = call.Value("--out");
    if (!out.empty()) {
        struct stat info;
        if (::stat(out.c_str(), &info) != 0 && ::mkdir(out.c_str(), 0777) != 0)
            return Fail(kExitFailed,
                        "cannot make directory '" + out + "': " + std::strerror(errno));
        if (::chdir(out.c_str()) != 0)
            return Fail(kExitFailed,
                        "cannot enter directory '" + out + "': " + std::strerror(errno));
    }
    const std::string where = out.empty() ? "the current directory" : "'" + out + "'";
    if (::access(".", W_OK) != 0)
        return Fail(kExitFailed, "cannot write into " + where + ": " + std::strerror(errno));
    // The library's writer ends the process when it cannot open one of its
    // files: each of them is opened here first, so that it can say which
    // one and why.
    const bool fixedForm = call.Has("--fixed-form");
    std::vector<std::string> names(std::begin(kWrittenFiles), std::end(kWrittenFiles));
    if (fixedForm)
        names.push_back(kFixedForm);
    for (const std::string& name : names) {
        std::FILE* file = std::fopen(name.c_str(), "a");
        if (file == nullptr)
            return Fail(kExitFailed,
                        "cannot write '" + JoinPath(out, name) + "': " + std::strerror(errno));
        std::fclose(file);
    }
    xunWriteItemTypeIncludes();
    std::string error;
    if (fixedForm && !WriteFixedForm(error))
        return Fail(kExitFailed, error);
    for (const std::string& name : names)
        std::printf("%s\n", JoinPath(out, name).c_str());
    return kExitOk;
}

int RunWhere(const Invocation& call) {
    DataLocation location;
    std::string error;
    if (!ResolveLocation(call, "", location, error))
        return Fail(kExitFailed, error);
    std::printf("setup file: %s\n", location.setupFile.c_str());
    std::printf("language files: %s\n",
                location.home.empty() ? "(none)" : (location.home + "/bin").c_str());
    return kExitOk;
}

} // namespace xuntool
