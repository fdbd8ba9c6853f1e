#include "Adaptors/Project/V21_PresetTypeAdaptor.h"

#include "Archive/Internal/Outline.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"
#include "Stored/V21/SvgImage.h"

#include <QColor>

namespace Project {
namespace {

using namespace Archive::Internal;
namespace Words = Archive::Words;

constexpr int svgKind = 2;
constexpr int specialKind = 3; ///< becomes the SVG kind with a feature

constexpr int ordinaryPreset = 1;
constexpr int specialPreset = 2; ///< has an item of the special kind

constexpr int noFeatures = 0;
constexpr int specialFeature = 1;

/// The colour, an ARGB number, becomes fill and stroke of the text's root element, and 0 where it stood. It is 0
/// where it is missing, and nothing is made then.
void moveOutlineColorIntoText(const QDomElement& item) {
    QDomElement color = childAt(item, {QStringLiteral("outline"), QStringLiteral("color")});
    const QColor paint = QColor::fromRgba(color.attribute(Words::value).toUInt());
    if (!color.isNull())
        color.setAttribute(Words::value, QStringLiteral("0"));

    // Unlike outline and type the text may stand deeper.
    QDomElement text = firstDescendant(item, QStringLiteral("text"));
    if (text.isNull())
        return;
    Stored::V21::SvgImage image(text.attribute(Words::value));
    image.setFillColor(paint);
    image.setStrokeColor(paint);
    text.setAttribute(Words::value, image.toString());
    Archive::Internal::Outline::wrote(text.attribute(Words::value));
}

/// Gives an item its features and tells them.
int convertItem(QDomDocument& document, QDomElement& item) {
    int features = noFeatures;
    QDomElement type = item.firstChildElement(Words::type);
    const int kind = type.attribute(Words::value).toInt();
    if (kind == svgKind) {
        moveOutlineColorIntoText(item);
    } else if (kind == specialKind) {
        features = specialFeature;
        type.setAttribute(Words::value, QString::number(svgKind));
    }
    item.appendChild(Archive::createInt32(document, QStringLiteral("features"), features));
    return features;
}

void convertPreset(QDomDocument& document, QDomElement& preset) {
    int presetType = ordinaryPreset;
    // All entries below, those of inner arrays too.
    for (const QDomElement& entry : elements(firstDescendant(preset, QStringLiteral("items")), Words::Item)) {
        QDomElement item = entry.firstChildElement(Words::Data);
        if (!item.isNull() && convertItem(document, item) == specialFeature)
            presetType = specialPreset;
    }
    preset.appendChild(Archive::createInt32(document, Words::type, presetType));
}

} // namespace

void V21_PresetTypeAdaptor::adapt(QDomDocument& document) {
    for (QDomElement& preset : rootObjects(soleArchive(document), QStringLiteral("Overlay::Preset")))
        convertPreset(document, preset);
}

} // namespace Project
