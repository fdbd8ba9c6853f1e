#pragma once

#include "Reader/AdaptorTable.h"
#include "Util/JsonMigrationAdaptor.h"

namespace Reader {

/// The conversion that runs behind the last step on archives.
///
/// Threads: one object belongs to one thread at a time.
class Conversion : public Util::JsonMigrationAdaptor {
public:
    Conversion() : JsonMigrationAdaptor(lastXmlVersion) {}

    int actualVersion() const override { return lastXmlVersion; }
    QString name() const override { return QStringLiteral("XmlToJson"); }
};

} // namespace Reader
