// The setup loader: reads the XML setup file and fills a registry in three
// passes (units, item types, filters). A second load adds what is new and
// refreshes what is already registered.
//
// The row rules live here once. A load of the process-wide registry
// (xunSetupLoad) runs them with printing and the designed assertions; a
// check (xunSetupCheck) runs them on a copy with an observer and without
// either (common/LoadReport.h).
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "common/LoadReport.h"
#include "registry/Registries.h"
#include "setup/LoadCache.h"

// Loads the setup file path (null or empty: $KORVANE_HOME/bin/XUN.xml) into
// registries. Returns 1 when the document was loaded and processed, 0 when
// it could not be read or parsed (or its path is too long). In a load the
// numeric locale is "C" while it runs and is restored after a successful
// load only, and szDocName records the file; in a check the locale and the
// evaluator's decimal symbol are restored in every case and szDocName is
// left alone. fileName receives the path used. When the file was refused
// because it passes a bound of the XML layer (common/Contract.h: entity
// expansion, text, memory, nesting, attributes), refusal (if given)
// receives why; it is left empty otherwise.
// externalFiles (if given) receives the number of external DTDs and
// entities the document made the load read.
int xunLoadSetupFile_(CKVregistries& registries, const char* path, CXunLoadReport& report,
                      std::string& fileName, std::string* refusal = nullptr,
                      std::size_t* externalFiles = nullptr);

// The setup file a load of path reads: path, or (null or empty)
// $KORVANE_HOME/bin/XUN.xml.
std::string xunSetupFileName_(const char* path);

// xunSetupLoad: loads path into the process-wide registry as
// xunLoadSetupFile_ does (printing as designed), through the load cache
// (setup/LoadCache.h) when the registry is empty.
int xunLoadProcessSetupFile_(const char* path, std::string& fileName, std::string* refusal);

// Whether the last xunLoadProcessSetupFile_ was clean (into an empty
// registry, nothing printed, no file read but the setup file, which did
// not change meanwhile), or taken from the cache.
bool xunLastSetupLoadWasClean_();

// Prepares cache for a load of fileName (and the files beside it that the
// load reads after it) into the process-wide registry: false when such a
// load cannot go through the cache (the registry is not empty, ...).
bool xunPrepareLoadCache_(CXunLoadCache& cache, const std::string& fileName,
                          const std::vector<std::string>& beside);

// Takes a prepared load from the cache with what a load that parses does
// besides filling the registry: the XML parser library is initialised (with
// the numeric locale "C", as a parse does it, and failing as it would fail
// there), szDocName names the file and the evaluator's decimal symbol is
// what that load left. False (nothing changed but the parser's
// initialisation) when the cache has no entry.
bool xunLoadFromCache_(const CXunLoadCache& cache, const std::string& fileName);
