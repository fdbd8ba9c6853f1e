// Values of parameters of manual enhance that JSON text can't represent. They may be in memory, because
// archives store doubles bit by bit.

#include "Adaptors/Project/V68_ManualEnhanceEffectAdaptor.h"
#include "Serialize/Json/FlatObject.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

nlohmann::json adapted(const char* parameter, double value) {
    Serialize::Json::FlatObject document;
    nlohmann::json* effect = document.createObject("Effect::ManualEnhance");
    (*effect)[parameter] = value;
    Project::V68_ManualEnhanceEffectAdaptor().adapt(document);
    return (*effect)[parameter];
}

TEST(ManualEnhance, ANaNIsNoIntegerAndCountsAsZero) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(adapted("tint", nan), nlohmann::json(0.0));
    EXPECT_TRUE(std::isnan(adapted("gamma", nan).get<double>()));
}

TEST(ManualEnhance, InfinitiesAreClamped) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(adapted("tint", infinity), nlohmann::json(1.0));
    EXPECT_EQ(adapted("tint", -infinity), nlohmann::json(-1.0));
    EXPECT_EQ(adapted("gamma", infinity), nlohmann::json(1.0));
    EXPECT_EQ(adapted("gamma", -infinity), nlohmann::json(-1.0));
}

} // namespace
