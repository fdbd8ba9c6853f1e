// Stored doubles are the same to the last bit on every machine: no product is fused with a sum, which would
// omit a rounding.

#include "Archive/Internal/Transforms.h"

#include <gtest/gtest.h>

#include <QTransform>

#include <cmath>

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

TEST(FloatContractTest, MatrixProductsRoundTwice) {
    // Moves by `a`, then scales by `b` and moves by `c`.
    const QTransform matrix =
        QTransform::fromTranslate(a, a) * (QTransform::fromScale(b, b) * QTransform::fromTranslate(c, c));
    const auto stored = Archive::Internal::toStored(matrix);
    EXPECT_EQ(stored.m31, 0.0);
    EXPECT_EQ(stored.m32, 0.0);
    EXPECT_EQ(stored.m11, b);
}

} // namespace
