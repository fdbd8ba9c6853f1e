#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

#include <QString>

namespace Project {

/// After loading: expands path markers and relative paths to absolute paths of this machine.
class PortableLoadAdaptor : public Bundle::AbstractAdaptorJson {
public:
    /// `location` is the project's own path; relative paths count from its folder.
    explicit PortableLoadAdaptor(const QString& location);
    PortableLoadAdaptor(const PortableLoadAdaptor&) = default;
    PortableLoadAdaptor& operator=(const PortableLoadAdaptor&) = default;

    void adapt(Serialize::Json::FlatObject& document) override;

private:
    QString m_location;
};

} // namespace Project
