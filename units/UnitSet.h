// What the unit model needs of a collection of registered units: lookups by
// key and by ident, and the units in registration order. The evaluator and
// the derived-unit searches work over this interface, so that they do not
// depend on where units are registered (the process-wide registry, or a
// scratch copy while a file is checked).
#pragma once

#include <cstddef>
#include <string_view>

class CKVunit;

class IUnitSet {
  public:
    virtual ~IUnitSet() = default;

    // Null when no unit has the key or ident (idents compare byte for byte).
    virtual const CKVunit* FindUnitByKey(long key) const = 0;
    virtual const CKVunit* FindUnitByIdent(std::string_view ident) const = 0;

    // The units in registration order: index 0 to UnitCount() - 1.
    virtual std::size_t UnitCount() const = 0;
    virtual const CKVunit* UnitAt(std::size_t index) const = 0;
};
