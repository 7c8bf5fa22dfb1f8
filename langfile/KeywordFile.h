// Keyword files: the reader of the unit base-group file.
//
// A keyword file is plain text made of sections, each holding keywords with
// numbered parameters:
//
//     # user units of the hydraulics group
//     [Item_Unit]
//     Data = 1001, 2001
//     Data = 1002, 2004
//
// Syntax, line by line:
// - Every line is first trimmed of leading and trailing blanks and tabs, and
//   of a trailing carriage return (so files with CRLF line ends read alike).
//   Blank lines, and lines that then begin with '#' or ';', are comments.
// - "[Name]" opens a section called Name. Blanks inside the brackets around
//   the name are trimmed; nothing may follow the closing bracket.
// - "Keyword = p1, p2, ..." adds a keyword to the current section. Blanks
//   around the name and around each parameter are trimmed. "Keyword =" with
//   nothing after the sign is a keyword without parameters; an empty
//   parameter between commas (or after a final comma) is an error.
// - Names of sections and keywords are made of letters, digits, '_', '-' and
//   '.', and compare case-sensitively.
// - A parameter is one of three kinds:
//     integer: decimal digits with an optional sign ("12", "-7", "+3", "007"),
//              within the signed 32-bit range;
//     real:    an optional sign, digits with a decimal point and/or an
//              exponent ("1.5", "-.5", "2.", "1e3", "6.02E+23"), neither
//              too large for a double nor so small that it would read as 0
//              ("1e999" and "1e-400" are errors);
//     text:    any characters except the double quote, between double quotes
//              ("water level"); commas inside the quotes belong to the text;
//              there are no escapes.
//   Numbers are read independently of the process locale.
// - Every other line, a keyword before the first section, an integer outside
//   the 32-bit range, a real out of the range above, or a text without
//   its closing quote is a syntax error. Comments cannot follow other content
//   on the same line.
//
// Sections are numbered by occurrence per name, from 1 ("[A] [B] [A]" gives A
// number 1, B number 1 and A number 2); within a section, keywords are
// numbered the same way per name; parameters are numbered from 1.
//
// Lines may be of any length and contain any bytes. A file with a syntax
// error is not loaded at all.
//
// Every function accepts null handles and null names and then returns null
// (or 0, or does nothing); numbers below 1 or beyond the last one give null.
// No function throws. Handles of sections, keywords and parameters belong to
// the loaded file and stay valid until lrxClose. The functions keep global
// state (the last error) and are for use from one thread at a time.
#pragma once

// Opaque handles.
class CLrxFile;    // a loaded file
class CLrxSection; // one section of a loaded file
class CLrxKeyword; // one keyword of a section
class CLrxParam;   // one parameter of a keyword

// The kinds of parameter, as lrxGetParamType gives them.
enum ELrxParamType {
    LRX_PARAM_NONE = 0,
    LRX_PARAM_INT = 1,
    LRX_PARAM_REAL = 2,
    LRX_PARAM_TEXT = 3
};

// Reads the named file. mode 1 (read the whole file) is the only mode; any
// other value fails. Returns the loaded file, which the caller releases with
// lrxClose, or null when the name is null, the mode is not 1, the file cannot
// be opened or read, or it has a syntax error. Each call sets the text of
// lrxGetErrorGlb: empty on success, the reason on failure.
CLrxFile* lrxLoadFile(const char* name, int mode) noexcept;

// The num-th section called name (counting from 1), or null.
const CLrxSection* lrxTargetByNameNum(const CLrxFile* file, const char* name, int num) noexcept;

// The num-th keyword called name in the section (counting from 1), or null;
// null too when section is null.
const CLrxKeyword* lrxKeywordByNameNum(const CLrxSection* section, const char* name,
                                       int num) noexcept;

// The num-th parameter of the keyword (counting from 1); null for a number
// below 1 or beyond the last parameter, and for a null keyword.
const CLrxParam* lrxParamByNum(const CLrxKeyword* keyword, int num) noexcept;

// The value of an integer parameter. A real or a text parameter gives 0
// (reals are not rounded, texts not converted), as does a null parameter.
int lrxGetInt(const CLrxParam* param) noexcept;

// The kind of a parameter; LRX_PARAM_NONE for null.
ELrxParamType lrxGetParamType(const CLrxParam* param) noexcept;

// The value of a real parameter, or of an integer parameter as a double; 0
// for a text parameter or null.
double lrxGetReal(const CLrxParam* param) noexcept;

// The text of a text parameter (without its quotes); null for an integer or
// real parameter or for null. The text lives as long as the loaded file.
const char* lrxGetText(const CLrxParam* param) noexcept;

// Whether the last lrxLoadFile failed because memory ran out (so that a
// caller can tell that from a file that cannot be loaded).
bool lrxOutOfMemory() noexcept;

// The line of the file on which the keyword stands (from 1); 0 for null.
int lrxKeywordLine(const CLrxKeyword* keyword) noexcept;

// Releases a loaded file and sets *file to null; every section, keyword and
// parameter handle of it becomes invalid. Does nothing when file or *file is
// null.
void lrxClose(CLrxFile** file) noexcept;

// The outcome of the last lrxLoadFile call: the empty text when it succeeded
// (or before any call); otherwise "<name>:<line>: <reason>" for a syntax
// error, "<name>: <reason>" when the file could not be loaded for another
// reason (it cannot be opened or read, the mode is not 1, memory ran out), or
// "no file name given" for a null name. The text stays valid until the next
// lrxLoadFile call.
const char* lrxGetErrorGlb() noexcept;
