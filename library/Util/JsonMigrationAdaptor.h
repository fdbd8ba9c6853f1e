#pragma once

#include "Adaptors/IReaderAdaptor.h"

#include <nlohmann/json.hpp>

#include <set>
#include <utility>

namespace Archive::Internal {
class ArchiveEditor;
}

namespace Util {

/// The step that converts the XML archive to JSON. The document reader derives from this class and implements
/// actualVersion() and name().
class JsonMigrationAdaptor : public Bundle::IReaderAdaptor {
public:
    /// `version` is the schema version of the converted document; convert() returns it unchanged.
    explicit JsonMigrationAdaptor(int version) : m_version(version) {}

    bool needAdaptForActualVersion(const nlohmann::json& document) const override;
    bool canConvert(Bundle::Backend from, Bundle::Backend to) const override;
    std::pair<int, nlohmann::json> convert(const QDomDocument& document) override;

    /// The same without ids that mean two objects; see XmlToJsonAdaptor::adapt().
    std::pair<int, nlohmann::json> convert(Archive::Internal::ArchiveEditor& archive,
                                           std::set<unsigned long long>& sharedIds);

    /// Whether convert() has been called.
    bool converted() const { return m_converted; }

private:
    int m_version;
    bool m_converted = false;
};

} // namespace Util
