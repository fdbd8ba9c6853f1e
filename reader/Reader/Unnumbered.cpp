#include "Reader/Unnumbered.h"

#include "Adaptors/Project/PortableLoadAdaptor.h"
#include "Adaptors/Project/PortableSaveAdaptor.h"

#include <algorithm>

namespace Reader {
namespace {

using Xml = std::unique_ptr<Bundle::AbstractAdaptorXml>;
using Json = std::unique_ptr<Bundle::AbstractAdaptorJson>;

template <class Adaptor>
Json makeWithLocation(const Surroundings& surroundings) {
    return std::make_unique<Adaptor>(surroundings.location);
}

// clang-format off
constexpr Unnumbered adaptors[] = {
    {"PortableLoadAdaptor", "After loading: paths become absolute paths of this machine.", nullptr, makeWithLocation<Project::PortableLoadAdaptor>},
    {"PortableSaveAdaptor", "Before saving: paths become markers and paths relative to the project.", nullptr, makeWithLocation<Project::PortableSaveAdaptor>},
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
