// Every path of the array conversion loops (registry/ConversionKernels.h),
// forced in turn, against the stepwise evaluation of the formula, bit for
// bit: random conversions and values of every kind (random bit patterns
// included), and hand-picked hard cases - divisors with all-ones
// significands, quotients at the overflow and subnormal thresholds, signed
// zeros, infinities, NaN payloads, values next to the delete value, every
// short length and misaligned start, large arrays (the prefetching loops),
// directed rounding and flush-to-zero modes. A path the processor lacks is
// skipped.
//
// The number of random values per path and element type is 10^7; the
// environment variable XUN_CONVERSION_TEST_VALUES sets another (for example
// 100000000 for a longer run by hand).
#include <gtest/gtest.h>

#include <cfenv>
#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <xmmintrin.h>

#include "registry/ConversionKernels.h"

namespace {

using Path = XunConversionPath_;

const char* PathName(Path path) {
    switch (path) {
    case Path::Auto:
        return "Auto";
    case Path::Baseline:
        return "Baseline";
    case Path::Avx2:
        return "Avx2";
    case Path::Avx512:
        return "Avx512";
    case Path::BaselineFloatProduct:
        return "BaselineFloatProduct";
    case Path::Avx2FloatProduct:
        return "Avx2FloatProduct";
    case Path::Avx512FloatProduct:
        return "Avx512FloatProduct";
    }
    return "?";
}

const Path kEveryPath[] = {Path::Baseline,         Path::Avx2,
                           Path::Avx512,           Path::BaselineFloatProduct,
                           Path::Avx2FloatProduct, Path::Avx512FloatProduct};

// The name XUN_CONVERSION_PATH gives a path.
std::string EnvironmentName(Path path) {
    switch (path) {
    case Path::Baseline:
        return "baseline";
    case Path::Avx2:
        return "avx2";
    case Path::Avx512:
        return "avx512";
    case Path::BaselineFloatProduct:
        return "baseline-product";
    case Path::Avx2FloatProduct:
        return "avx2-product";
    case Path::Avx512FloatProduct:
        return "avx512-product";
    case Path::Auto:
        break;
    }
    return "";
}

uint64_t Bits(double d) {
    uint64_t b;
    std::memcpy(&b, &d, sizeof b);
    return b;
}
uint32_t Bits(float f) {
    uint32_t b;
    std::memcpy(&b, &f, sizeof b);
    return b;
}
double FromBits(uint64_t b) {
    double d;
    std::memcpy(&d, &b, sizeof d);
    return d;
}
float FromBits32(uint32_t b) {
    float f;
    std::memcpy(&f, &b, sizeof f);
    return f;
}

// The stepwise evaluation, out of line so that nothing is folded across the
// rounding-mode changes of the tests.
__attribute__((noinline)) double Stepwise(const XunConversion_& c, double x) {
    return ((x * c.fromFactor + c.fromOffset) - c.toOffset) / c.toFactor;
}

template <class T>
__attribute__((noinline)) void Reference(const XunConversion_& c, T* values, size_t count,
                                         T deleteValue) {
    for (size_t i = 0; i < count; ++i) {
        const T x = values[i];
        if (x < deleteValue || x > deleteValue)
            values[i] = static_cast<T>(Stepwise(c, static_cast<double>(x)));
    }
}

void Convert(const XunConversion_& c, double* values, size_t count, double deleteValue) {
    xunConvertArrayD_(c, values, static_cast<int>(count), deleteValue);
}
void Convert(const XunConversion_& c, float* values, size_t count, float deleteValue) {
    xunConvertArrayF_(c, values, static_cast<int>(count), deleteValue);
}

std::string Describe(const XunConversion_& c) {
    char text[200];
    std::snprintf(text, sizeof text, "f1=%a o1=%a o2=%a f2=%a", c.fromFactor, c.fromOffset,
                  c.toOffset, c.toFactor);
    return text;
}

// Converts the array both ways and compares bit for bit; the first
// difference is reported with its input. Returns false on a difference.
template <class T>
bool Check(const XunConversion_& c, const T* input, size_t count, T deleteValue, size_t start = 0) {
    std::vector<T> actual(count + start + 16), expected(count + start + 16);
    if (count > 0) {
        std::memcpy(actual.data() + start, input, count * sizeof(T));
        std::memcpy(expected.data() + start, input, count * sizeof(T));
    }
    Convert(c, actual.data() + start, count, deleteValue);
    Reference(c, expected.data() + start, count, deleteValue);
    if (std::memcmp(actual.data(), expected.data(), actual.size() * sizeof(T)) == 0)
        return true;
    for (size_t i = 0; i < actual.size(); ++i) {
        if (Bits(actual[i]) != Bits(expected[i])) {
            const bool inside = i >= start && i < start + count;
            ADD_FAILURE() << PathName(xunConversionPathInUse_()) << ": element " << i
                          << (inside ? "" : " (outside the array!)") << " of " << count << " from "
                          << std::hexfloat << (inside ? static_cast<double>(input[i - start]) : 0.0)
                          << " gave " << static_cast<double>(actual[i]) << ", stepwise "
                          << static_cast<double>(expected[i]) << "; " << Describe(c) << " delete "
                          << static_cast<double>(deleteValue);
            return false;
        }
    }
    return false;
}

// --- random numbers of every kind -------------------------------------------

class Numbers {
  public:
    explicit Numbers(uint64_t start) : m_random(start) {}

