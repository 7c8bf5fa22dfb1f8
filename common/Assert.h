// Assertions that end the process with the standard assertion message.
//
// The invariant checks of the library are part of its behaviour: they stay
// active in every build and print the C library's assertion message with
// the expression text, source name, line and function text of their
// descriptor (common/Contract.h), then abort. The texts are passed
// literally, not taken from the compiler.
//
// Two ways to observe an assertion without ending the process, for code
// that must find out what a run would do without doing it:
// - an assertion trap (XunAssertionTrap) on the calling thread turns every
//   assertion into the exception XunAssertionFailed while the trap lives;
//   the load checks and the unit-string parser use it;
// - a process-wide hook (xunSetAssertHook_), which runs before the abort;
//   the fuzz targets install one that throws.
#pragma once

#include "common/Contract.h"

// Thrown instead of ending the process while a trap is set on the thread.
// Deliberately not derived from std::exception, so that no handler for
// ordinary errors swallows it.
struct XunAssertionFailed {
    const XunAssertion* assertion;
};

// While an object of this class lives, assertions on the constructing
// thread throw XunAssertionFailed. Traps nest.
class XunAssertionTrap {
  public:
    XunAssertionTrap();
    ~XunAssertionTrap();
    XunAssertionTrap(const XunAssertionTrap&) = delete;
    XunAssertionTrap& operator=(const XunAssertionTrap&) = delete;
};

// Whether a trap is set on the calling thread.
bool xunAssertionTrapped_();

// A hook that runs before the abort (when no trap is set).
typedef void (*XunAssertHook)(const char* expr, const char* source, unsigned line,
                              const char* function);

// Installs a hook (null removes it) and returns the previous one.
XunAssertHook xunSetAssertHook_(XunAssertHook hook);

[[noreturn]] void xunAssertFail_(const XunAssertion& assertion);

#define XUN_ASSERT(cond, assertion) ((cond) ? (void)0 : xunAssertFail_(assertion))
