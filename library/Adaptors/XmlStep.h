#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Archive::Internal {
class ArchiveEditor;
}

namespace Bundle {

/// Base class of the steps on the XML archive. A step edits through a context that keeps an index of the archive, so
/// that not every step has to search all of it. It looks for objects in the whole document.
class XmlStep : public AbstractAdaptorXml {
public:
    /// Runs the step on a document by itself.
    void adapt(QDomDocument& document) override;

    /// Runs the step as one of several that share a context.
    void apply(Archive::Internal::ArchiveEditor& archive);

protected:
    /// Makes the change.
    virtual void convert(Archive::Internal::ArchiveEditor& archive) = 0;

private:
    virtual bool begin(Archive::Internal::ArchiveEditor& archive);
};

/// A step that needs exactly one `Archive` element, and logs an error where there is none or several. It looks for
/// objects below that element.
class ArchiveStep : public XmlStep {
private:
    bool begin(Archive::Internal::ArchiveEditor& archive) override;
};

/// A step that needs an `Archive` as the document element, and logs an error where there is none. Further `Archive`
/// elements do not matter, and objects are searched in the whole document.
class TopArchiveStep : public XmlStep {
private:
    bool begin(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Bundle