    uint64_t Next() { return m_random(); }
    double Uniform() { return static_cast<double>(m_random() >> 11) * 0x1.0p-53; }
    bool Chance(unsigned percent) { return m_random() % 100 < percent; }

    // A normal double with a random significand and an exponent in [lo, hi].
    double Normal(int lo, int hi) {
        const int e = lo + static_cast<int>(m_random() % static_cast<uint64_t>(hi - lo + 1));
        const uint64_t bits = (static_cast<uint64_t>(e + 1023) << 52) |
                              (m_random() & 0xFFFFFFFFFFFFFull) | (m_random() & (1ull << 63));
        return FromBits(bits);
    }

    // A unit factor: never zero, of many shapes.
    double Factor() {
        switch (m_random() % 10) {
        case 0: // a power of two, 1 included
            return std::ldexp(m_random() % 2 ? 1.0 : -1.0, static_cast<int>(m_random() % 41) - 20);
        case 1: // all-ones significand
            return FromBits(
                (static_cast<uint64_t>(1023 + static_cast<int>(m_random() % 81) - 40) << 52) |
                0xFFFFFFFFFFFFFull);
        case 2: // next to a power of two
            return std::nextafter(std::ldexp(1.0, static_cast<int>(m_random() % 21) - 10),
                                  m_random() % 2 ? 0.0 : 10.0);
        case 3: // anywhere in the range of doubles
            return Normal(-1022, 1023);
        case 4: // a short decimal, as setup files have them
            return static_cast<double>(1 + m_random() % 100000) /
                   std::pow(10.0, static_cast<double>(m_random() % 8));
        default:
            return Normal(-30, 30);
        }
    }

    double Offset() {
        switch (m_random() % 8) {
        case 0:
            return 0.0;
        case 1:
            return -0.0;
        case 2:
            return Normal(-1022, 1023);
        default:
            return (Uniform() - 0.5) * 2000.0;
        }
    }

    XunConversion_ Conversion() { return XunConversion_{Factor(), Offset(), Offset(), Factor()}; }

    // An input value: mostly ordinary numbers, some of every other kind.
    double Value(const XunConversion_& c, double deleteValue) {
        switch (m_random() % 16) {
        case 0: // any bit pattern: NaN, infinities, subnormals included
            return FromBits(m_random());
        case 1:
            return m_random() % 2 ? 0.0 : -0.0;
        case 2:
            return deleteValue;
        case 3:
            return std::nextafter(deleteValue, m_random() % 2 ? -INFINITY : INFINITY);
        case 4: { // a quotient near the overflow threshold
            const double target =
                std::ldexp(1.0 - Uniform() * 1e-3, 1024) * (m_random() % 2 ? 1 : -1);
            return ((target * c.toFactor + c.toOffset) - c.fromOffset) / c.fromFactor;
        }
        case 5: { // a quotient near the subnormal threshold or below it
            const double target =
                std::ldexp(1.0 + Uniform(), -1022 - static_cast<int>(m_random() % 60));
            return ((target * c.toFactor + c.toOffset) - c.fromOffset) / c.fromFactor;
        }
        case 6: // a tiny or huge input
            return Normal(-1074 + 52, 1023);
        default:
            return (Uniform() - 0.5) * 1000.0;
        }
    }

