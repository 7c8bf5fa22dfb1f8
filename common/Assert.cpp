#include "common/Assert.h"

// The C library declares its assertion routine only while NDEBUG is unset;
// the checks of this library are active in every build.
#undef NDEBUG
#include <assert.h>

namespace {
XunAssertHook AssertHook_ = nullptr;
thread_local int TrapDepth_ = 0;
} // namespace

XunAssertionTrap::XunAssertionTrap() {
    ++TrapDepth_;
}

XunAssertionTrap::~XunAssertionTrap() {
    --TrapDepth_;
}

bool xunAssertionTrapped_() {
    return TrapDepth_ > 0;
}

XunAssertHook xunSetAssertHook_(XunAssertHook hook) {
    XunAssertHook previous = AssertHook_;
    AssertHook_ = hook;
    return previous;
}

void xunAssertFail_(const XunAssertion& assertion) {
    if (TrapDepth_ > 0)
        throw XunAssertionFailed{&assertion};
    if (AssertHook_ != nullptr)
        AssertHook_(assertion.expression, assertion.source, assertion.line, assertion.function);
    // glibc prints "<program>: <source>:<line>: <function>: Assertion `<expr>' failed."
    // on standard error and aborts.
    __assert_fail(assertion.expression, assertion.source, assertion.line, assertion.function);
}
