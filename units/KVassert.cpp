#include "units/KVassert.h"

// The C library declares its assertion routine only while NDEBUG is unset;
// the checks of this library are active in every build.
#undef NDEBUG
#include <assert.h>

namespace {
XunAssertHook AssertHook_ = nullptr;
}

XunAssertHook xunSetAssertHook_(XunAssertHook hook) {
    XunAssertHook previous = AssertHook_;
    AssertHook_ = hook;
    return previous;
}

void xunAssertFail_(const char* expr, const char* source, unsigned line, const char* function) {
    if (AssertHook_ != nullptr)
        AssertHook_(expr, source, line, function);
    // glibc prints "<program>: <source>:<line>: <function>: Assertion `<expr>' failed."
    // on standard error and aborts.
    __assert_fail(expr, source, line, function);
}
