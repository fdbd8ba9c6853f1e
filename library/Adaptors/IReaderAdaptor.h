#pragma once

#include "Adaptors/Backend.h"

#include <QDomDocument>
#include <QString>

#include <nlohmann/json_fwd.hpp>

#include <utility>

namespace Bundle {

/// The step that changes the document model.
class IReaderAdaptor {
public:
    virtual ~IReaderAdaptor() = default;

    /// The schema version under which the converted document goes on.
    virtual int actualVersion() const = 0;

    /// A name for logs and people.
    virtual QString name() const = 0;

    /// Whether a document that is already JSON still needs this step.
    virtual bool needAdaptForActualVersion(const nlohmann::json& document) const = 0;

    /// Whether convert() leads from one model to the other.
    virtual bool canConvert(Backend from, Backend to) const = 0;

    /// The schema version of the result and the result, an envelope with the keys "data" and "version".
    virtual std::pair<int, nlohmann::json> convert(const QDomDocument& document) = 0;
};

} // namespace Bundle
