#include "Adaptors/Project/V5_PresetSettingsAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

struct Setting {
    const char* className;
    const char* tag;
    const char* name;
    const char* type;
    int value;
};

// The settings of a preset are appended in this order.
// clang-format off
constexpr Setting settings[] = {
    {"Transition::Matrix", "MatrixMediumBlocksSmooth", "blockCount", "uint32_t", 3},
    {"Transition::Matrix", "MatrixSmallBlocksSmooth", "blockCount", "uint32_t", 15},
    {"Transition::Waterbrush", "Waterbrush - Smooth", "angle", "int32_t", -45},
    {"Transition::Waterbrush", "Waterbrush - Rough", "angle", "int32_t", 45},
    {"Transition::Waterbrush", "Waterbrush - Smooth", "type", "int32_t", 0},
    {"Transition::Waterbrush", "Waterbrush - Rough", "type", "int32_t", 1},
    {"Transition::Ripple", "Ripple2WavesFromCenter", "amplitude", "uint32_t", 32},
    {"Transition::Ripple", "Ripple2WavesRightUp", "amplitude", "uint32_t", 32},
    {"Transition::Ripple", "Ripple3WavesLeftDown", "amplitude", "uint32_t", 24},
    {"Transition::Ripple", "Ripple4WavesRightDown", "amplitude", "uint32_t", 24},
    {"Transition::Ripple", "Warp1WaveFromCenter", "amplitude", "uint32_t", 64},
    {"Transition::Ripple", "Warp2WavesLeftDown", "amplitude", "uint32_t", 48},
    {"Transition::Ripple", "Warp3WavesRightUp", "amplitude", "uint32_t", 48},
    {"Transition::Ripple", "Ripple2WavesFromCenter", "period", "uint32_t", 7},
    {"Transition::Ripple", "Ripple2WavesRightUp", "period", "uint32_t", 24},
    {"Transition::Ripple", "Ripple3WavesLeftDown", "period", "uint32_t", 35},
    {"Transition::Ripple", "Ripple4WavesRightDown", "period", "uint32_t", 10},
    {"Transition::Ripple", "Warp1WaveFromCenter", "period", "uint32_t", 16},
    {"Transition::Ripple", "Warp2WavesLeftDown", "period", "uint32_t", 24},
    {"Transition::Ripple", "Warp3WavesRightUp", "period", "uint32_t", 32},
    {"Transition::DirectCrossFade", "DirectCrossFadeUp", "smoothPart", "int32_t", 4},
    {"Transition::DirectCrossFade", "DirectCrossFadeDown", "smoothPart", "int32_t", 4},
    {"Transition::DirectCrossFade", "DirectCrossFadeLeftUp", "smoothPart", "int32_t", 4},
    {"Transition::DirectCrossFade", "DirectCrossFadeRightUp", "smoothPart", "int32_t", 4},
    {"Transition::DirectCrossFade", "DirectCrossFadeLeft", "smoothPart", "int32_t", 4},
    {"Transition::DirectCrossFade", "DirectCrossFadeRight", "smoothPart", "int32_t", 4},
    {"Effect::FindEdges", "FindEdges", "sensibility", "double", 2},
    {"Effect::FindEdges", "FindEdges", "type", "int32_t", 0},
};
// clang-format on

QString tagOf(const QDomElement& object) {
    return textOf(firstDescendant(firstDescendant(object, Words::BaseOfObject), "tag"));
}

/// Sets a field; an existing one is replaced.
void addSetting(Fields fields, const Setting& setting) {
    if (QLatin1String(setting.type) == QLatin1String("double"))
        fields.number(setting.name, setting.value);
    else
        fields.typed(setting.name, setting.type, QString::number(setting.value));
}

} // namespace

void V5_PresetSettingsAdaptor::convert(ArchiveEditor& archive) {
    for (const auto& [object, className] : archive.rootObjects()) {
        if (!findRow(settings, &Setting::className, className))
            continue;
        const QString tag = tagOf(object);
        for (const Setting& setting : settings) {
            if (className == QLatin1String(setting.className) && tag == QLatin1String(setting.tag))
                addSetting(archive.settingFields(object), setting);
        }
    }
}

} // namespace Project
