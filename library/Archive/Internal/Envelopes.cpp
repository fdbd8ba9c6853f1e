#include "Archive/Internal/Envelopes.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/TransformedEffects.h"
#include "Archive/Internal/Transforms.h"

namespace Archive::Internal {

void appendTransformation(ArchiveEditor& archive, const QDomElement& parent, const QString& name,
                          const Stored::V14::Transform& matrix, const TransformationIds& ids, Aspect aspect) {
    const QDomElement object = archive.appendObject(parent, name, "Transformation::Object", ids.object);
    archive.fields(object).transform("matrix", matrix, ids.matrix).int32("opacity", 100);
    if (aspect == Aspect::Present)
        archive.fields(object).boolean("aspect", true);
}

QDomElement appendEnvelope(ArchiveEditor& archive, const QDomElement& parent, const QString& tag,
                           long long id, const TransformationIds& defaultValue, Aspect aspect) {
    const QDomElement envelope = archive.appendObject(parent, tag, "TransformationEnvelope", id);
    appendTransformation(archive, envelope, "defaultValue", identityTransform, defaultValue, aspect);
    return archive.fields(envelope).array("keyValues").last();
}

void declareTransformation(ArchiveEditor& archive, const TransformationIds& ids, long long parent) {
    archive.declareAs(ids.object, "Transformation::Object", parent, {ids.matrix});
    archive.declareAs(ids.matrix, transformClass, ids.object);
}

} // namespace Archive::Internal
