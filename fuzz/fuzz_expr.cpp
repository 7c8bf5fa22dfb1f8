// Fuzz target: the unit-expression evaluator, over the units of a loaded
// installation. The input is the expression text (up to its first NUL byte).
// A unit that evaluates is then registered for a moment and run through the
// conversions and the derived-unit functions, which take its factor, offset
// and dimension as they come (infinite, tiny, fractional exponents).
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "FuzzSupport.h"
#include "registry/Registries.h"
#include "units/KVderived.h"
#include "units/KVexpr.h"
#include "units/KVunit.h"
#include "xun.h"

namespace {

// A key and an ident that no installation uses.
const long kFuzzKey = 2000000001;
const char kFuzzIdent[] = "FuzzExpressionUnit";

// A few registered units to combine the new unit with: the first unit of
// each base dimension and of no dimension.
std::vector<int> ReferenceTags_;

// Registers the unit for the lifetime of this object, then takes it back.
class TemporaryRegistration {
  public:
    explicit TemporaryRegistration(std::unique_ptr<CKVunit>& unit)
        : m_unit(unit), m_raw(unit.get()) {
        m_registered = xunRegistries_().units.Add(unit, false);
    }
    ~TemporaryRegistration() {
        if (m_registered)
            m_unit = xunRegistries_().units.Remove(m_raw);
    }
    TemporaryRegistration(const TemporaryRegistration&) = delete;
    TemporaryRegistration& operator=(const TemporaryRegistration&) = delete;
    bool registered() const { return m_registered; }

  private:
    std::unique_ptr<CKVunit>& m_unit;
    const CKVunit* m_raw;
    bool m_registered = false;
};

void Exercise(std::unique_ptr<CKVunit>& unit, double number) {
    unit->m_strIdent = kFuzzIdent;
    unit->m_lKey = kFuzzKey;
    TemporaryRegistration registration(unit);
    if (!registration.registered())
        xunFuzzFail("the evaluated unit could not be registered");
    const int tag = static_cast<int>(kFuzzKey);

    double result = 0;
    int baseTag = 0;
    const char* text = nullptr;
    xunConvertUnitToBase(tag, &result, number);
    xunConvertUnitFromBase(tag, &result, number);
    if (xunGetBaseUnit(tag, &baseTag, &text) == 1)
        xunConvertUnit(tag, baseTag, &result, number);
    double doubles[5] = {number, 0.0, -1.0, 1e300, -9999.0};
    float floats[5] = {1.0f, 0.0f, -1.0f, 3.4e38f, -9999.0f};
    xunConvertItemArrayD(tag, tag, doubles, 5, -9999.0);
    if (baseTag != 0) {
        xunConvertItemArrayD(tag, baseTag, doubles, 5, -9999.0);
        xunConvertItemArrayF(tag, baseTag, floats, 5, -9999.0f);
        xunConvertItemArrayF(baseTag, tag, floats, 5, -9999.0f);
    }
    int next = 0;
    xunGetNextEqvUnit(tag, 0, &next, &text);

    int match = 0, eqv = 0, inverse = 0;
    double factor = 0;
    xunUnitPower(tag, &match, &eqv, &factor, number);
    xunUnitPower(tag, &match, &eqv, &factor, 2.0);
    xunUnitMultiply(tag, tag, &match, &eqv, &factor);
    xunUnitDivide(tag, tag, &match, &eqv, &factor);
    for (int other : ReferenceTags_) {
        xunUnitsEqv(tag, other);
        xunUnitMultiply(tag, other, &match, &eqv, &factor);
        xunUnitDivide(other, tag, &match, &eqv, &factor);
        xunUnitGetIntegrationFactor(tag, other, &match, &inverse, &factor);
        xunUnitGetDerivationFactor(tag, other, &match, &inverse, &factor);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    xunFuzzInit();
    xunFuzzLoadInstallation();
    const CKVdimension* dims[] = {&CKVdimension::GetNonDim(), &CKVdimension::GetLength(),
                                  &CKVdimension::GetMass(),   &CKVdimension::GetTime(),
                                  &CKVdimension::GetTemp(),   &CKVdimension::GetCurr(),
                                  &CKVdimension::GetSubs(),   &CKVdimension::GetLumi()};
    for (const CKVdimension* dim : dims)
        if (const CKVunit* unit = xunFirstUnitOfDimension_(xunRegistries_().units, *dim))
            ReferenceTags_.push_back(static_cast<int>(unit->m_lKey));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    CKVunit* rawUnit = nullptr;
    double* rawValue = nullptr;
    bool ok = false;
    try {
        ok = bEvaluateExpression(text.c_str(), &rawUnit, &rawValue);
    } catch (const XunFuzzAssertion&) {
        // The outputs stay null when an assertion leaves the evaluator.
        if (rawUnit != nullptr || rawValue != nullptr)
            xunFuzzFail("an assertion left outputs behind");
    }
    std::unique_ptr<CKVunit> unit(rawUnit);
    std::unique_ptr<double> value(rawValue);
    if (ok && unit) {
        try {
            Exercise(unit, value ? *value : 1.5);
        } catch (const XunFuzzAssertion&) {
        }
    }
    return 0;
}
