#include "Adaptors/Project/V5_EnumcastAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Truncate.h"
#include "Archive/Xml.h"

using namespace Archive::Internal;

namespace Project {
namespace {

struct EnumField {
    const char* className;
    const char* field;
    bool isDouble = false; ///< false for an unsigned number
};

// clang-format off
constexpr EnumField enumFields[] = {
    {"Transition::BarnDoor",        "direction"},
    {"Transition::Circle",          "direction"},
    {"Transition::SlidingDoor",     "direction"},
    {"Transition::Slide",           "direction"},
    {"Transition::Radial",          "direction"},
    {"Transition::DirectCrossFade", "direction"},
    {"Transition::DirectCrossFade", "smoothPart", true},
    {"Transition::Wipe",            "direction"},
    {"Transition::OrigamiPleats",   "direction"},
    {"Transition::Smear",           "direction"},
    {"Transition::KenBurns",        "direction"},
    {"Transition::Zoom",            "mode"},
    {"Transition::Scale",           "mode"},
    {"Transition::Blinds",          "mode"},
    {"Transition::Push",            "mode"},
    {"Transition::Lens",            "mode"},
    {"Transition::Spiral",          "mode"},
    {"Transition::Shatter",         "dir"},
    {"Effect::RetroColors",         "type"},
    {"Effect::Mirror",              "vertical"},
    {"Effect::Mirror",              "horizontal"},
    {"Effect::AddNoize",            "type"},
    {"Effect::Mosaic",              "type"},
    {"Effect::Erosion",             "type"},
};
// clang-format on

void convertDouble(ArchiveEditor& archive, const QDomElement& e) {
    const double number = Archive::extractValue(e.attribute(Words::binaryData), 0.0);
    archive.setText(e, QString::number(truncated<long long>(number)));
    archive.removeBinaryData(e);
}

void convertField(ArchiveEditor& archive, const QDomElement& object, const EnumField& row) {
    // Quirk: at any depth, so a field of an embedded object is converted instead if it comes first.
    const QDomElement e = firstDescendant(object, row.field);
    if (e.isNull())
        return;
    // Quirk: the element's own type is ignored. An unsigned number keeps its text, also if the new type can't
    // hold it.
    if (row.isDouble)
        convertDouble(archive, e);
    archive.setType(e, "int32_t");
}

} // namespace

void V5_EnumcastAdaptor::convert(ArchiveEditor& archive) {
    for (const auto& [object, type] : archive.rootObjects()) {
        for (const EnumField& row : enumFields) {
            if (type == QLatin1String(row.className))
                convertField(archive, object, row);
        }
    }
}

} // namespace Project
