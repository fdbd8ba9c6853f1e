#pragma once

#include "Stored/V14/Transform.h"

#include <QDomElement>
#include <QString>

namespace Archive::Internal {

class ArchiveEditor;

/// The ids of a "Transformation::Object" and of the matrix in it.
struct TransformationIds {
    long long object;
    long long matrix;
};

/// Whether a transformation has the field `aspect`. Quirk: those of crop envelopes have it, those of overlays
/// don't.
enum class Aspect { Absent, Present };

/// Appends an opaque "Transformation::Object" to `parent`.
void appendTransformation(ArchiveEditor& archive, const QDomElement& parent, const QString& name,
                          const Stored::V14::Transform& matrix, const TransformationIds& ids, Aspect aspect);

/// Appends a "TransformationEnvelope", matrices over time, to `parent`. Its default value is the identity.
/// Returns its empty array `keyValues`.
QDomElement appendEnvelope(ArchiveEditor& archive, const QDomElement& parent, const QString& tag,
                           long long id, const TransformationIds& defaultValue, Aspect aspect);

/// Declares a "Transformation::Object" of that parent, then its matrix.
void declareTransformation(ArchiveEditor& archive, const TransformationIds& ids, long long parent);

} // namespace Archive::Internal
