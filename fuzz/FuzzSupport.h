// Shared by the fuzz targets: the assertion hook, temporary input files, the
// registry the targets work over, and the reset of the registries between
// inputs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// What the assertion hook throws. The library's assertions are part of its
// behaviour (an invariant that does not hold ends the process), so a target
// catches this and goes on with the next input; only memory errors, undefined
// behaviour, leaks, time-outs and the checks of the targets themselves stop a
// fuzzer. Deliberately not derived from std::exception: the setup loader
// catches std::exception and would swallow it.
struct XunFuzzAssertion {
    const char* expr;
    const char* source;
    unsigned line;
    const char* function;
};

// Installs the assertion hook, makes the private temporary directory and, unless
// XUN_FUZZ_VERBOSE is set, sends the library's standard output (the loader's
// messages about bad rows) to /dev/null. Call it from LLVMFuzzerInitialize.
void xunFuzzInit();

// The number of assertions the hook has turned into exceptions so far.
unsigned long xunFuzzAssertionCount();

// Writes the bytes into a file of the given name in the process's private
// temporary directory (removed at exit) and returns the file's full path.
std::string xunFuzzWriteFile(const char* name, const uint8_t* data, size_t size);

// Fills the registries once for the targets that need registered units: the
// setup file named by XUN_FUZZ_SETUP, else the shipped default installation
// (data/bin/XUN.xml) when it loads and defines units, else the small fixture
// installation fuzz/fixture/XUN.xml. Returns the file used.
std::string xunFuzzLoadInstallation();

// Replaces the registry with an empty one (freeing everything the old one
// owns) and resets the product filter. Only the setup target, whose
// registries start empty for every input, calls it.
void xunFuzzClearRegistries();

// Ends the process with a message: a check of a target failed.
[[noreturn]] void xunFuzzFail(const char* what);