    double DeleteValue() {
        switch (m_random() % 6) {
        case 0:
            return 0.0;
        case 1:
            return -9999.0;
        case 2:
            return m_random() % 2 ? INFINITY : -INFINITY;
        default:
            return (Uniform() - 0.5) * 1000.0;
        }
    }

  private:
    std::mt19937_64 m_random;
};

size_t RandomValueCount() {
    if (const char* text = std::getenv("XUN_CONVERSION_TEST_VALUES"))
        return static_cast<size_t>(std::strtoull(text, nullptr, 10));
    return 10000000;
}

// --- the fixture: one test per path -------------------------------------------

class ConversionPath : public testing::TestWithParam<Path> {
  protected:
    void SetUp() override {
        if (!xunConversionPathSupported_(GetParam()))
            GTEST_SKIP() << PathName(GetParam()) << " is not supported by this processor";
        ASSERT_TRUE(xunSetConversionPath_(GetParam()));
        ASSERT_EQ(xunConversionPathInUse_(), GetParam());
        m_savedMxcsr = _mm_getcsr();
    }
    void TearDown() override {
        _mm_setcsr(m_savedMxcsr);
        xunSetConversionPath_(Path::Auto);
    }

    template <class T> void RandomValues(uint64_t start) {
        Numbers numbers(start);
        const size_t total = RandomValueCount();
        size_t done = 0;
        std::vector<T> input;
        while (done < total) {
            const XunConversion_ c = numbers.Conversion();
            const T deleteValue = static_cast<T>(numbers.DeleteValue());
            const size_t count = 1 + numbers.Next() % 2000;
            input.resize(count);
            for (T& x : input) {
                x = static_cast<T>(numbers.Value(c, static_cast<double>(deleteValue)));
                if (sizeof(T) == 4 && numbers.Chance(5))
                    x = FromBits32(static_cast<uint32_t>(numbers.Next()));
            }
            const size_t start = numbers.Next() % 16;
            ASSERT_TRUE(Check(c, input.data(), count, deleteValue, start));
            done += count;
        }
        RecordProperty("values", std::to_string(done));
    }

