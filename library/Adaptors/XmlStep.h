#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Archive::Internal {
class ArchiveEditor;
}

namespace Bundle {

/// Base class of the steps on the XML archive. A step reads and changes the archive through an ArchiveEditor,
/// which keeps an index of it, so that not every step has to search all of it. The step searches for objects
/// in the whole document.
class XmlStep : public AbstractAdaptorXml {
public:
    /// Runs the step alone on a document.
    void adapt(QDomDocument& document) override;

    /// Runs the step as one of several that share an editor.
    void apply(Archive::Internal::ArchiveEditor& archive);

protected:
    /// Changes the archive.
    virtual void convert(Archive::Internal::ArchiveEditor& archive) = 0;

private:
    virtual bool begin(Archive::Internal::ArchiveEditor& archive);
};

/// A step that needs exactly one `Archive` element. If there is none or several, it logs an error and changes
/// nothing. It searches for objects below that element.
class ArchiveStep : public XmlStep {
private:
    bool begin(Archive::Internal::ArchiveEditor& archive) override;
};

/// A step that needs an `Archive` as the document element. If there is none, it logs an error and changes
/// nothing. There may be further `Archive` elements. It searches for objects in the whole document.
class TopArchiveStep : public XmlStep {
private:
    bool begin(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Bundle
