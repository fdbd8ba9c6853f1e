#pragma once

#include "Adaptors/AbstractAdaptorJson.h"
#include "Adaptors/PortableFolders.h"

#include <QString>

#include <optional>

namespace Project {

/// After loading: expands path markers and relative paths to absolute paths of this machine.
///
/// Threads: adaptors of different threads do not disturb each other, if they were made with folders of their own.
/// The settings belong to the process.
class PortableLoadAdaptor : public Bundle::AbstractAdaptorJson {
public:
    /// `location` is the project's own path; relative paths count from its folder. The editor's folders are those of
    /// the settings at each call of adapt().
    explicit PortableLoadAdaptor(const QString& location);
    /// The same with other folders than those of the settings.
    PortableLoadAdaptor(const QString& location, const Bundle::PortableFolders& folders);
    PortableLoadAdaptor(const PortableLoadAdaptor&) = default;
    PortableLoadAdaptor& operator=(const PortableLoadAdaptor&) = default;

    void adapt(Serialize::Json::FlatObject& document) override;

private:
    QString m_location;
    std::optional<Bundle::PortableFolders> m_folders; ///< none for those of the settings
};

} // namespace Project
