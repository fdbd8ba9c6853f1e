#pragma once

#include "Adaptors/IReaderAdaptor.h"

#include <QDomDocument>

#include <nlohmann/json.hpp>

#include <set>
#include <utility>

namespace Util {

/// The step from the XML archive to JSON. A document reader derives from it and gives it a name.
///
/// Threads: one object belongs to one thread at a time; conversions of different documents do not disturb each other.
class JsonMigrationAdaptor : public Bundle::IReaderAdaptor {
public:
    /// `version` is the schema version under which the converted document goes on; it is handed back as it is.
    explicit JsonMigrationAdaptor(int version) : m_version(version) {}

    bool needAdaptForActualVersion(const nlohmann::json& document) const override;
    bool canConvert(Bundle::Backend from, Bundle::Backend to) const override;
    std::pair<int, nlohmann::json> convert(const QDomDocument& document) override;

    /// As convert(), for a document that nobody needs any more; see XmlToJsonAdaptor::consume().
    std::pair<int, nlohmann::json> consume(QDomDocument document, std::set<unsigned long long>& idsTaken);

    /// Whether convert() or consume() has been called.
    bool converted() const { return m_converted; }

private:
    int m_version;
    bool m_converted = false;
};

} // namespace Util
