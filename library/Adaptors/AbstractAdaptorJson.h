#pragma once

namespace Serialize::Json {
struct FlatObject;
}

namespace Bundle {

/// One step on the flat JSON document.
class AbstractAdaptorJson {
public:
    virtual ~AbstractAdaptorJson() = default;

    /// Changes the document in place. Throws an exception for a document that the step can't read; changes
    /// made before are kept.
    virtual void adapt(Serialize::Json::FlatObject& document) = 0;
};

} // namespace Bundle
