#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

namespace Archive::Internal {
class FlatEditor;
}

namespace Bundle {

/// Base class of the steps on JSON. A step finds objects through a FlatEditor, which keeps an index of them, so that
/// not every step has to search the whole document.
class JsonStep : public AbstractAdaptorJson {
public:
    /// Runs the step alone on a document.
    void adapt(Serialize::Json::FlatObject& document) override;

    /// Runs the step as one of several that share an editor.
    void apply(Archive::Internal::FlatEditor& editor) { convert(editor); }

protected:
    /// Changes the document. Throws an exception for one that the step can't read; changes made before are kept.
    virtual void convert(Archive::Internal::FlatEditor& editor) = 0;
};

} // namespace Bundle
