#pragma once

#include "Adaptors/AbstractAdaptorJson.h"
#include "Adaptors/AbstractAdaptorXml.h"

#include <QByteArray>
#include <QString>

#include <functional>

/// After loading: brings the texts of overlay items back from the side files of a bundle.
class OverlayFileContentReadAdaptor : public Bundle::AbstractAdaptorXml, public Bundle::AbstractAdaptorJson {
public:
    /// `readFile` gives the content of the side file of that name.
    explicit OverlayFileContentReadAdaptor(const std::function<QByteArray(const QString&)>& readFile);

    void adapt(QDomDocument& document) override;
    void adapt(Serialize::Json::FlatObject& document) override;

private:
    std::function<QByteArray(const QString&)> m_readFile;
};
