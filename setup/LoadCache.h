// The load cache: what a load of a setup file put into the empty
// process-wide registry, kept in a file so that the next process that loads
// the same bytes takes it from there instead of parsing XML again.
//
// An entry is found by a key that covers everything the outcome of such a
// load depends on: the contents of the setup file (and, for the whole load
// of xunLoadItemTypeTables, of the language files it reads after it), the
// build of this library (its build id), the character set the XML parser
// converts texts into (the locale and its environment variables) and the
// evaluator's decimal symbol. Any change of any of them is another key: an
// entry is never out of date, it is only no longer found.
//
// Only clean loads are stored: into an empty registry, that printed
// nothing, read no file but the setup file (no external DTD or entity), and
// whose files did not change while they were read. Such a load is taken
// from the cache with the same effects: the same registries, szDocName,
// decimal symbol and locale.
//
// The folder is XUN_CACHE_DIR, else $XDG_CACHE_HOME/libxun, else
// $HOME/.cache/libxun; XUN_CACHE_DIR set to "" or "off" turns the cache off.
// It keeps at most kLoadCacheEntries entries (the oldest go). An entry that
// is not the current user's, does not read back exactly (its checksum) or
// does not decode into registries whose invariants hold is ignored, and the
// load parses the file as always.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "registry/Registries.h"

class CXunLoadCache {
  public:
    // The cache folder from the environment; empty when the cache is off.
    static std::string Folder();

    // Prepares the cache for a load of fileName and of the files beside it
    // that the load reads after it (a file that cannot be opened counts as
    // skipped): hashes them and makes the key, with the character-set
    // environment the XML parser was (or will be) initialised in
    // (xunCharacterSetEnvironment_). False when this load cannot use the
    // cache (no folder, the setup file is no regular local file, the build
    // has no build id, ...).
    bool Prepare(const std::string& fileName, const std::vector<std::string>& beside,
                 const std::string& characterSet, char decimalSymbol);

    // The registries stored under the key, and the decimal symbol after
    // that load; null when there is no usable entry.
    std::unique_ptr<CKVregistries> Find(char& decimalSymbol) const;

    // Whether the files still have the contents Prepare read.
    bool Unchanged() const;

    // Stores the registries of a clean load of the prepared bytes. Never
    // throws: a cache that cannot be written is no error of the load.
    void Store(const CKVregistries& registries, char decimalSymbol) const;

  private:
    // The entry's file.
    std::string EntryPath() const;
    // The content hash of each file (the setup file first), empty for a
    // file that cannot be opened.
    bool HashFiles(std::vector<std::string>& contents) const;

    std::string m_folder;
    std::vector<std::string> m_files;
    std::vector<std::string> m_contents;
    unsigned char m_key[16] = {};
};

// The registries as the bytes of an entry's payload; false when they hold
// something an entry cannot express (a unit borrowing a dimension that is
// not one of the shared base dimensions).
bool xunEncodeRegistries_(const CKVregistries& registries, char decimalSymbol, std::string& out);

// The registries a payload describes; null for any bytes that are not a
// payload xunEncodeRegistries_ could have written (never more memory than
// a small multiple of size).
std::unique_ptr<CKVregistries> xunDecodeRegistries_(const unsigned char* bytes, std::size_t size,
                                                    char& decimalSymbol);

// What decides the character set the XML parser converts texts into when
// it is initialised: the locale's character type and character set, and
// the environment variables its conversion library reads when the locale
// is "C".
std::string xunCharacterSetEnvironment_();

// Whether the last load of the process-wide registry was taken from the
// cache (for tests and benchmarks).
bool xunLastLoadWasCached_();
void xunSetLastLoadWasCached_(bool cached);
