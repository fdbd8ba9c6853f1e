#pragma once

#include "Adaptors/JsonStep.h"
#include "Adaptors/PortableFolders.h"

#include <QString>

#include <optional>

namespace Project {

/// Runs before saving: makes paths portable. A path below one of the editor's folders starts with its marker;
/// any other becomes relative to the project.
///
/// Threads: adaptors that were created with folders of their own may run in different threads at once. The
/// settings belong to the process.
class PortableSaveAdaptor : public Bundle::JsonStep {
public:
    /// `location` is the path of the project file; relative paths are relative to its folder. The editor's
    /// folders are read from the settings at each call of adapt().
    explicit PortableSaveAdaptor(const QString& location);
    /// The same with these folders instead of those in the settings.
    PortableSaveAdaptor(const QString& location, const Bundle::PortableFolders& folders);
    PortableSaveAdaptor(const PortableSaveAdaptor&) = default;
    PortableSaveAdaptor& operator=(const PortableSaveAdaptor&) = default;

protected:
    void convert(Archive::Internal::FlatEditor& editor) override;

private:
    QString m_location;
    std::optional<Bundle::PortableFolders> m_folders; ///< without a value: those of the settings
};

} // namespace Project
