// xun-bench-load MODE DATADIR: times one load in this fresh process and
// prints the nanoseconds it took on standard output (exit status 0), or
// reports what failed on standard error (exit status 1).
//   xun      xunLoadItemTypeTables("") with KORVANE_HOME = DATADIR, through
//            the load cache as the environment sets it (XUN_CACHE_DIR)
//   xun-parse  the same with the load cache off: the XML is parsed
//   xerces   the XML parser's initialisation alone
//   udunits  ut_read_xml(NULL), UDUNITS-2's default database
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <xercesc/util/PlatformUtils.hpp>

#include "xun.h"

#ifdef XUN_BENCH_UDUNITS
#include <udunits2.h>
#endif

namespace {

using Clock = std::chrono::steady_clock;

long long Nanoseconds(Clock::time_point start, Clock::time_point end) {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(end - start).count();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s xun|xun-parse|xerces|udunits DATADIR\n", argv[0]);
        return 1;
    }
    const char* mode = argv[1];
    long long ns = -1;
    if (std::strcmp(mode, "xun") == 0 || std::strcmp(mode, "xun-parse") == 0) {
        if (std::strcmp(mode, "xun-parse") == 0)
            setenv("XUN_CACHE_DIR", "off", 1);
        setenv("KORVANE_HOME", argv[2], 1);
        const Clock::time_point start = Clock::now();
        xunLoadItemTypeTables("");
        const Clock::time_point end = Clock::now();
        int tag = 0;
        const char* key = nullptr;
        if (!xunGetUnitTagFromIdent("UnitMeter", &tag) || !xunGetUnitKey(tag, &key)) {
            std::fprintf(stderr, "the installation in %s did not load\n", argv[2]);
            return 1;
        }
        ns = Nanoseconds(start, end);
    } else if (std::strcmp(mode, "xerces") == 0) {
        const Clock::time_point start = Clock::now();
        xercesc::XMLPlatformUtils::Initialize();
        const Clock::time_point end = Clock::now();
        ns = Nanoseconds(start, end);
#ifdef XUN_BENCH_UDUNITS
    } else if (std::strcmp(mode, "udunits") == 0) {
        ut_set_error_message_handler(ut_ignore);
        const Clock::time_point start = Clock::now();
        ut_system* system = ut_read_xml(nullptr);
        const Clock::time_point end = Clock::now();
        if (system == nullptr) {
            std::fprintf(stderr, "UDUNITS-2 could not read its database\n");
            return 1;
        }
        ns = Nanoseconds(start, end);
#endif
    } else {
        std::fprintf(stderr, "unknown mode %s\n", mode);
        return 1;
    }
    std::printf("%lld\n", ns);
    return 0;
}
