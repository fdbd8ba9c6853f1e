#include "Adaptors/Project/V5_EnumcastAdaptor.h"

#include "Archive/Internal/Truncate.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

#include <string_view>

namespace Project {
namespace {

namespace Words = Archive::Words;

struct EnumField {
    const char* className;
    const char* field;
    std::string_view oldType;
    const char* newType;
};

// clang-format off
constexpr EnumField enumFields[] = {
    {"Transition::BarnDoor",        "direction",  "uint32_t", "int32_t"},
    {"Transition::Circle",          "direction",  "uint32_t", "int32_t"},
    {"Transition::SlidingDoor",     "direction",  "uint32_t", "int32_t"},
    {"Transition::Slide",           "direction",  "uint32_t", "int32_t"},
    {"Transition::Radial",          "direction",  "uint32_t", "int32_t"},
    {"Transition::DirectCrossFade", "direction",  "uint32_t", "int32_t"},
    {"Transition::DirectCrossFade", "smoothPart", "double",   "int32_t"},
    {"Transition::Wipe",            "direction",  "uint32_t", "int32_t"},
    {"Transition::OrigamiPleats",   "direction",  "uint32_t", "int32_t"},
    {"Transition::Smear",           "direction",  "uint32_t", "int32_t"},
    {"Transition::KenBurns",        "direction",  "uint32_t", "int32_t"},
    {"Transition::Zoom",            "mode",       "uint32_t", "int32_t"},
    {"Transition::Scale",           "mode",       "uint32_t", "int32_t"},
    {"Transition::Blinds",          "mode",       "uint32_t", "int32_t"},
    {"Transition::Push",            "mode",       "uint32_t", "int32_t"},
    {"Transition::Lens",            "mode",       "uint32_t", "int32_t"},
    {"Transition::Spiral",          "mode",       "uint32_t", "int32_t"},
    {"Transition::Shatter",         "dir",        "uint32_t", "int32_t"},
    {"Effect::RetroColors",         "type",       "uint32_t", "int32_t"},
    {"Effect::Mirror",              "vertical",   "uint32_t", "int32_t"},
    {"Effect::Mirror",              "horizontal", "uint32_t", "int32_t"},
    {"Effect::AddNoize",            "type",       "uint32_t", "int32_t"},
    {"Effect::Mosaic",              "type",       "uint32_t", "int32_t"},
    {"Effect::Erosion",             "type",       "uint32_t", "int32_t"},
};
// clang-format on

void decode(QDomElement& e) {
    const double number = Archive::extractValue(e.attribute(Words::binaryData), 0.0);
    e.setAttribute(Words::value, QString::number(Archive::Internal::truncated<long long>(number)));
    e.removeAttribute(Words::binaryData);
}

void convert(const QDomElement& object, const EnumField& row) {
    // At any depth: the field of an embedded object is taken where it stands first.
    QDomElement e = Archive::Internal::firstDescendant(object, QLatin1String(row.field));
    if (e.isNull())
        return;
    // The row alone says what the value was. The element's own type is not asked, and an unsigned number keeps
    // its text, even one that the new type can't hold.
    if (row.oldType == "double")
        decode(e);
    e.setAttribute(Words::type, QLatin1String(row.newType));
}

} // namespace

void V5_EnumcastAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    for (const auto& [object, type] : Archive::Internal::typedElements(archive, Words::RootObject)) {
        for (const EnumField& row : enumFields) {
            if (type == QLatin1String(row.className))
                convert(object, row);
        }
    }
}

} // namespace Project
