// Owning pointers to UDUNITS-2 units and converters for the tests that
// compare with it: each frees its object with UDUNITS-2's own function.
#pragma once

#include <udunits2.h>

#include <memory>

namespace xuntest {

struct UnitDeleter {
    void operator()(ut_unit* unit) const { ut_free(unit); }
};
struct ConverterDeleter {
    void operator()(cv_converter* converter) const { cv_free(converter); }
};
using UnitPtr = std::unique_ptr<ut_unit, UnitDeleter>;
using ConverterPtr = std::unique_ptr<cv_converter, ConverterDeleter>;

} // namespace xuntest
