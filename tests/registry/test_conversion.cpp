// Value conversion: single values, to and from base, to and from the user
// unit of an item type, and double and float arrays with a delete value.
// Array results are compared bit for bit with a stepwise reference.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "registry_fixture.h"
#include "registry_access.h"

namespace {

using xuntest::RegisterBaseUnits;
using xuntest::RegisterItemType;
using xuntest::RegisterSampleUnits;
using xuntest::RegisterUnit;
using xuntest::Tag;

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();
const float kNaNf = std::numeric_limits<float>::quiet_NaN();
const float kInff = std::numeric_limits<float>::infinity();

// The factors and offsets of a conversion between two registered units.
struct Factors {
    double f1, o1, o2, f2;
};

Factors FactorsOf(int fromTag, int toTag) {
    const CKVunit* from = xuntest::UnitByKey(fromTag);
    const CKVunit* to = xuntest::UnitByKey(toTag);
    return {from->m_dFactor, from->m_dOffset, to->m_dOffset, to->m_dFactor};
}

// The conversion one step at a time; every intermediate goes through memory
// as a double, so nothing can be fused or reordered.
double Stepwise(const Factors& c, double x) {
    volatile double t = x * c.f1;
    t = t + c.o1;
    t = t - c.o2;
    t = t / c.f2;
    return t;
}

double ReferenceD(const Factors& c, double x, double del) {
    return (x < del || x > del) ? Stepwise(c, x) : x;
}

float ReferenceF(const Factors& c, float x, float del) {
    if (!(x < del || x > del))
        return x;
    volatile float rounded = static_cast<float>(Stepwise(c, static_cast<double>(x)));
    return rounded;
}

template <class T> bool SameBits(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

template <class T> bool SameBits(T a, T b) {
    return std::memcmp(&a, &b, sizeof(T)) == 0;
}

// First index where two arrays differ in their bits, or -1.
template <class T> long FirstDifference(const std::vector<T>& a, const std::vector<T>& b) {
    for (size_t i = 0; i < a.size() && i < b.size(); ++i)
        if (!SameBits(a[i], b[i]))
            return static_cast<long>(i);
    return a.size() == b.size() ? -1 : static_cast<long>(std::min(a.size(), b.size()));
}

double DoubleFromBits(std::uint64_t bits) {
    double d;
    std::memcpy(&d, &bits, sizeof d);
    return d;
}

float FloatFromBits(std::uint32_t bits) {
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}

// Values near the one that converts onto the delete value that hit it
// exactly. Where rounding leaves no value that hits the given delete value,
// the delete value becomes the conversion of that nearest value instead.
std::vector<double> OntoDeleteD(const Factors& c, double& del) {
    const double estimate = ((del * c.f2 + c.o2) - c.o1) / c.f1;
    std::vector<double> hits;
    for (int pass = 0; pass < 2 && hits.empty(); ++pass) {
        if (pass == 1)
            del = Stepwise(c, estimate);
        double x = estimate;
        for (int i = 0; i < 16; ++i)
            x = std::nextafter(x, -kInf);
        for (int i = 0; i < 33; ++i, x = std::nextafter(x, kInf))
            if (Stepwise(c, x) == del)
                hits.push_back(x);
    }
    return hits;
}

std::vector<float> OntoDeleteF(const Factors& c, float& del) {
    const float estimate =
        static_cast<float>(((static_cast<double>(del) * c.f2 + c.o2) - c.o1) / c.f1);
    std::vector<float> hits;
    for (int pass = 0; pass < 2 && hits.empty(); ++pass) {
        if (pass == 1)
            del = static_cast<float>(Stepwise(c, estimate));
        float x = estimate;
        for (int i = 0; i < 16; ++i)
            x = std::nextafter(x, -kInff);
        for (int i = 0; i < 33; ++i, x = std::nextafter(x, kInff))
            if (static_cast<float>(Stepwise(c, x)) == del)
                hits.push_back(x);
    }
    return hits;
}

// Random doubles of every kind: ordinary values of several magnitudes, raw
// bit patterns (NaNs with payloads, infinities, subnormals), the special
// values, the delete value and values that convert onto it.
std::vector<double> RandomDoubles(std::mt19937_64& gen, size_t n, double del,
                                  const std::vector<double>& onto) {
    const double specials[] = {0.0,
                               -0.0,
                               kInf,
                               -kInf,
                               kNaN,
                               -kNaN,
                               DoubleFromBits(0x7FF0000000000001ULL),
                               DoubleFromBits(0xFFF8000000000123ULL),
                               DoubleFromBits(1),
                               std::numeric_limits<double>::max(),
                               -std::numeric_limits<double>::max(),
                               std::numeric_limits<double>::min()};
    std::uniform_int_distribution<int> kind(0, 9);
    std::uniform_real_distribution<double> uniform(-1000.0, 1000.0);
    std::uniform_int_distribution<int> exponent(-300, 300);
    std::vector<double> values(n);
    for (size_t i = 0; i < n; ++i) {
        switch (kind(gen)) {
        case 0:
            values[i] = del;
            break;
        case 1:
            values[i] = onto[gen() % onto.size()];
            break;
        case 2:
            values[i] = specials[gen() % (sizeof specials / sizeof specials[0])];
            break;
        case 3:
            values[i] = DoubleFromBits(gen());
            break;
        case 4:
            values[i] = std::ldexp(uniform(gen), exponent(gen));
            break;
        default:
            values[i] = uniform(gen);
            break;
        }
    }
    return values;
}

std::vector<float> RandomFloats(std::mt19937_64& gen, size_t n, float del,
                                const std::vector<float>& onto) {
    const float specials[] = {0.0f,
                              -0.0f,
                              kInff,
                              -kInff,
                              kNaNf,
                              -kNaNf,
                              FloatFromBits(0x7F800001u),
                              FloatFromBits(0xFFC00123u),
                              FloatFromBits(1u),
                              std::numeric_limits<float>::max(),
                              -std::numeric_limits<float>::max(),
                              std::numeric_limits<float>::min()};
    std::uniform_int_distribution<int> kind(0, 9);
    std::uniform_real_distribution<float> uniform(-1000.0f, 1000.0f);
    std::uniform_int_distribution<int> exponent(-140, 120);
    std::vector<float> values(n);
    for (size_t i = 0; i < n; ++i) {
        switch (kind(gen)) {
        case 0:
            values[i] = del;
            break;
        case 1:
            values[i] = onto[gen() % onto.size()];
            break;
        case 2:
            values[i] = specials[gen() % (sizeof specials / sizeof specials[0])];
            break;
        case 3:
            values[i] = FloatFromBits(static_cast<std::uint32_t>(gen()));
            break;
        case 4:
            values[i] = std::ldexp(uniform(gen), exponent(gen));
            break;
        default:
            values[i] = uniform(gen);
            break;
        }
    }
    return values;
}

// Converts random arrays between two units and compares every element bit
// for bit with the stepwise reference; also every short length at a
// misaligned start, with a guard element behind the end.
void CheckArraysD(int fromTag, int toTag, double del, std::uint64_t state) {
    SCOPED_TRACE(testing::Message() << fromTag << " -> " << toTag << ", delete value " << del);
    const Factors c = FactorsOf(fromTag, toTag);
    const std::vector<double> onto = OntoDeleteD(c, del);
    ASSERT_FALSE(onto.empty()) << "no value converts onto the delete value";
    std::mt19937_64 gen(state);
    const std::vector<double> original = RandomDoubles(gen, 5003, del, onto);
    std::vector<double> values(original);
    std::vector<double> expected(values.size());
    for (size_t i = 0; i < values.size(); ++i)
        expected[i] = ReferenceD(c, values[i], del);
    ASSERT_EQ(
        xunConvertItemArrayD(fromTag, toTag, values.data(), static_cast<int>(values.size()), del),
        1);
    EXPECT_TRUE(SameBits(values, expected))
        << "first difference at " << FirstDifference(values, expected);

    // Delete values stay exactly where they were; converted values that hit
    // the delete value are there as well.
    size_t kept = 0, hit = 0;
    for (size_t i = 0; i < original.size(); ++i) {
        if (SameBits(original[i], del))
            ++kept;
        else if (SameBits(values[i], del))
            ++hit;
    }
    EXPECT_GT(kept, 0u);
    EXPECT_GT(hit, 0u);

    for (int n = 0; n <= 40; ++n) {
        std::vector<double> buffer = RandomDoubles(gen, n + 2, del, onto);
        const double guard = buffer[n + 1];
        std::vector<double> want(buffer);
        for (int i = 1; i <= n; ++i)
            want[i] = ReferenceD(c, buffer[i], del);
        ASSERT_EQ(xunConvertItemArrayD(fromTag, toTag, buffer.data() + 1, n, del), 1);
        EXPECT_TRUE(SameBits(buffer, want)) << "length " << n;
        EXPECT_TRUE(SameBits(buffer[n + 1], guard)) << "length " << n;
    }
}

void CheckArraysF(int fromTag, int toTag, float del, std::uint64_t state) {
    SCOPED_TRACE(testing::Message() << fromTag << " -> " << toTag << ", delete value " << del);
    const Factors c = FactorsOf(fromTag, toTag);
    const std::vector<float> onto = OntoDeleteF(c, del);
    ASSERT_FALSE(onto.empty()) << "no value converts onto the delete value";
    std::mt19937_64 gen(state);
    const std::vector<float> original = RandomFloats(gen, 5003, del, onto);
    std::vector<float> values(original);
    std::vector<float> expected(values.size());
    for (size_t i = 0; i < values.size(); ++i)
        expected[i] = ReferenceF(c, values[i], del);
    ASSERT_EQ(
        xunConvertItemArrayF(fromTag, toTag, values.data(), static_cast<int>(values.size()), del),
        1);
    EXPECT_TRUE(SameBits(values, expected))
        << "first difference at " << FirstDifference(values, expected);

    size_t kept = 0, hit = 0;
    for (size_t i = 0; i < original.size(); ++i) {
        if (SameBits(original[i], del))
            ++kept;
        else if (SameBits(values[i], del))
            ++hit;
    }
    EXPECT_GT(kept, 0u);
    EXPECT_GT(hit, 0u);

    for (int n = 0; n <= 40; ++n) {
        std::vector<float> buffer = RandomFloats(gen, n + 2, del, onto);
        const float guard = buffer[n + 1];
        std::vector<float> want(buffer);
        for (int i = 1; i <= n; ++i)
            want[i] = ReferenceF(c, buffer[i], del);
        ASSERT_EQ(xunConvertItemArrayF(fromTag, toTag, buffer.data() + 1, n, del), 1);
        EXPECT_TRUE(SameBits(buffer, want)) << "length " << n;
        EXPECT_TRUE(SameBits(buffer[n + 1], guard)) << "length " << n;
    }
}

TEST(Conversion, OffsetUnitsConvertBothWays) {
    RegisterSampleUnits();
    double result = -1.0;
    ASSERT_EQ(xunConvertUnit(1021, 1020, &result, 0.0), 1);
    EXPECT_EQ(result, 273.15);
    ASSERT_EQ(xunConvertUnit(1020, 1021, &result, 273.15), 1);
    EXPECT_EQ(result, 0.0);
    EXPECT_FALSE(std::signbit(result));
}

TEST(Conversion, UnitsDefinedByExpression) {
    RegisterBaseUnits();
    ASSERT_EQ(xunUnitNew("K", "kelvin", "K", "Temperature"), 1);
    ASSERT_EQ(xunUnitNew("degC", "degree Celsius", "deg C", "K+273.15"), 1);
    ASSERT_EQ(xunUnitNew("km", "kilometer", "km", "Length*1000"), 1);
    double result = -1.0;
    ASSERT_EQ(xunConvertUnit(Tag("degC"), Tag("K"), &result, 0.0), 1);
    EXPECT_EQ(result, 273.15);
    ASSERT_EQ(xunConvertUnit(Tag("K"), Tag("degC"), &result, 273.15), 1);
    EXPECT_EQ(result, 0.0);
    ASSERT_EQ(xunConvertUnit(Tag("km"), Tag("Length"), &result, 1.5), 1);
    EXPECT_EQ(result, 1500.0);
}

TEST(Conversion, SingleValueFollowsTheStepwiseFormula) {
    RegisterSampleUnits();
    const Factors c = FactorsOf(1022, 1021);
    double result = 0.0;
    for (double x : {-459.67, -40.0, 0.0, 32.0, 98.6, 212.0, 1e300, -1e-300}) {
        ASSERT_EQ(xunConvertUnit(1022, 1021, &result, x), 1);
        EXPECT_TRUE(SameBits(result, Stepwise(c, x))) << x;
    }
    ASSERT_EQ(xunConvertUnit(1022, 1021, &result, 212.0), 1);
    EXPECT_NEAR(result, 100.0, 1e-12);
    ASSERT_EQ(xunConvertUnit(1022, 1021, &result, kInf), 1);
    EXPECT_EQ(result, kInf);
    ASSERT_EQ(xunConvertUnit(1022, 1021, &result, kNaN), 1);
    EXPECT_TRUE(std::isnan(result));
}

TEST(Conversion, NoRatioIsPrecomputed) {
    RegisterSampleUnits();
    // foot to kilometer: x * 0.3048 / 1000 differs from x * (0.3048 / 1000)
    // for many x; the result must be the stepwise one for all of them.
    const Factors c = FactorsOf(1002, 1001);
    const double ratio = c.f1 / c.f2;
    std::mt19937_64 gen(20250113);
    std::uniform_real_distribution<double> uniform(-1e6, 1e6);
    int differing = 0;
    for (int i = 0; i < 2000; ++i) {
        const double x = uniform(gen);
        double result = 0.0;
        ASSERT_EQ(xunConvertUnit(1002, 1001, &result, x), 1);
        ASSERT_TRUE(SameBits(result, Stepwise(c, x))) << x;
        volatile double shortcut = x * ratio;
        if (!SameBits(result, static_cast<double>(shortcut)))
            ++differing;
    }
    EXPECT_GT(differing, 0);
}

TEST(Conversion, FailedSingleConversionStoresTheInput) {
    RegisterSampleUnits();
    RegisterUnit("zero", 0, 2.0, 0.0, CKVdimension::GetLength());
    double result = -1.0;
    EXPECT_EQ(xunConvertUnit(1000, 1010, &result, 12.5), 0); // other dimension
    EXPECT_EQ(result, 12.5);
    result = -1.0;
    EXPECT_EQ(xunConvertUnit(1000, 4711, &result, 13.5), 0); // unknown target
    EXPECT_EQ(result, 13.5);
    result = -1.0;
    EXPECT_EQ(xunConvertUnit(4711, 1000, &result, 14.5), 0); // unknown source
    EXPECT_EQ(result, 14.5);
    result = -1.0;
    EXPECT_EQ(xunConvertUnit(0, 1000, &result, 15.5), 0); // key 0
    EXPECT_EQ(result, 15.5);
    result = -1.0;
    EXPECT_EQ(xunConvertUnit(1000, 0, &result, -0.0), 0);
    EXPECT_TRUE(SameBits(result, -0.0));
    ASSERT_EQ(xunConvertUnit(1000, 1000, &result, 16.5), 1);
    EXPECT_EQ(result, 16.5);
}

TEST(Conversion, ToBaseAndFromBase) {
    RegisterSampleUnits();
    double result = -1.0;
    ASSERT_EQ(xunConvertUnitToBase(1022, &result, 212.0), 1);
    EXPECT_TRUE(SameBits(result, 212.0 * (5.0 / 9.0) + 459.67 * 5.0 / 9.0));
    const double base = result;
    ASSERT_EQ(xunConvertUnitFromBase(1022, &result, base), 1);
    EXPECT_TRUE(SameBits(result, (base - 459.67 * 5.0 / 9.0) / (5.0 / 9.0)));
    EXPECT_NEAR(result, 212.0, 1e-12);
    ASSERT_EQ(xunConvertUnitToBase(1001, &result, 1.5), 1);
    EXPECT_EQ(result, 1500.0);
    ASSERT_EQ(xunConvertUnitFromBase(1001, &result, 1500.0), 1);
    EXPECT_EQ(result, 1.5);
    ASSERT_EQ(xunConvertUnitToBase(1021, &result, 0.0), 1);
    EXPECT_EQ(result, 273.15);
}

TEST(Conversion, ToBaseAndBackRoundTrips) {
    RegisterSampleUnits();
    for (int tag : {1000, 1001, 1002, 1010, 1011, 1020, 1021, 1022}) {
        for (double x : {-1234.5, -1.0, 0.0, 0.1, 1.0, 37.25, 98765.4321}) {
            double base = 0.0, back = 0.0;
            ASSERT_EQ(xunConvertUnitToBase(tag, &base, x), 1);
            ASSERT_EQ(xunConvertUnitFromBase(tag, &back, base), 1);
            EXPECT_NEAR(back, x, 1e-12 * (1.0 + std::fabs(x))) << tag << " " << x;
        }
    }
}

TEST(Conversion, ToBaseAndFromBaseWithUnknownUnitsLeaveTheResult) {
    RegisterSampleUnits();
    RegisterUnit("zero", 0, 2.0, 1.0, CKVdimension::GetLength());
    double result = -1.0;
    EXPECT_EQ(xunConvertUnitToBase(4711, &result, 3.0), 0);
    EXPECT_EQ(xunConvertUnitFromBase(4711, &result, 3.0), 0);
    EXPECT_EQ(result, -1.0);
    // Key 0 is not refused here.
    ASSERT_EQ(xunConvertUnitToBase(0, &result, 3.0), 1);
    EXPECT_EQ(result, 7.0);
    ASSERT_EQ(xunConvertUnitFromBase(0, &result, 7.0), 1);
    EXPECT_EQ(result, 3.0);
}

TEST(Conversion, ArrayKeepsDeleteValuesAlsoWhereOthersConvertOntoThem) {
    RegisterSampleUnits();
    // meter to kilometer with delete value 1: 1000 m becomes 1 km, the
    // element holding 1 stays.
    std::vector<double> values = {1.0, 1000.0, 2000.0, 1.0, -500.0};
    ASSERT_EQ(xunConvertItemArrayD(1000, 1001, values.data(), 5, 1.0), 1);
    EXPECT_TRUE(SameBits(values, std::vector<double>{1.0, 1.0, 2.0, 1.0, -0.5}));
    std::vector<float> floats = {1.0f, 1000.0f, 2000.0f, 1.0f, -500.0f};
    ASSERT_EQ(xunConvertItemArrayF(1000, 1001, floats.data(), 5, 1.0f), 1);
    EXPECT_TRUE(SameBits(floats, std::vector<float>{1.0f, 1.0f, 2.0f, 1.0f, -0.5f}));
}

TEST(Conversion, NaNDeleteValueConvertsNothing) {
    RegisterSampleUnits();
    std::vector<double> values = {1.0, -0.0, kInf, 273.15, DoubleFromBits(0x7FF8000000000042ULL)};
    const std::vector<double> before(values);
    ASSERT_EQ(xunConvertItemArrayD(1020, 1021, values.data(), 5, kNaN), 1);
    EXPECT_TRUE(SameBits(values, before));
    std::vector<float> floats = {1.0f, -0.0f, -kInff, 273.15f, FloatFromBits(0xFFC00042u)};
    const std::vector<float> floatsBefore(floats);
    ASSERT_EQ(xunConvertItemArrayF(1020, 1021, floats.data(), 5, kNaNf), 1);
    EXPECT_TRUE(SameBits(floats, floatsBefore));
}

TEST(Conversion, NaNElementsAreNeverConverted) {
    RegisterSampleUnits();
    const double payload = DoubleFromBits(0xFFF8000000000123ULL);
    std::vector<double> values = {payload, 0.0, kNaN};
    ASSERT_EQ(xunConvertItemArrayD(1020, 1021, values.data(), 3, -999.0), 1);
    EXPECT_TRUE(SameBits(values[0], payload));
    EXPECT_EQ(values[1], -273.15);
    EXPECT_TRUE(SameBits(values[2], kNaN));
    const float floatPayload = FloatFromBits(0x7FC00123u);
    std::vector<float> floats = {floatPayload, 0.0f};
    ASSERT_EQ(xunConvertItemArrayF(1020, 1021, floats.data(), 2, -999.0f), 1);
    EXPECT_TRUE(SameBits(floats[0], floatPayload));
    EXPECT_TRUE(SameBits(floats[1], static_cast<float>(-273.15)));
}

TEST(Conversion, NegativeZeroCountsAsTheDeleteValueZero) {
    RegisterSampleUnits();
    // -0 equals +0: with delete value 0 both stay as they are.
    std::vector<double> values = {-0.0, 0.0, 1.0};
    ASSERT_EQ(xunConvertItemArrayD(1020, 1021, values.data(), 3, 0.0), 1);
    EXPECT_TRUE(SameBits(values, std::vector<double>{-0.0, 0.0, 1.0 - 273.15}));
}

TEST(Conversion, EmptyArraysSucceedWithoutWriting) {
    RegisterSampleUnits();
    double sentinel = 42.0;
    EXPECT_EQ(xunConvertItemArrayD(1000, 1001, &sentinel, 0, -1.0), 1);
    EXPECT_EQ(sentinel, 42.0);
    float floatSentinel = 42.0f;
    EXPECT_EQ(xunConvertItemArrayF(1000, 1001, &floatSentinel, 0, -1.0f), 1);
    EXPECT_EQ(floatSentinel, 42.0f);
    EXPECT_EQ(xunConvertItemArrayD(1000, 1001, nullptr, 0, -1.0), 1);
    EXPECT_EQ(xunConvertItemArrayD(1000, 1001, nullptr, -5, -1.0), 1);
    EXPECT_EQ(xunConvertItemArrayF(1000, 1001, nullptr, 0, -1.0f), 1);
    EXPECT_EQ(xunConvertItemArrayF(1000, 1001, nullptr, -5, -1.0f), 1);
    EXPECT_EQ(xunConvertItemArrayD(1000, 1010, nullptr, 0, -1.0), 0);
    EXPECT_EQ(xunConvertItemArrayF(1000, 4711, nullptr, 0, -1.0f), 0);
}

TEST(Conversion, FailedArrayConversionsLeaveTheArray) {
    RegisterSampleUnits();
    RegisterUnit("zero", 0, 2.0, 0.0, CKVdimension::GetLength());
    const std::vector<double> before = {1.0, 2.0, kNaN, -0.0, 1e300};
    const std::vector<float> floatsBefore = {1.0f, 2.0f, kNaNf, -0.0f, 1e30f};
    const int pairs[][2] = {{1000, 1010}, {1000, 4711}, {4711, 1000}, {0, 1000}, {1000, 0}};
    for (const auto& pair : pairs) {
        std::vector<double> values(before);
        EXPECT_EQ(xunConvertItemArrayD(pair[0], pair[1], values.data(), 5, -999.0), 0);
        EXPECT_TRUE(SameBits(values, before)) << pair[0] << " " << pair[1];
        std::vector<float> floats(floatsBefore);
        EXPECT_EQ(xunConvertItemArrayF(pair[0], pair[1], floats.data(), 5, -999.0f), 0);
        EXPECT_TRUE(SameBits(floats, floatsBefore)) << pair[0] << " " << pair[1];
    }
}

TEST(Conversion, FloatComparesWithTheDeleteValueInSinglePrecision) {
    RegisterSampleUnits();
    const float del = -999.9f;
    const float above = std::nextafter(del, 0.0f);
    std::vector<float> floats = {del, above, 12.5f};
    ASSERT_EQ(xunConvertItemArrayF(1021, 1020, floats.data(), 3, del), 1);
    EXPECT_TRUE(SameBits(floats[0], del));
    EXPECT_TRUE(SameBits(floats[1], static_cast<float>(static_cast<double>(above) + 273.15)));
    EXPECT_TRUE(SameBits(floats[2], static_cast<float>(12.5 + 273.15)));
}

TEST(Conversion, FloatConvertsInDoublePrecision) {
    RegisterSampleUnits();
    // Each element is widened, converted in double precision and rounded
    // once when stored; single-precision arithmetic would round every step
    // and give other results for many values.
    const Factors c = FactorsOf(1022, 1021);
    std::mt19937_64 gen(7);
    std::uniform_real_distribution<float> uniform(-500.0f, 500.0f);
    std::vector<float> floats(1000);
    for (float& x : floats)
        x = uniform(gen);
    std::vector<float> want(floats.size());
    int differing = 0;
    for (size_t i = 0; i < floats.size(); ++i) {
        want[i] = static_cast<float>(Stepwise(c, floats[i]));
        volatile float single = floats[i] * static_cast<float>(c.f1);
        single = single + static_cast<float>(c.o1);
        single = single - static_cast<float>(c.o2);
        single = single / static_cast<float>(c.f2);
        if (!SameBits(want[i], static_cast<float>(single)))
            ++differing;
    }
    EXPECT_GT(differing, 0);
    ASSERT_EQ(xunConvertItemArrayF(1022, 1021, floats.data(), 1000, -999.0f), 1);
    EXPECT_TRUE(SameBits(floats, want));
}

TEST(Conversion, RandomDoubleArraysWithOffsetsMatchBitForBit) {
    RegisterSampleUnits();
    CheckArraysD(1022, 1021, -999.0, 1);  // degree Fahrenheit to degree Celsius
    CheckArraysD(1021, 1022, 0.0, 2);     // and back, delete value 0
    CheckArraysD(1020, 1021, -9999.0, 3); // kelvin to degree Celsius
}

TEST(Conversion, RandomDoubleArraysWithoutOffsetsMatchBitForBit) {
    RegisterSampleUnits();
    CheckArraysD(1002, 1001, -999.0, 4);  // foot to kilometer
    CheckArraysD(1001, 1002, 1.0e-30, 5); // kilometer to foot
    CheckArraysD(1011, 1010, 3600.0, 6);  // hour to second
}

TEST(Conversion, RandomFloatArraysWithOffsetsMatchBitForBit) {
    RegisterSampleUnits();
    CheckArraysF(1022, 1021, -999.0f, 7);
    CheckArraysF(1021, 1022, 32.0f, 8);
    CheckArraysF(1020, 1021, -9999.0f, 9);
}

TEST(Conversion, RandomFloatArraysWithoutOffsetsMatchBitForBit) {
    RegisterSampleUnits();
    CheckArraysF(1002, 1001, -999.0f, 10);
    CheckArraysF(1001, 1002, 1.0e-30f, 11);
    CheckArraysF(1011, 1010, 3600.0f, 12);
}

// Item types: water level (500) in m and km, with a user unit of km;
// temperature (510) in degC without a user unit; 520 without units.
void RegisterUserUnitItems() {
    RegisterSampleUnits();
    CKVitemType* level = RegisterItemType("Level", 500, CKVdimension::GetLength(), {"m", "km"});
    level->SetItemUserUnit(1001);
    RegisterItemType("Temperature", 510, CKVdimension::GetTemp(), {"degC", "K"});
    RegisterItemType("Empty", 520, CKVdimension::GetLength());
}

TEST(Conversion, ToAndFromUserUnit) {
    RegisterUserUnitItems();
    double result = -1.0;
    ASSERT_EQ(xunConvertToUserUnit(500, 1000, &result, 2500.0), 1);
    EXPECT_EQ(result, 2.5);
    ASSERT_EQ(xunConvertFromUserUnit(500, 1002, &result, 0.3048), 1);
    EXPECT_TRUE(SameBits(result, Stepwise(FactorsOf(1001, 1002), 0.3048)));
    // Without a chosen user unit the default unit serves.
    ASSERT_EQ(xunConvertToUserUnit(510, 1020, &result, 0.0), 1);
    EXPECT_EQ(result, -273.15);
    ASSERT_EQ(xunConvertFromUserUnit(510, 1020, &result, 0.0), 1);
    EXPECT_EQ(result, 273.15);
}

TEST(Conversion, UserUnitConversionFailures) {
    RegisterUserUnitItems();
    double result = -1.0;
    // Unknown item type: nothing written.
    EXPECT_EQ(xunConvertToUserUnit(501, 1000, &result, 5.0), 0);
    EXPECT_EQ(xunConvertFromUserUnit(501, 1000, &result, 5.0), 0);
    EXPECT_EQ(result, -1.0);
    // Known item type, failing unit conversion: the input is stored.
    EXPECT_EQ(xunConvertToUserUnit(500, 1010, &result, 5.0), 0);
    EXPECT_EQ(result, 5.0);
    result = -1.0;
    EXPECT_EQ(xunConvertFromUserUnit(500, 4711, &result, 6.0), 0);
    EXPECT_EQ(result, 6.0);
    // No user unit and no allowed units: user unit -1 names no unit.
    result = -1.0;
    EXPECT_EQ(xunConvertToUserUnit(520, 1000, &result, 7.0), 0);
    EXPECT_EQ(result, 7.0);
}

TEST(Conversion, ArraysToAndFromUserUnit) {
    RegisterUserUnitItems();
    std::vector<double> values = {2500.0, -999.0, 1000.0};
    ASSERT_EQ(xunConvertItemArrayToUserUnitD(500, 1000, values.data(), 3, -999.0), 1);
    EXPECT_TRUE(SameBits(values, std::vector<double>{2.5, -999.0, 1.0}));
    ASSERT_EQ(xunConvertItemArrayFromUserUnitD(500, 1000, values.data(), 3, -999.0), 1);
    EXPECT_TRUE(SameBits(values, std::vector<double>{2500.0, -999.0, 1000.0}));
    std::vector<float> floats = {0.0f, -999.0f, 100.0f};
    ASSERT_EQ(xunConvertItemArrayToUserUnitF(510, 1020, floats.data(), 3, -999.0f), 1);
    EXPECT_TRUE(SameBits(floats, std::vector<float>{static_cast<float>(0.0 - 273.15), -999.0f,
                                                    static_cast<float>(100.0 - 273.15)}));
    std::vector<float> back = {0.0f, -999.0f};
    ASSERT_EQ(xunConvertItemArrayFromUserUnitF(510, 1020, back.data(), 2, -999.0f), 1);
    EXPECT_TRUE(SameBits(back, std::vector<float>{static_cast<float>(273.15), -999.0f}));
}

TEST(Conversion, FailedUserUnitArrayConversionsLeaveTheArray) {
    RegisterUserUnitItems();
    const std::vector<double> before = {1.0, 2.0, 3.0};
    const std::vector<float> floatsBefore = {1.0f, 2.0f, 3.0f};
    std::vector<double> values(before);
    std::vector<float> floats(floatsBefore);
    EXPECT_EQ(xunConvertItemArrayToUserUnitD(501, 1000, values.data(), 3, -999.0), 0);
    EXPECT_EQ(xunConvertItemArrayFromUserUnitD(501, 1000, values.data(), 3, -999.0), 0);
    EXPECT_EQ(xunConvertItemArrayToUserUnitD(500, 1010, values.data(), 3, -999.0), 0);
    EXPECT_EQ(xunConvertItemArrayFromUserUnitD(520, 1000, values.data(), 3, -999.0), 0);
    EXPECT_EQ(xunConvertItemArrayToUserUnitF(501, 1000, floats.data(), 3, -999.0f), 0);
    EXPECT_EQ(xunConvertItemArrayFromUserUnitF(501, 1000, floats.data(), 3, -999.0f), 0);
    EXPECT_EQ(xunConvertItemArrayToUserUnitF(500, 1010, floats.data(), 3, -999.0f), 0);
    EXPECT_EQ(xunConvertItemArrayFromUserUnitF(520, 1000, floats.data(), 3, -999.0f), 0);
    EXPECT_TRUE(SameBits(values, before));
    EXPECT_TRUE(SameBits(floats, floatsBefore));
    // A known item type with an empty array still succeeds.
    EXPECT_EQ(xunConvertItemArrayToUserUnitD(500, 1000, nullptr, 0, -999.0), 1);
    EXPECT_EQ(xunConvertItemArrayFromUserUnitF(500, 1000, nullptr, 0, -999.0f), 1);
}

} // namespace
