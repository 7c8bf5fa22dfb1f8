// Array conversion through the C interface gives the bits of the single
// conversion in every floating-point environment a host may set: a host
// built with -ffast-math runs with flush-to-zero and denormals-are-zero,
// others change the rounding mode. Units with factors at both ends of the
// double range, from a setup file.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <xmmintrin.h>

#include "xun.h"

namespace {

std::string DataFile(const std::string& name) {
    const char* root = std::getenv("XUN_TEST_DATA");
    return std::string(root != nullptr ? root : "tests/data") + "/setup/" + name;
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

TEST(ConversionEnvironment, ArraysMatchSingleConversionsUnderEveryMode) {
    testing::internal::CaptureStdout();
    ASSERT_EQ(xunSetupLoad(DataFile("extreme_factors.xml").c_str()), 1);
    ASSERT_EQ(testing::internal::GetCapturedStdout(), "");
    double factor = 0, offset = 0, powers[7], factors[7];
    ASSERT_EQ(xunUnitGetParameters(1001, &factor, &offset, powers, factors), 1);
    ASSERT_EQ(factor, 0x1p1023);
    ASSERT_EQ(xunUnitGetParameters(1002, &factor, &offset, powers, factors), 1);
    ASSERT_EQ(factor, -0x1p1023);
    ASSERT_EQ(xunUnitGetParameters(1004, &factor, &offset, powers, factors), 1);
    ASSERT_EQ(factor, 0x1p-1022);

    const double inf = std::numeric_limits<double>::infinity();
    const double values[] = {0.0,     -0.0,       1.0,     -1.0,      0x1p1000,  -0x1p1000, 1e308,
                             -1e308,  inf,        -inf,    0x1p-1022, 0x1p-1074, 1e-300,    3.5,
                             0x1p-20, 123456.789, -0.3048, 0x1p1023,  2.0,       -2.0};
    std::vector<double> input(values, values + sizeof values / sizeof values[0]);
    // Long enough for every vector loop, with a tail.
    for (int i = 0; i < 3; ++i)
        input.insert(input.end(), values, values + sizeof values / sizeof values[0]);

    const unsigned saved = _mm_getcsr();
    const unsigned modes[] = {0x0000u, 0x8000u, 0x0040u, 0x8040u,
                              0x2000u, 0x4000u, 0x6000u, 0xE040u};
    const int tags[] = {1000, 1001, 1002, 1003, 1004, 1005, 1006};
    for (unsigned mode : modes) {
        _mm_setcsr((saved & ~0xE040u) | mode);
        for (int from : tags) {
            for (int to : tags) {
                std::vector<double> array(input);
                ASSERT_EQ(xunConvertItemArrayD(from, to, array.data(),
                                               static_cast<int>(array.size()), -9999.0),
                          1);
                std::vector<float> floats;
                for (double x : input)
                    floats.push_back(static_cast<float>(x));
                std::vector<float> floatInput(floats);
                ASSERT_EQ(xunConvertItemArrayF(from, to, floats.data(),
                                               static_cast<int>(floats.size()), -9999.0f),
                          1);
                for (size_t i = 0; i < input.size(); ++i) {
                    double single = 0;
                    ASSERT_EQ(xunConvertUnit(from, to, &single, input[i]), 1);
                    EXPECT_EQ(Bits(array[i]), Bits(single))
                        << "mode " << std::hex << mode << std::dec << " " << from << "->" << to
                        << " x=" << std::hexfloat << input[i] << " array " << array[i] << " single "
                        << single;
                    double widened = 0;
                    ASSERT_EQ(
                        xunConvertUnit(from, to, &widened, static_cast<double>(floatInput[i])), 1);
                    EXPECT_EQ(Bits(floats[i]), Bits(static_cast<float>(widened)))
                        << "mode " << std::hex << mode << std::dec << " " << from << "->" << to
                        << " x=" << std::hexfloat << floatInput[i];
                }
            }
        }
        _mm_setcsr(saved);
    }
}

} // namespace
