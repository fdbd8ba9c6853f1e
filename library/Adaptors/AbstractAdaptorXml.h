#pragma once

#include <QDomDocument>

namespace Bundle {

/// One step on the XML archive.
class AbstractAdaptorXml {
public:
    virtual ~AbstractAdaptorXml() = default;

    /// Changes the document in place. Throws nothing: problems are logged, and changes made before are kept.
    virtual void adapt(QDomDocument& document) = 0;
};

} // namespace Bundle
