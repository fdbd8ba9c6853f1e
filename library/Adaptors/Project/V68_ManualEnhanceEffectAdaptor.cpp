#include "Adaptors/Project/V68_ManualEnhanceEffectAdaptor.h"

#include "Archive/Internal/FlatEditor.h"

#include <algorithm>
#include <cmath>
#include <limits>

using nlohmann::json;

namespace Project {
namespace {

/// A value as a 32-bit integer; a fraction is cut off. A floating number out of range becomes the nearest
/// bound, an integer out of range wraps.
int toInt(const json& value) {
    if (!value.is_number_float())
        return value.get<int>();
    const double number = value.get<double>();
    if (std::isnan(number))
        return 0;
    constexpr double least = std::numeric_limits<int>::min();
    constexpr double greatest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(number, least, greatest));
}

/// Maps integers from `low` to `high` to -1 to 1. 0 stays 0, so each side has its own slope.
double aroundZero(const json& value, double low, double high) {
    const double number = std::clamp(static_cast<double>(toInt(value)), low, high);
    return number < 0.0 ? number / -low : number / high;
}

/// Maps numbers from `low` to `high` to -1 to 1. 1 becomes 0, so each side has its own slope.
double aroundOne(const json& value, double low, double high) {
    const double number = std::clamp(value.get<double>(), low, high);
    return number < 1.0 ? (number - low) / (1.0 - low) - 1.0 : (number - 1.0) / (high - 1.0);
}

struct Parameter {
    const char* key;
    double (*toCommonScale)(const json& value, double low, double high);
    double low;
    double high;
};

// clang-format off
// Sorted by key: if a value has the wrong type, the ones before it are already converted.
constexpr Parameter parameters[] = {
    {"brightness", aroundZero, -255, 255},
    {"contrast", aroundZero, -80, 80},
    {"gamma", aroundOne, 0.25, 2.0},
    {"highlights", aroundZero, -80, 100},
    {"hue", aroundZero, -180, 180},
    {"saturation", aroundOne, 0.0, 3.0},
    {"shadows", aroundZero, -100, 70},
    {"temperature", aroundZero, -236, 256},
    {"tint", aroundZero, -150, 150},
};
// clang-format on

} // namespace

void V68_ManualEnhanceEffectAdaptor::convert(Archive::Internal::FlatEditor& editor) {
    for (const auto& effect : editor.objects("Effect::ManualEnhance")) {
        for (const Parameter& parameter : parameters) {
            const auto value = effect.object->find(parameter.key);
            if (value != effect.object->end())
                *value = parameter.toCommonScale(*value, parameter.low, parameter.high);
        }
    }
}

} // namespace Project
