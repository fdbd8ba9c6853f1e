#include "Util/JsonMigrationAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Util/XmlToJsonAdaptor.h"

using Bundle::Backend;

namespace Util {

bool JsonMigrationAdaptor::needAdaptForActualVersion(const nlohmann::json&) const {
    return false; // a document that is already JSON never needs the conversion
}

bool JsonMigrationAdaptor::canConvert(Backend from, Backend to) const {
    return from == Backend::Xml && to == Backend::Json;
}

std::pair<int, nlohmann::json> JsonMigrationAdaptor::convert(const QDomDocument& document) {
    nlohmann::json result = XmlToJsonAdaptor().adapt(document);
    m_converted = true;
    return {m_version, std::move(result)};
}

std::pair<int, nlohmann::json> JsonMigrationAdaptor::convert(Archive::Internal::ArchiveEditor& archive,
                                                             std::set<unsigned long long>& sharedIds) {
    nlohmann::json result = XmlToJsonAdaptor().adapt(archive, sharedIds);
    m_converted = true;
    return {m_version, std::move(result)};
}

} // namespace Util