    unsigned m_savedMxcsr = 0;
};

TEST_P(ConversionPath, RandomDoubles) {
    RandomValues<double>(1000 + static_cast<uint64_t>(GetParam()));
}

TEST_P(ConversionPath, RandomFloats) {
    RandomValues<float>(2000 + static_cast<uint64_t>(GetParam()));
}

// Divisors whose significand is all ones (the hardest for a reciprocal), and
// their neighbours, at many exponents, with dividends of every significand.
TEST_P(ConversionPath, AllOnesDivisors) {
    Numbers numbers(3);
    std::vector<double> values(4096);
    for (int exponent = -60; exponent <= 60; exponent += 3) {
        const double ones =
            FromBits((static_cast<uint64_t>(1023 + exponent) << 52) | 0xFFFFFFFFFFFFFull);
        for (double f2 : {ones, -ones, std::nextafter(ones, 0.0), std::nextafter(ones, INFINITY)}) {
            const XunConversion_ c{1.0, 0.0, 0.0, f2};
            for (size_t i = 0; i < values.size(); ++i) {
                // Dividends with all-ones and random significands, and exact
                // multiples of the divisor.
                if (i % 4 == 0)
                    values[i] = FromBits((static_cast<uint64_t>(1023 + i % 7) << 52) |
                                         (0xFFFFFFFFFFFFFull - i / 4));
                else if (i % 4 == 1)
                    values[i] = f2 * static_cast<double>(i);
                else
                    values[i] = numbers.Normal(-5, 5);
            }
            ASSERT_TRUE(Check(c, values.data(), values.size(), -9999.0));
        }
    }
}

// Quotients at and around the largest double and the overflow threshold, the
// smallest normal and the smallest subnormal, and the rounding boundary to 0.
TEST_P(ConversionPath, OverflowAndSubnormalThresholds) {
    const double maxDouble = std::numeric_limits<double>::max();
    const double minNormal = std::numeric_limits<double>::min();
    const double minSub = std::numeric_limits<double>::denorm_min();
    for (double f2 : {3.0, 0.75, 1.0 / 3.0, 1.25, 5.0 / 9.0, 1e-300, 1e300, 0.3048,
                      FromBits(0x3FFFFFFFFFFFFFFFull)}) {
        const XunConversion_ c{1.0, 0.0, 0.0, f2};
        std::vector<double> values;
        for (double target : {maxDouble, maxDouble / 2, minNormal, minNormal * 2, minSub,
                              minSub * 2, minSub * 3, minSub / 2, minNormal / 2, 0x1p-1060}) {
            for (double sign : {1.0, -1.0}) {
                double a = target * f2 * sign;
                for (int step = 0; step < 40; ++step) {
                    values.push_back(a);
                    a = std::nextafter(a, sign > 0 ? INFINITY : -INFINITY);
                }
                a = target * f2 * sign;
                for (int step = 0; step < 40; ++step) {
                    a = std::nextafter(a, 0.0);
                    values.push_back(a);
                }
            }
        }
        values.push_back(maxDouble);
        values.push_back(-maxDouble);
        ASSERT_TRUE(Check(c, values.data(), values.size(), -9999.0)) << f2;
        std::vector<float> floats;
        for (double v : values)
            floats.push_back(static_cast<float>(v));
        for (float v : {std::numeric_limits<float>::max(), std::numeric_limits<float>::min(),
                        std::numeric_limits<float>::denorm_min()}) {
            floats.push_back(v);
            floats.push_back(-v);
        }
        ASSERT_TRUE(Check(c, floats.data(), floats.size(), -9999.0f)) << f2;
    }
}

// Signed zeros (as inputs and as the dividend after the offsets), infinities
// and NaN payloads, in the values and in the conversion itself.
TEST_P(ConversionPath, ZerosInfinitiesAndNaN) {
    const double nans[] = {FromBits(0x7FF8000000000000ull), FromBits(0xFFF8000000000000ull),
                           FromBits(0x7FF0000000000001ull), FromBits(0xFFF0000000000123ull),
                           FromBits(0x7FFFFFFFFFFFFFFFull), FromBits(0x7FF8DEADBEEF0001ull)};
    std::vector<double> values = {0.0, -0.0, INFINITY, -INFINITY, 1.0, -1.0, 1e-310, -1e-310};
    for (double n : nans)
        values.push_back(n);
    std::vector<float> floats;
    for (double v : values)
        floats.push_back(static_cast<float>(v));
    floats.push_back(FromBits32(0x7F800001u)); // a signalling float NaN
    floats.push_back(FromBits32(0xFFC01234u));
    for (double f1 : {1.0, -1.0, 2.5, -0.3048}) {
        for (double o1 : {0.0, -0.0, 273.15}) {
            for (double o2 : {0.0, -0.0, 273.15}) {
                for (double f2 : {1.0, -1.0, 0.5, 1.25, -5.0 / 9.0, 3.0}) {
                    const XunConversion_ c{f1, o1, o2, f2};
                    for (double del :
                         {-9999.0, 0.0, -0.0, 1.0, double(INFINITY), -double(INFINITY)}) {
                        ASSERT_TRUE(Check(c, values.data(), values.size(), del));
                        ASSERT_TRUE(
                            Check(c, floats.data(), floats.size(), static_cast<float>(del)));
                    }
                }
            }
        }
    }
    // NaN in the conversion itself carries its payload into the results.
    for (double n : nans) {
        const XunConversion_ withNaN[] = {
            {1.0, n, 0.0, 1.25}, {1.0, 0.0, n, 3.0}, {n, 0.0, 0.0, 1.25}, {1.0, 0.0, 0.0, n}};
        for (const XunConversion_& c : withNaN) {
            ASSERT_TRUE(Check(c, values.data(), values.size(), -9999.0));
            ASSERT_TRUE(Check(c, floats.data(), floats.size(), -9999.0f));
        }
    }
    // Infinite factors and offsets.
    for (const XunConversion_& c :
         {XunConversion_{1.0, INFINITY, 0.0, 1.25}, XunConversion_{1.0, 0.0, 0.0, INFINITY},
          XunConversion_{1e308, 0.0, 0.0, 1e-308}}) {
        ASSERT_TRUE(Check(c, values.data(), values.size(), -9999.0));
        ASSERT_TRUE(Check(c, floats.data(), floats.size(), -9999.0f));
    }
}

// Elements equal to the delete value stay, their neighbours convert; a NaN
// delete value converts nothing; an element that converts onto the delete
// value is converted.
TEST_P(ConversionPath, ValuesNextToTheDeleteValue) {
    const XunConversion_ c{1.0, 273.15, 459.67 * 5 / 9, 5.0 / 9};
    for (double del : {-9999.0, 0.0, 1.5, 1e-310, -1e300}) {
        std::vector<double> values;
        double below = del, above = del;
        for (int i = 0; i < 20; ++i) {
            values.push_back(del);
            below = std::nextafter(below, -INFINITY);
            above = std::nextafter(above, INFINITY);
            values.push_back(below);
            values.push_back(above);
        }
        values.push_back(
            Stepwise(XunConversion_{c.toFactor, c.toOffset, c.fromOffset, c.fromFactor}, del));
        ASSERT_TRUE(Check(c, values.data(), values.size(), del));
        std::vector<float> floats;
        for (double v : values)
            floats.push_back(static_cast<float>(v));
        floats.push_back(std::nextafter(static_cast<float>(del), INFINITY));
        floats.push_back(std::nextafter(static_cast<float>(del), -INFINITY));
        ASSERT_TRUE(Check(c, floats.data(), floats.size(), static_cast<float>(del)));
    }
    std::vector<double> values = {1.0, 2.0, NAN, -3.0, 0.0};
    std::vector<double> before = values;
    xunConvertArrayD_(c, values.data(), static_cast<int>(values.size()), NAN);
    EXPECT_EQ(std::memcmp(values.data(), before.data(), values.size() * sizeof(double)), 0);
    std::vector<float> floats = {1.0f, 2.0f, NAN, -3.0f};
    std::vector<float> floatsBefore = floats;
    xunConvertArrayF_(c, floats.data(), static_cast<int>(floats.size()), NAN);
    EXPECT_EQ(std::memcmp(floats.data(), floatsBefore.data(), floats.size() * sizeof(float)), 0);
}

// Every length up to 70 at every start within a 64-byte line, so that every
// head, main loop and tail combination runs; elements outside the array are
// never written (Check compares the whole buffer).
TEST_P(ConversionPath, OddLengthsAndMisalignedStarts) {
    Numbers numbers(5);
    for (const XunConversion_& c :
         {XunConversion_{1.0, 273.15, 459.67 * 5 / 9, 5.0 / 9},
          XunConversion_{0.3048, 0.0, 0.0, 0.0254}, XunConversion_{0.0254, 0.0, 0.0, 1.0}}) {
        for (size_t count = 0; count <= 70; ++count) {
            std::vector<double> values(count);
            std::vector<float> floats(count);
            for (size_t i = 0; i < count; ++i) {
                values[i] = i % 5 == 3 ? -9999.0 : (numbers.Uniform() - 0.5) * 300;
                floats[i] = static_cast<float>(values[i]);
            }
            for (size_t start = 0; start < 16; ++start) {
                ASSERT_TRUE(Check(c, values.data(), count, -9999.0, start)) << count;
                ASSERT_TRUE(Check(c, floats.data(), count, -9999.0f, start)) << count;
            }
        }
    }
}

// Arrays large enough for the prefetching loops, with and without delete
// values, at an aligned and a misaligned start.
// Float results whose rounded double quotient lies on, next to or around a
// rounding boundary of floats: the midpoints between neighbouring floats
// (ties included), both sides of powers of two (where the gaps differ), the
// overflow threshold of floats and their subnormal range. For each target m
// and divisor f2 the array sweeps the dividend a over A + i * ulp(A),
// A = m * f2 rounded, i = -64 ... 64: f1 = ulp(A) is a power of two and
// o1 = A, so the dividend is exact, and the quotients step through m one
// double at a time.
TEST_P(ConversionPath, FloatRoundingBoundaries) {
    Numbers numbers(7);
    std::vector<double> targets;
    const double maxFloat = static_cast<double>(std::numeric_limits<float>::max());
    for (double m : {maxFloat, maxFloat + 0x1p103, maxFloat - 0x1p103, 0x1p-126,
                     0x1p-126 - 0x1p-150, 0x1p-126 + 0x1p-150, 0x1p-149, 0x1p-150, 0x1.8p-149,
                     0x1p-127 + 0x1p-150, 1.0, 1.0 + 0x1p-24, 1.0 - 0x1p-25, 3.0 + 0x1p-23,
                     // the edges of the float product's check: 2^-151, 2^-126, 2^128
                     0x1p-151, 0x1p-151 + 0x1p-175, 0x1p-151 - 0x1p-176, 0x1p-152, 0x1p-127,
                     0x1p-126 - 0x1p-160, 0x1p128, 0x1p128 - 0x1p90, 0x1p128 + 0x1p90})
        targets.push_back(m);
    for (int k = 0; k < 200; ++k) {
        // A random float, its two midpoints, and a power of two's.
        const float f = static_cast<float>(numbers.Normal(-120, 120));
        const double below = static_cast<double>(std::nextafter(f, 0.0f));
        const double above = static_cast<double>(std::nextafter(f, f > 0 ? INFINITY : -INFINITY));
        targets.push_back((static_cast<double>(f) + below) / 2);
        targets.push_back((static_cast<double>(f) + above) / 2);
        const double power = std::ldexp(1.0, static_cast<int>(numbers.Next() % 240) - 120);
        targets.push_back(power - std::ldexp(power, -25));
        targets.push_back(power + std::ldexp(power, -24));
    }
    std::vector<float> input;
    for (int i = -64; i <= 64; ++i)
        input.push_back(static_cast<float>(i));
    const float deleteValue = 12345.0f;
    for (double m : targets) {
        for (int d = 0; d < 6; ++d) {
            double f2;
            switch (d) {
            case 0:
                f2 = 3.0;
                break;
            case 1:
                f2 = -10.0;
                break;
            case 2: // all-ones significand
                f2 = FromBits((static_cast<uint64_t>(1023 + numbers.Next() % 9 - 4) << 52) |
                              0xFFFFFFFFFFFFFull);
                break;
            default:
                f2 = numbers.Normal(-8, 8);
                break;
            }
            const double a = m * f2;
            if (!std::isnormal(a))
                continue;
            int exponent = 0;
            std::frexp(a, &exponent);
            const double ulp = std::ldexp(1.0, exponent - 53);
            const XunConversion_ c{ulp, a, 0.0, f2};
            ASSERT_TRUE(Check(c, input.data(), input.size(), deleteValue, numbers.Next() % 16))
                << "target " << std::hexfloat << m;
        }
    }
}

TEST_P(ConversionPath, LargeArrays) {
    Numbers numbers(6);
    const size_t count = 300000;
    std::vector<double> values(count);
    std::vector<float> floats(count);
    for (size_t i = 0; i < count; ++i) {
        values[i] = numbers.Chance(10) ? -9999.0 : (numbers.Uniform() - 0.5) * 300;
        floats[i] = static_cast<float>(values[i]);
    }
    for (const XunConversion_& c :
         {XunConversion_{1.0, 273.15, 459.67 * 5 / 9, 5.0 / 9},
          XunConversion_{0.3048, 0.0, 0.0, 0.0254}, XunConversion_{0.0254, 0.0, 0.0, 1.0}}) {
        for (size_t start : {0, 3}) {
            ASSERT_TRUE(Check(c, values.data(), count, -9999.0, start));
            ASSERT_TRUE(Check(c, floats.data(), count, -9999.0f, start));
        }
    }
}

// Directed rounding, flush-to-zero and denormals-are-zero: every path still
// agrees with the stepwise operations.
TEST_P(ConversionPath, OtherFloatingPointModes) {
    Numbers numbers(7);
    const unsigned modes[] = {0x2000u /* down */,
                              0x4000u /* up */,
                              0x6000u /* to zero */,
                              0x8000u /* flush to zero */,
                              0x0040u /* denormals are zero */,
                              0x8040u};
    for (unsigned mode : modes) {
        _mm_setcsr((m_savedMxcsr & ~0xE040u) | mode);
        for (int round = 0; round < 300; ++round) {
            const XunConversion_ c = numbers.Conversion();
            const double del = numbers.DeleteValue();
            std::vector<double> values(1 + numbers.Next() % 300);
            for (double& x : values)
                x = numbers.Value(c, del);
            ASSERT_TRUE(Check(c, values.data(), values.size(), del)) << "MXCSR mode " << mode;
            std::vector<float> floats(values.size());
            for (size_t i = 0; i < values.size(); ++i)
                floats[i] = static_cast<float>(values[i]);
            ASSERT_TRUE(Check(c, floats.data(), floats.size(), static_cast<float>(del)))
                << "MXCSR mode " << mode;
        }
        _mm_setcsr(m_savedMxcsr);
    }
}

// Factors at both ends of the double range, in every floating-point
// environment a host may set (rounding modes, flush-to-zero,
// denormals-are-zero and their combinations): no path may use a
// reciprocal or any other intermediate that such a mode changes. A divisor
// of +-2^1023 has the subnormal reciprocal 2^-1023, which flush-to-zero and
// denormals-are-zero turn into 0.
TEST_P(ConversionPath, ExtremeFactorsInEveryEnvironment) {
    const double max = std::numeric_limits<double>::max();
    const double minNormal = std::numeric_limits<double>::min();
    const double sub = std::numeric_limits<double>::denorm_min();
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double factors[] = {
        0x1p1023,      -0x1p1023,   0x1p1022,  -0x1p1022, 0x1p1021,
        0x1p-1022,     -0x1p-1022,  0x1p-1021, max,       -max,
        0x1.8p1022,    0x1.8p-1022, 0x1p1020,  0x1p-960,  0x1.fffffffffffffp-961,
        minNormal * 3, sub,         1.0,       0.3048};
    const double offsets[] = {0.0, 1.0, -1e308, sub};
    const double values[] = {0.0,
                             -0.0,
                             1.0,
                             -1.0,
                             0x1p1000,
                             -0x1p1000,
                             max,
                             -max,
                             minNormal,
                             -minNormal,
                             sub,
                             -sub,
                             0x1p-1050,
                             inf,
                             -inf,
                             nan,
                             1e-300,
                             123.456,
                             0x1p-20,
                             3.0,
                             -7.5,
                             1e300,
                             0x1.fffffffffffffp-1};
    const unsigned modes[] = {0x0000u, 0x2000u, 0x4000u, 0x6000u, 0x8000u, 0x0040u,
                              0x8040u, 0xA040u, 0xC040u, 0xE040u, 0x2040u, 0x4000u | 0x8000u};
    std::vector<double> input;
    // Every value at every position of a vector, several vectors long.
    for (int copy = 0; copy < 3; ++copy)
        for (double x : values)
            input.push_back(x);
    std::vector<float> floats;
    for (double x : input)
        floats.push_back(static_cast<float>(x));
    for (unsigned mode : modes) {
        _mm_setcsr((m_savedMxcsr & ~0xE040u) | mode);
        for (double f2 : factors) {
            for (double f1 : {1.0, f2, 0x1p1023, 0x1p-1022, 0.5}) {
                for (double offset : offsets) {
                    const XunConversion_ c{f1, offset, 0.0, f2};
                    ASSERT_TRUE(Check(c, input.data(), input.size(), -9999.0))
                        << "MXCSR mode " << mode;
                    ASSERT_TRUE(Check(c, floats.data(), floats.size(), -9999.0f))
                        << "MXCSR mode " << mode;
                    for (size_t start : {1, 3})
                        ASSERT_TRUE(Check(c, input.data(), input.size() - start, 1.0, start))
                            << "MXCSR mode " << mode;
                }
            }
        }
        _mm_setcsr(m_savedMxcsr);
    }
}

INSTANTIATE_TEST_SUITE_P(Variants, ConversionPath, testing::ValuesIn(kEveryPath),
                         [](const testing::TestParamInfo<Path>& info) {
                             return std::string(PathName(info.param));
                         });

// The path XUN_CONVERSION_PATH names, if it names one ("baseline", "avx2",
// "avx512", "baseline-product", ...); Auto otherwise.
Path NamedPath() {
    const char* name = std::getenv("XUN_CONVERSION_PATH");
    if (name == nullptr)
        return Path::Auto;
    for (Path path : kEveryPath)
        if (EnvironmentName(path) == name)
            return path;
    return Path::Auto;
}

// Auto runs the path chosen once for the process: the one XUN_CONVERSION_PATH
// names when the processor supports it (CTest runs this test with each name
// and with a name of no path), otherwise the fastest of the supported paths
// on the timed block, where a wider path must be more than 2 % faster than a
// simpler one.
TEST(ConversionPathSelection, AutoRunsTheChosenSupportedPath) {
    ASSERT_TRUE(xunSetConversionPath_(Path::Auto));
    const XunConversionChoice_& choice = xunConversionChoice_();
    const Path chosen = xunConversionPathInUse_();
    EXPECT_EQ(chosen, choice.path);
    EXPECT_NE(chosen, Path::Auto);
    EXPECT_TRUE(xunConversionPathSupported_(chosen));
    const Path named = NamedPath();
    if (named != Path::Auto && xunConversionPathSupported_(named)) {
        EXPECT_TRUE(choice.forced);
        EXPECT_EQ(chosen, named);
        for (const auto& speed : choice.speeds) {
            EXPECT_EQ(speed.doubles, 0.0);
            EXPECT_EQ(speed.floats, 0.0);
        }
        return;
    }
    EXPECT_FALSE(choice.forced);
    // Time per element of each path, doubles and floats together.
    double chosenTime = 0.0;
    for (const auto& speed : choice.speeds) {
        const bool supported = xunConversionPathSupported_(speed.path);
        EXPECT_EQ(speed.doubles > 0.0, supported) << PathName(speed.path);
        EXPECT_EQ(speed.floats > 0.0, supported) << PathName(speed.path);
        if (speed.path == chosen)
            chosenTime = 1.0 / speed.doubles + 1.0 / speed.floats;
    }
    ASSERT_GT(chosenTime, 0.0);
    bool simpler = true; // the speeds list the simplest path first
    for (const auto& speed : choice.speeds) {
        if (speed.path == chosen) {
            simpler = false;
            continue;
        }
        if (!xunConversionPathSupported_(speed.path))
            continue;
        const double time = 1.0 / speed.doubles + 1.0 / speed.floats;
        if (simpler) // a simpler path as fast would have been kept
            EXPECT_GT(time, chosenTime * (1 - 1e-12)) << PathName(speed.path);
        else // a wider path would have had to be 2 % faster
            EXPECT_GE(time, chosenTime * (1 - 0.02) * (1 - 1e-12)) << PathName(speed.path);
    }
}

// Whatever path the process chose, it gives the stepwise bits.
TEST(ConversionPathSelection, AutoConvertsAsTheStepwiseFormula) {
    ASSERT_TRUE(xunSetConversionPath_(Path::Auto));
    Numbers numbers(11);
    for (int round = 0; round < 200; ++round) {
        const XunConversion_ c = numbers.Conversion();
        const double del = numbers.DeleteValue();
        std::vector<double> values(1 + numbers.Next() % 500);
        for (double& x : values)
            x = numbers.Value(c, del);
        ASSERT_TRUE(Check(c, values.data(), values.size(), del));
        std::vector<float> floats(values.size());
        for (size_t i = 0; i < values.size(); ++i)
            floats[i] = static_cast<float>(values[i]);
        ASSERT_TRUE(Check(c, floats.data(), floats.size(), static_cast<float>(del)));
    }
}

TEST(ConversionPathSelection, UnsupportedPathIsRefused) {
    ASSERT_TRUE(xunSetConversionPath_(Path::Baseline));
    for (Path path : kEveryPath) {
        if (!xunConversionPathSupported_(path)) {
            EXPECT_FALSE(xunSetConversionPath_(path));
            EXPECT_EQ(xunConversionPathInUse_(), Path::Baseline);
        }
    }
    xunSetConversionPath_(Path::Auto);
}

TEST(ConversionPathSelection, NothingConvertedForCountBelowOne) {
    const XunConversion_ c{1.0, 273.15, 0.0, 1.25};
    double value = 7.0;
    xunConvertArrayD_(c, &value, 0, -9999.0);
    xunConvertArrayD_(c, &value, -5, -9999.0);
    xunConvertArrayD_(c, nullptr, 0, -9999.0);
    EXPECT_EQ(value, 7.0);
}

} // namespace
