#include "bench_common.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "xun.h"

#ifdef XUN_BENCH_UDUNITS
#include <udunits2.h>
#endif

namespace xunbench {

const char* DataDir() {
    return XUN_BENCH_DATA_DIR;
}

void LoadDefaultInstallation() {
    static const bool loaded = [] {
        setenv("KORVANE_HOME", DataDir(), 1);
        xunLoadItemTypeTables("");
        return true;
    }();
    (void)loaded;
}

int TagOf(const char* ident) {
    int tag = 0;
    if (!xunGetUnitTagFromIdent(ident, &tag)) {
        std::fprintf(stderr, "unit %s is not in the installation %s\n", ident, DataDir());
        std::abort();
    }
    return tag;
}

#ifdef XUN_BENCH_UDUNITS
ut_system* UdunitsSystem() {
    static ut_system* const system = [] {
        ut_set_error_message_handler(ut_ignore);
        ut_system* s = ut_read_xml(nullptr);
        if (s == nullptr) {
            std::fprintf(stderr, "UDUNITS-2 could not read its database\n");
            std::abort();
        }
        return s;
    }();
    return system;
}

const std::vector<std::string>& UdunitsUnitNames() {
    static const std::vector<std::string> names = [] {
        // The database is split into files beside the one ut_read_xml reads;
        // every unit has a singular name or a symbol there.
        ut_status status;
        std::string path = ut_get_path_xml(nullptr, &status);
        const std::string dir = path.substr(0, path.find_last_of('/') + 1);
        const std::regex entry("<(singular|symbol)>([^<]+)</(singular|symbol)>");
        std::set<std::string> unique;
        std::vector<std::string> accepted;
        for (const char* file : {"udunits2-base.xml", "udunits2-derived.xml",
                                 "udunits2-accepted.xml", "udunits2-common.xml"}) {
            std::ifstream in(dir + file);
            std::stringstream text;
            text << in.rdbuf();
            const std::string body = text.str();
            for (std::sregex_iterator it(body.begin(), body.end(), entry), end; it != end; ++it) {
                const std::string name = (*it)[2];
                if (!unique.insert(name).second)
                    continue;
                ut_unit* unit = ut_parse(UdunitsSystem(), name.c_str(), UT_UTF8);
                if (unit != nullptr) {
                    accepted.push_back(name);
                    ut_free(unit);
                }
            }
        }
        return accepted;
    }();
    return names;
}
#endif

} // namespace xunbench
