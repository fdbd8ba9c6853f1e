#pragma once

#include <QDomDocument>

namespace Bundle {

/// One step on the XML archive.
class AbstractAdaptorXml {
public:
    virtual ~AbstractAdaptorXml() = default;

    /// Changes the document in place. Throws nothing; what can't be done is logged, and what was changed by
    /// then stays changed.
    virtual void adapt(QDomDocument& document) = 0;
};

} // namespace Bundle
