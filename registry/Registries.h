// CKVregistries: the units, item types and filters of one registry.
//
// The process-wide registry (xunRegistries_) is what the C interface reads
// and what a load fills; it lives until the process ends and its objects are
// never freed, so that texts handed out stay valid. A check of a setup file
// loads into a copy (Copy), which changes nothing of the original and frees
// everything when it goes.
#pragma once

#include <memory>

#include "registry/FilterRegistry.h"
#include "registry/ItemTypeRegistry.h"
#include "registry/UnitRegistry.h"

class CKVregistries {
  public:
    CKVregistries() = default;
    CKVregistries(const CKVregistries&) = delete;
    CKVregistries& operator=(const CKVregistries&) = delete;

    CKVunitRegistry units;
    CKVitemTypeRegistry itemTypes;
    CKVfilterRegistry filters;

    // A deep copy: every unit, item type (with its dimension, and its
    // allowed units taken from the copy's units) and filter.
    std::unique_ptr<CKVregistries> Copy() const;

    // Throws std::logic_error naming the first broken invariant: each
    // registry's own, and every allowed unit of an item type a registered
    // unit of the item type's dimension.
    void CheckInvariants() const;
};

// The process-wide registry. (Inline, through the pointer that
// xunResetRegistries_ replaces: a single conversion looks it up on every call.)
// A load taken from the load cache replaces it too (xunReplaceRegistries_):
// keep no reference to it across a load.
extern CKVregistries* xunRegistriesInstance_;
inline CKVregistries& xunRegistries_() {
    return *xunRegistriesInstance_;
}

// Replaces the process-wide registry with an empty one and frees the old one
// with everything it holds. For tests and fuzz targets that need a fresh
// registry in one process; texts handed out before become invalid.
void xunResetRegistries_();

// Makes registries the process-wide registry and frees the old one with
// everything it holds (a load taken from the cache, into an empty registry).
void xunReplaceRegistries_(std::unique_ptr<CKVregistries> registries);

// The expression evaluator over the units of the process-wide registry is
// bEvaluateExpression (units/KVexpr.h), defined with the registry.
