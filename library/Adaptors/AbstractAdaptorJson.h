#pragma once

namespace Serialize::Json {
struct FlatObject;
}

namespace Bundle {

/// One step on the flat JSON document.
class AbstractAdaptorJson {
public:
    virtual ~AbstractAdaptorJson() = default;

    /// Changes the document in place. A document that the step can't read ends in an exception; what was
    /// changed by then stays changed.
    virtual void adapt(Serialize::Json::FlatObject& document) = 0;
};

} // namespace Bundle
