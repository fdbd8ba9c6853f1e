#pragma once

#include "Adaptors/JsonStep.h"

#include <QByteArray>
#include <QString>

#include <functional>

/// Runs before saving: moves the SVG texts of overlay items to side files of a bundle.
class OverlayFileContentWriteAdaptor : public Bundle::JsonStep {
public:
    /// `writeFile` writes a side file of that name and content and returns whether it succeeded. If it fails,
    /// the text stays in the document. It is called during adapt().
    explicit OverlayFileContentWriteAdaptor(
        const std::function<bool(const QString&, const QByteArray&)>& writeFile);

protected:
    void convert(Archive::Internal::FlatEditor& editor) override;

private:
    std::function<bool(const QString&, const QByteArray&)> m_writeFile;
};
