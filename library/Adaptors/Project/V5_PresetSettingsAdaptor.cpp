#include "Adaptors/Project/V5_PresetSettingsAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QMap>

#include <glog/logging.h>

#include <algorithm>
#include <string>
#include <utility>

namespace Words = Archive::Words;
using Archive::Internal::Elements;
using Archive::Internal::firstDescendant;

namespace Project {
namespace {

struct Setting {
    constexpr Setting(const char* objectClass, const char* presetTag, const char* element, const char* kind,
                      const char* text)
        : className(word(objectClass)), tag(word(presetTag)), name(word(element)), type(word(kind)),
          value(word(text)) {}

    /// Qt's own way to measure a text is no constant expression for every compiler.
    static constexpr QLatin1String word(const char* text) {
        return QLatin1String(text, static_cast<int>(std::char_traits<char>::length(text)));
    }

    QLatin1String className;
    QLatin1String tag;
    QLatin1String name;
    QLatin1String type;
    QLatin1String value;
};

// The settings of one preset are appended in this order.
// clang-format off
constexpr Setting settings[] = {
    {"Transition::Matrix", "MatrixMediumBlocksSmooth", "blockCount", "uint32_t", "3"},
    {"Transition::Matrix", "MatrixSmallBlocksSmooth", "blockCount", "uint32_t", "15"},
    {"Transition::Waterbrush", "Waterbrush - Smooth", "angle", "int32_t", "-45"},
    {"Transition::Waterbrush", "Waterbrush - Rough", "angle", "int32_t", "45"},
    {"Transition::Waterbrush", "Waterbrush - Smooth", "type", "int32_t", "0"},
    {"Transition::Waterbrush", "Waterbrush - Rough", "type", "int32_t", "1"},
    {"Transition::Ripple", "Ripple2WavesFromCenter", "amplitude", "uint32_t", "32"},
    {"Transition::Ripple", "Ripple2WavesRightUp", "amplitude", "uint32_t", "32"},
    {"Transition::Ripple", "Ripple3WavesLeftDown", "amplitude", "uint32_t", "24"},
    {"Transition::Ripple", "Ripple4WavesRightDown", "amplitude", "uint32_t", "24"},
    {"Transition::Ripple", "Warp1WaveFromCenter", "amplitude", "uint32_t", "64"},
    {"Transition::Ripple", "Warp2WavesLeftDown", "amplitude", "uint32_t", "48"},
    {"Transition::Ripple", "Warp3WavesRightUp", "amplitude", "uint32_t", "48"},
    {"Transition::Ripple", "Ripple2WavesFromCenter", "period", "uint32_t", "7"},
    {"Transition::Ripple", "Ripple2WavesRightUp", "period", "uint32_t", "24"},
    {"Transition::Ripple", "Ripple3WavesLeftDown", "period", "uint32_t", "35"},
    {"Transition::Ripple", "Ripple4WavesRightDown", "period", "uint32_t", "10"},
    {"Transition::Ripple", "Warp1WaveFromCenter", "period", "uint32_t", "16"},
    {"Transition::Ripple", "Warp2WavesLeftDown", "period", "uint32_t", "24"},
    {"Transition::Ripple", "Warp3WavesRightUp", "period", "uint32_t", "32"},
    {"Transition::DirectCrossFade", "DirectCrossFadeUp", "smoothPart", "int32_t", "4"},
    {"Transition::DirectCrossFade", "DirectCrossFadeDown", "smoothPart", "int32_t", "4"},
    {"Transition::DirectCrossFade", "DirectCrossFadeLeftUp", "smoothPart", "int32_t", "4"},
    {"Transition::DirectCrossFade", "DirectCrossFadeRightUp", "smoothPart", "int32_t", "4"},
    {"Transition::DirectCrossFade", "DirectCrossFadeLeft", "smoothPart", "int32_t", "4"},
    {"Transition::DirectCrossFade", "DirectCrossFadeRight", "smoothPart", "int32_t", "4"},
    {"Effect::FindEdges", "FindEdges", "sensibility", "double", "2"},
    {"Effect::FindEdges", "FindEdges", "type", "int32_t", "0"},
};
// clang-format on

/// Objects by class and tag.
using Presets = QMap<std::pair<QString, QString>, Elements>;

bool isStockClass(const QString& className) {
    return std::any_of(std::begin(settings), std::end(settings),
                       [&](const Setting& setting) { return setting.className == className; });
}

bool isStockPreset(const QString& className, const QString& tag) {
    return std::any_of(std::begin(settings), std::end(settings), [&](const Setting& setting) {
        return setting.className == className && setting.tag == tag;
    });
}

QString tagOf(const QDomElement& object) {
    const QDomElement base = firstDescendant(object, Words::BaseOfObject);
    return firstDescendant(base, QStringLiteral("tag")).attribute(Words::value);
}

Presets collect(const QDomElement& archive) {
    Presets presets;
    for (const auto& [object, className] : Archive::Internal::typedElements(archive, Words::RootObject)) {
        if (!isStockClass(className))
            continue;
        const QString tag = tagOf(object);
        if (isStockPreset(className, tag))
            presets[{className, tag}].push_back(object);
    }
    return presets;
}

QDomElement createElement(QDomDocument& document, const Setting& setting) {
    QDomElement e = Archive::createTypeValue(document, setting.name, setting.type, setting.value);
    if (setting.type == QLatin1String("double"))
        e.setAttribute(Words::binaryData, Archive::serializeValue(QString(setting.value).toDouble()));
    return e;
}

void apply(QDomDocument& document, QDomElement& object, const Setting& setting) {
    const QDomElement created = createElement(document, setting);
    const QDomNode stored = object.namedItem(setting.name);
    if (stored.isNull())
        object.appendChild(created);
    else
        Archive::Internal::replaceChild(object, created,
                                        stored); // a value of its own gives way to the table's
}

} // namespace

void V5_PresetSettingsAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    Presets presets = collect(archive);
    for (auto it = presets.begin(); it != presets.end(); ++it) {
        const auto& [className, tag] = it.key();
        for (QDomElement& object : it.value()) {
            for (const Setting& setting : settings) {
                if (setting.className == className && setting.tag == tag)
                    apply(document, object, setting);
            }
        }
    }
}

} // namespace Project
