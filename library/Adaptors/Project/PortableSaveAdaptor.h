#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

#include <QString>

namespace Project {

/// Before saving: makes paths portable, by a marker below one of the editor's roots and relative to the project
/// elsewhere.
class PortableSaveAdaptor : public Bundle::AbstractAdaptorJson {
public:
    /// `location` is the project's own path; relative paths count from its folder.
    explicit PortableSaveAdaptor(const QString& location);
    PortableSaveAdaptor(const PortableSaveAdaptor&) = default;
    PortableSaveAdaptor& operator=(const PortableSaveAdaptor&) = default;

    void adapt(Serialize::Json::FlatObject& document) override;

private:
    QString m_location;
};

} // namespace Project
