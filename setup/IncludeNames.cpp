#include "setup/IncludeNames.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

const char* const kCKeywords[] = {
    "auto",           "break",        "case",     "char",     "const",      "continue",
    "default",        "do",           "double",   "else",     "enum",       "extern",
    "float",          "for",          "goto",     "if",       "inline",     "int",
    "long",           "register",     "restrict", "return",   "short",      "signed",
    "sizeof",         "static",       "struct",   "switch",   "typedef",    "union",
    "unsigned",       "void",         "volatile", "while",    "_Bool",      "_Complex",
    "_Alignas",       "_Alignof",     "_Atomic",  "_Generic", "_Imaginary", "_Noreturn",
    "_Static_assert", "_Thread_local"};

const char* const kCsKeywords[] = {
    "abstract", "as",         "base",    "bool",     "break",     "byte",     "case",
    "catch",    "char",       "checked", "class",    "const",     "continue", "decimal",
    "default",  "delegate",   "do",      "double",   "else",      "enum",     "event",
    "explicit", "extern",     "false",   "finally",  "fixed",     "float",    "for",
    "foreach",  "goto",       "if",      "implicit", "in",        "int",      "interface",
    "internal", "is",         "lock",    "long",     "namespace", "new",      "null",
    "object",   "operator",   "out",     "override", "params",    "private",  "protected",
    "public",   "readonly",   "ref",     "return",   "sbyte",     "sealed",   "short",
    "sizeof",   "stackalloc", "static",  "string",   "struct",    "switch",   "this",
    "throw",    "true",       "try",     "typeof",   "uint",      "ulong",    "unchecked",
    "unsafe",   "ushort",     "using",   "virtual",  "void",      "volatile", "while"};

// In lower case: Pascal ignores the case of its reserved words.
const char* const kPascalKeywords[] = {"and",
                                       "array",
                                       "asm",
                                       "begin",
                                       "case",
                                       "const",
                                       "constructor",
                                       "destructor",
                                       "div",
                                       "do",
                                       "downto",
                                       "else",
                                       "end",
                                       "file",
                                       "for",
                                       "function",
                                       "goto",
                                       "if",
                                       "implementation",
                                       "in",
                                       "inherited",
                                       "inline",
                                       "interface",
                                       "label",
                                       "mod",
                                       "nil",
                                       "not",
                                       "object",
                                       "of",
                                       "operator",
                                       "or",
                                       "packed",
                                       "procedure",
                                       "program",
                                       "record",
                                       "reintroduce",
                                       "repeat",
                                       "self",
                                       "set",
                                       "shl",
                                       "shr",
                                       "string",
                                       "then",
                                       "to",
                                       "type",
                                       "unit",
                                       "until",
                                       "uses",
                                       "var",
                                       "while",
                                       "with",
                                       "xor"};

// Fortran's limit on the length of a name.
constexpr std::size_t kFortranNameLength = 63;

template <std::size_t N> bool Among(const char* const (&words)[N], const std::string& name) {
    return std::any_of(std::begin(words), std::end(words),
                       [&name](const char* word) { return name == word; });
}

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// "C", "C and C#", "C, Pascal and C#".
std::string Languages(bool c, bool pascal, bool fortran, bool cs) {
    const char* names[4];
    std::size_t count = 0;
    if (c)
        names[count++] = "C";
    if (pascal)
        names[count++] = "Pascal";
    if (fortran)
        names[count++] = "Fortran";
    if (cs)
        names[count++] = "C#";
    std::string list;
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0)
            list += i + 1 == count ? " and " : ", ";
        list += names[i];
    }
    return list;
}

std::string Character(char c) {
    char text[16];
    if (static_cast<unsigned char>(c) >= 0x20 && static_cast<unsigned char>(c) < 0x7F)
        std::snprintf(text, sizeof text, "'%c'", c);
    else
        std::snprintf(text, sizeof text, "the byte 0x%02X", static_cast<unsigned char>(c));
    return text;
}

std::string InAll(const std::string& reason) {
    return "not a valid constant name in " + Languages(true, true, true, true) + ": " + reason;
}

} // namespace

std::string xunFoldedName_(const std::string& name) {
    std::string folded(name);
    for (char& c : folded)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return folded;
}

std::string xunConstantNameProblem_(const std::string& name) {
    if (name.empty())
        return InAll("it is empty");
    if (name.find_first_of("\r\n") != std::string::npos)
        return InAll("it contains a line break");
    for (char c : name)
        if (!IsLetter(c) && !IsDigit(c) && c != '_')
            return InAll("it contains " + Character(c));
    if (IsDigit(name[0]))
        return InAll("it starts with a digit");
    std::string reasons;
    auto add = [&reasons](const std::string& reason) {
        reasons += (reasons.empty() ? "" : "; ") + reason;
    };
    if (name[0] == '_')
        add("in Fortran: it starts with '_'");
    if (name.size() > kFortranNameLength)
        add("in Fortran: it is longer than " + std::to_string(kFortranNameLength) + " characters");
    const bool c = Among(kCKeywords, name), cs = Among(kCsKeywords, name),
               pascal = Among(kPascalKeywords, xunFoldedName_(name));
    if (c || cs || pascal)
        add("in " + Languages(c, pascal, false, cs) + ": it is a keyword");
    return reasons.empty() ? std::string() : "not a valid constant name " + reasons;
}

std::string xunCommentTextProblem_(const std::string& text) {
    if (text.find_first_of("\r\n") != std::string::npos)
        return "contains a line break, which ends the comments of the Fortran and C# include "
               "files";
    if (text.find("*/") != std::string::npos)
        return "contains '*/', which ends the comment of the C include file";
    if (text.find("*)") != std::string::npos)
        return "contains '*)', which ends the comment of the Pascal include file";
    return std::string();
}
