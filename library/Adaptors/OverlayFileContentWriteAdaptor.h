#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

#include <QByteArray>
#include <QString>

#include <functional>

/// Before saving: moves the SVG texts of overlay items out into side files of a bundle.
class OverlayFileContentWriteAdaptor : public Bundle::AbstractAdaptorJson {
public:
    /// `writeFile` writes the side file of that name and content and tells whether it could.
    explicit OverlayFileContentWriteAdaptor(
        const std::function<bool(const QString&, const QByteArray&)>& writeFile);

    void adapt(Serialize::Json::FlatObject& document) override;

private:
    std::function<bool(const QString&, const QByteArray&)> m_writeFile;
};
