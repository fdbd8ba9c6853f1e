#pragma once

#include "Adaptors/JsonStep.h"
#include "Adaptors/XmlStep.h"

#include <QByteArray>
#include <QString>

#include <functional>

/// Runs after loading: replaces the names of side files in overlay items by the contents of these files.
class OverlayFileContentReadAdaptor : public Bundle::XmlStep, public Bundle::JsonStep {
public:
    /// `readFile` gives the content of the side file of that name. It is called during adapt().
    explicit OverlayFileContentReadAdaptor(const std::function<QByteArray(const QString&)>& readFile);

    using JsonStep::adapt;
    using XmlStep::adapt;

protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
    void convert(Archive::Internal::FlatEditor& editor) override;

private:
    std::function<QByteArray(const QString&)> m_readFile;
};
