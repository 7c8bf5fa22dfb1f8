// What xunLoadItemTypeTables does after the setup file: the localised texts
// of the language files "xuntype.lan", "xununit.lan" and "xunfilter.lan" of
// a folder replace the descriptions (and the units' abbreviations) of a
// registry. A file that cannot be opened is skipped; a key missing from an
// opened file ends a load (assertion of the reader) and is reported in a
// check.
#pragma once

#include <string>
#include <vector>

#include "common/LoadReport.h"
#include "registry/Registries.h"
#include "setup/LoadCache.h"

// dir ends with a slash (the installation's "bin/" folder, for a load).
void xunApplyLanguageFiles_(CKVregistries& registries, const std::string& dir,
                            CXunLoadReport& report);

// The language files of a folder, in the order they are applied.
std::vector<std::string> xunLanguageFiles_(const std::string& dir);

// The whole of xunLoadItemTypeTables - the setup file, then the language
// files - through the load cache: an entry for the setup file and the
// language files together, beside the one for the setup file alone.
class CXunTablesCache {
  public:
    // Takes the whole load of path (null or empty: the default setup file)
    // with the language files of $KORVANE_HOME/bin from the cache when it
    // holds it: true when it did (as xunLoadFromCache_ does it). Throws what
    // the XML parser's initialisation throws, and std::bad_alloc.
    bool Load(const char* path);

    // After a load that parsed or took only the setup file from the cache:
    // stores the registries when the setup load was clean, the language
    // files printed nothing (report) and no file changed meanwhile. Never
    // throws.
    void Store(const CXunLoadReport& report) const;

  private:
    CXunLoadCache m_cache;
    bool m_cacheable = false;
};
