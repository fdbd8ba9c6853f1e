#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

#include <QByteArray>
#include <QString>

#include <functional>

/// Runs before saving: moves the SVG texts of overlay items to side files of a bundle.
class OverlayFileContentWriteAdaptor : public Bundle::AbstractAdaptorJson {
public:
    /// `writeFile` writes a side file of that name and content and returns whether it succeeded. If it fails,
    /// the text stays in the document. It is called during adapt().
    explicit OverlayFileContentWriteAdaptor(
        const std::function<bool(const QString&, const QByteArray&)>& writeFile);

    void adapt(Serialize::Json::FlatObject& document) override;

private:
    std::function<bool(const QString&, const QByteArray&)> m_writeFile;
};
