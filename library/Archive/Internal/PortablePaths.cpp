#include "Archive/Internal/PortablePaths.h"

#include "Archive/Internal/FlatEditor.h"
#include "Settings/Settings.h"

#include <algorithm>
#include <set>
#include <string>
#include <string_view>

using nlohmann::json;

namespace Archive::Internal {
namespace {

struct PathFields {
    const char* className;
    std::array<const char*, 2> fields;
};

constexpr PathFields pathFields[] = {
    {"File", {"path"}},
    {"Import::Object", {"resourcePath"}},
    {"Stabilization::Object", {"pathOriginal", "pathStabilized"}},
    {"Effect::BackgroundRemove", {"aiModelPath"}},
    {"Effect::AudioAiDenoise", {"aiModelPath"}},
    {"Effect::Object", {"resourcePath"}},
    {"Transition::Object", {"resourcePath"}},
    {"Overlay::Preset", {"resourcePath"}},
};

void convertObject(json& object, const PathFields& row,
                   const std::function<QString(const QString&)>& convert) {
    for (const char* field : row.fields) {
        if (!field)
            continue;
        const auto path = memberOf(object, field).get<std::string>();
        object[field] = convert(QString::fromStdString(path));
    }
    if (std::string_view(row.className) == "Import::Object")
        object["description"] = object["resourcePath"];
}

} // namespace

PathRoots pathRoots(const std::optional<Bundle::PortableFolders>& folders) {
    const Bundle::PortableFolders used =
        folders ? *folders
                : Bundle::PortableFolders{Settings::legacyPackageDeploymentPath(), Settings::aiModelsPath(),
                                          Settings::downloadableResourcesPath()};
    return {{
        {QStringLiteral("#PACKAGES_ROOT#"), used.packages},
        {QStringLiteral("#AI_MODELS_ROOT#"), used.aiModels},
        {QStringLiteral("#DOWNLOADABLE_ROOT#"), used.downloadables},
    }};
}

void convertPaths(FlatEditor& editor, const std::function<QString(const QString&)>& convert) {
    std::set<std::string> classes;
    for (const PathFields& row : pathFields)
        classes.insert(row.className);
    for (const auto& [id, object] : editor.objects(classes)) {
        const auto* row =
            std::ranges::find(pathFields, *Serialize::Json::classNameOf(*object),
                              [](const PathFields& fields) { return std::string_view(fields.className); });
        convertObject(*object, *row, convert);
    }
}

} // namespace Archive::Internal
