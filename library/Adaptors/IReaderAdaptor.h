#pragma once

#include "Adaptors/Backend.h"

#include <QDomDocument>
#include <QString>

#include <nlohmann/json_fwd.hpp>

#include <utility>

namespace Bundle {

/// A step that converts a document from one form to another.
class IReaderAdaptor {
public:
    virtual ~IReaderAdaptor() = default;

    /// The schema version of the converted document.
    virtual int actualVersion() const = 0;

    /// A name for logs and for users.
    virtual QString name() const = 0;

    /// Whether a document that is already JSON still needs this step.
    virtual bool needAdaptForActualVersion(const nlohmann::json& document) const = 0;

    /// Whether convert() converts from the one form to the other.
    virtual bool canConvert(Backend from, Backend to) const = 0;

    /// Converts a document. Gives the schema version of the result, and the result: a JSON object with the
    /// keys "data" and "version".
    virtual std::pair<int, nlohmann::json> convert(const QDomDocument& document) = 0;
};

} // namespace Bundle
