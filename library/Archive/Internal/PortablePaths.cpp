#include "Archive/Internal/PortablePaths.h"

#include "Archive/Internal/FlatObjects.h"
#include "Settings/Settings.h"

#include <algorithm>
#include <string>

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

void convertPaths(Serialize::Json::FlatObject& document,
                  const std::function<QString(const QString&)>& convert) {
    for (auto& [id, object] : document.objects) {
        const std::string* name = Serialize::Json::classNameOf(object);
        if (!name)
            continue;
        const auto* row = std::find_if(std::begin(pathFields), std::end(pathFields),
                                       [&](const PathFields& fields) { return *name == fields.className; });
        if (row != std::end(pathFields))
            convertObject(object, *row, convert);
    }
}

} // namespace Archive::Internal
