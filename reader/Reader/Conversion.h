#pragma once

#include "Reader/Chain.h"
#include "Util/JsonMigrationAdaptor.h"

namespace Reader {

/// The conversion as it stands in the chain: behind the last step on archives.
class Conversion : public Util::JsonMigrationAdaptor {
public:
    Conversion() : JsonMigrationAdaptor(lastXmlVersion) {}

    int actualVersion() const override { return lastXmlVersion; }
    QString name() const override { return QStringLiteral("XmlToJson"); }
};

} // namespace Reader
