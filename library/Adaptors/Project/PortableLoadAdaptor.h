#pragma once

#include "Adaptors/JsonStep.h"
#include "Adaptors/PortableFolders.h"

#include <QString>

#include <optional>

namespace Project {

/// Runs after loading: replaces path markers and relative paths by absolute paths of this machine.
///
/// Threads: adaptors that were created with folders of their own may run in different threads at once. The
/// settings belong to the process.
class PortableLoadAdaptor : public Bundle::JsonStep {
public:
    /// `location` is the path of the project file; relative paths are relative to its folder. The editor's
    /// folders are read from the settings at each call of adapt().
    explicit PortableLoadAdaptor(const QString& location);
    /// The same with these folders instead of those in the settings.
    PortableLoadAdaptor(const QString& location, const Bundle::PortableFolders& folders);
    PortableLoadAdaptor(const PortableLoadAdaptor&) = default;
    PortableLoadAdaptor& operator=(const PortableLoadAdaptor&) = default;

protected:
    void convert(Archive::Internal::FlatEditor& editor) override;

private:
    QString m_location;
    std::optional<Bundle::PortableFolders> m_folders; ///< without a value: those of the settings
};

} // namespace Project
