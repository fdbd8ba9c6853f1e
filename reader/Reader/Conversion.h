#pragma once

#include "Reader/AdaptorTable.h"
#include "Util/JsonMigrationAdaptor.h"

namespace Reader {

/// The conversion to JSON. It runs after the last step on archives.
///
/// Threads: not thread-safe.
class Conversion : public Util::JsonMigrationAdaptor {
public:
    Conversion() : JsonMigrationAdaptor(lastXmlVersion) {}

    int actualVersion() const override { return lastXmlVersion; }
    QString name() const override { return QStringLiteral("XmlToJson"); }
};

} // namespace Reader
