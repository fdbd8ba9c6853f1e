#pragma once

#include "Adaptors/AbstractAdaptorJson.h"
#include "Adaptors/PortableFolders.h"

#include <QString>

#include <optional>

namespace Project {

/// Before saving: makes paths portable, by a marker below one of the editor's roots and relative to the project
/// elsewhere.
///
/// Threads: adaptors of different threads do not disturb each other, if they were made with folders of their own.
/// The settings belong to the process.
class PortableSaveAdaptor : public Bundle::AbstractAdaptorJson {
public:
    /// `location` is the project's own path; relative paths count from its folder. The editor's folders are those of
    /// the settings at each call of adapt().
    explicit PortableSaveAdaptor(const QString& location);
    /// The same with other folders than those of the settings.
    PortableSaveAdaptor(const QString& location, const Bundle::PortableFolders& folders);
    PortableSaveAdaptor(const PortableSaveAdaptor&) = default;
    PortableSaveAdaptor& operator=(const PortableSaveAdaptor&) = default;

    void adapt(Serialize::Json::FlatObject& document) override;

private:
    QString m_location;
    std::optional<Bundle::PortableFolders> m_folders; ///< none for those of the settings
};

} // namespace Project
