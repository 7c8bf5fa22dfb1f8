// Assertions that end the process with the standard assertion message.
//
// The invariant checks of the library are part of its behaviour: they stay
// active in every build and print the C library's assertion message with the
// expression text, source name, line and function text that each check names
// (for example "m_dFactor", "KVunit", 285, "void CKVunit::AssertValid() const"),
// then abort. The texts are passed literally, not taken from the compiler.
#pragma once

// A hook that runs before the abort. Fuzz builds install one that throws, so
// that a fuzz target can tell a specified assertion from a memory error.
typedef void (*XunAssertHook)(const char* expr, const char* source, unsigned line,
                              const char* function);

// Installs a hook (null removes it) and returns the previous one.
XunAssertHook xunSetAssertHook_(XunAssertHook hook);

[[noreturn]] void xunAssertFail_(const char* expr, const char* source, unsigned line,
                                 const char* function);

#define XUN_ASSERT(cond, exprText, source, line, function)                                         \
    ((cond) ? (void)0 : xunAssertFail_(exprText, source, line, function))
