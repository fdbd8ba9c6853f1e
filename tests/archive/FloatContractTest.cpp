// Stored doubles are the same to the last bit on every machine: no product is fused with a sum, which would
// omit a rounding; and matrices are those that Qt computes.

#include "Archive/Internal/Transforms.h"

#include <gtest/gtest.h>

#include <QTransform>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <ios>
#include <limits>
#include <random>

// On x86-64 the compiler uses the instruction only in a function that is marked to allow it.
#if defined(__x86_64__)
#define MAY_FUSE __attribute__((noinline, target("fma")))
#else
#define MAY_FUSE __attribute__((noinline))
#endif

namespace {

// (1 + e)(1 - e) is 1 - e squared, which rounds to 1: the unfused sum is 0, the fused one -e squared.
// Volatile, so that the sum is computed when the test runs.
constexpr double e = 0x1p-30;
const volatile double a = 1.0 + e;
const volatile double b = 1.0 - e;
const volatile double c = -1.0;

MAY_FUSE double productAndSum(double x, double y, double z) {
    return x * y + z;
}

bool hasInstruction() {
#if defined(__x86_64__)
    return __builtin_cpu_supports("fma");
#else
    return true;
#endif
}

TEST(FloatContractTest, NumbersDistinguishFusedFromUnfused) {
    EXPECT_EQ(std::fma(a, b, c), -0x1p-60);
    const volatile double product = a * b;
    EXPECT_EQ(product + c, 0.0);
}

TEST(FloatContractTest, ProductAndSumRoundTwice) {
    if (!hasInstruction())
        GTEST_SKIP() << "no fused multiply-add here";
    EXPECT_EQ(productAndSum(a, b, c), 0.0);
}

std::array<std::uint64_t, 9> bitsOf(const std::array<double, 9>& elements) {
    std::array<std::uint64_t, 9> bits = {};
    for (std::size_t at = 0; at < bits.size(); ++at) {
        const double element = elements[at];
        // All numbers that are none are one text in documents.
        bits[at] = std::isnan(element) ? ~std::uint64_t(0) : std::bit_cast<std::uint64_t>(element);
    }
    return bits;
}
std::array<std::uint64_t, 9> bitsOf(const Stored::V14::Transform& m) {
    return bitsOf(std::array{m.m11, m.m12, m.m13, m.m21, m.m22, m.m23, m.m31, m.m32, m.m33});
}
std::array<std::uint64_t, 9> bitsOf(const QTransform& m) {
    return bitsOf(
        std::array{m.m11(), m.m12(), m.m13(), m.m21(), m.m22(), m.m23(), m.m31(), m.m32(), m.m33()});
}

/// Returns whether both matrices are those of Qt, to the last bit.
testing::AssertionResult isAsInQt(double scaleX, double scaleY, double moveX, double moveY) {
    const QTransform expected =
        QTransform::fromScale(scaleX, scaleY) * QTransform::fromTranslate(moveX, moveY);
    const Archive::Internal::ScaleAndMove actual(scaleX, scaleY, moveX, moveY);
    if (bitsOf(actual.matrix()) == bitsOf(expected) &&
        bitsOf(actual.inverse()) == bitsOf(expected.inverted()))
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << std::hexfloat << "scale " << scaleX << " " << scaleY << ", move " << moveX << " " << moveY;
}

TEST(FloatContractTest, MatricesOfSpecialNumbersAreThoseOfQt) {
    // Around 1e-12 Qt begins to take a number for 0.
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double numbers[] = {0.0,       -0.0,        1.0,
                              -1.0,      0.5,         -0.25,
                              1e-12,     -1.1e-12,    9e-13,
                              1e-300,    5e-324,      -1e300,
                              1 + e,     1.0 + 9e-13, 1.0 - 9e-13,
                              1.1,       1.0000001,   1.0 + 2e-12,
                              -infinity, infinity,    std::numeric_limits<double>::quiet_NaN()};
    for (const double scaleX : numbers) {
        for (const double scaleY : numbers) {
            for (const double moveX : numbers) {
                for (const double moveY : numbers)
                    ASSERT_TRUE(isAsInQt(scaleX, scaleY, moveX, moveY));
            }
        }
    }
}

TEST(FloatContractTest, MatricesOfRandomNumbersAreThoseOfQt) {
    std::mt19937_64 random(14);
    const auto near = [&](double middle) {
        return std::uniform_real_distribution<double>(middle - 2.0, middle + 2.0)(random);
    };
    const auto any = [&] { return std::bit_cast<double>(random()); };
    for (int round = 0; round < 200'000; ++round) {
        ASSERT_TRUE(isAsInQt(near(1.0), near(1.0), near(0.0), near(0.0)));
        ASSERT_TRUE(isAsInQt(any(), any(), any(), any()));
    }
}

} // namespace
