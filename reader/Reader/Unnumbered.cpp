#include "Reader/Unnumbered.h"

#include "Adaptors/ImportDescriptionAdaptor.h"
#include "Adaptors/OverlayFileContentReadAdaptor.h"
#include "Adaptors/OverlayFileContentWriteAdaptor.h"
#include "Adaptors/Project/CollectionItemPreviewUrlsAdaptor.h"
#include "Adaptors/Project/PortableLoadAdaptor.h"
#include "Adaptors/Project/PortableSaveAdaptor.h"
#include "Adaptors/ThemeTransitionsAndSceneAdaptor.h"

#include <algorithm>

namespace Reader {
namespace {

template <class Form, class Adaptor>
std::unique_ptr<Form> plain(const Surroundings&) {
    return std::make_unique<Adaptor>();
}

template <class Form, class Adaptor>
std::unique_ptr<Form> withLocation(const Surroundings& surroundings) {
    return std::make_unique<Adaptor>(surroundings.location);
}

template <class Form>
std::unique_ptr<Form> sideFileReader(const Surroundings& surroundings) {
    return std::make_unique<OverlayFileContentReadAdaptor>(surroundings.readSideFile);
}

template <class Form>
std::unique_ptr<Form> sideFileWriter(const Surroundings& surroundings) {
    return std::make_unique<OverlayFileContentWriteAdaptor>(surroundings.writeSideFile);
}

using Xml = Bundle::AbstractAdaptorXml;
using Json = Bundle::AbstractAdaptorJson;

// clang-format off
constexpr Unnumbered adaptors[] = {
    {"CollectionItemPreviewUrlsAdaptor", "Collection items lose their list of previews; for lists gone wrong.", nullptr, plain<Json, Project::CollectionItemPreviewUrlsAdaptor>},
    {"ImportDescriptionAdaptor", "On every archive before the conversion: imports without a description's address get an empty one.", plain<Xml, ImportDescriptionAdaptor>, nullptr},
    {"OverlayFileContentReadAdaptor", "After loading: texts of overlays come back from side files.", sideFileReader<Xml>, sideFileReader<Json>},
    {"OverlayFileContentWriteAdaptor", "Before saving: texts of overlays move out to side files.", nullptr, sideFileWriter<Json>},
    {"PortableLoadAdaptor", "After loading: paths become absolute paths of this machine.", nullptr, withLocation<Json, Project::PortableLoadAdaptor>},
    {"PortableSaveAdaptor", "Before saving: paths become markers and paths relative to the project.", nullptr, withLocation<Json, Project::PortableSaveAdaptor>},
    {"ThemeTransitionsAndSceneAdaptor", "On every archive before the first step: older themes come up to date.", plain<Xml, ThemeTransitionsAndSceneAdaptor>, nullptr},
};
// clang-format on

} // namespace

std::span<const Unnumbered> unnumberedAdaptors() {
    return adaptors;
}

const Unnumbered* findUnnumbered(std::string_view className) {
    constexpr std::string_view qualifier = "Project::";
    if (className.starts_with(qualifier))
        className.remove_prefix(qualifier.size());
    const auto* found = std::find_if(std::begin(adaptors), std::end(adaptors),
                                     [&](const Unnumbered& row) { return row.className == className; });
    return found == std::end(adaptors) ? nullptr : found;
}

} // namespace Reader
