#pragma once

// The identity matrix as documents store it, and the conversion of QTransform into the stored form.

#include "Stored/V14/Transform.h"

#include <QTransform>

namespace Archive::Internal {

inline constexpr Stored::V14::Transform identityTransform = {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0};

/// The matrix as documents store it. The elements have the same names in QTransform.
inline Stored::V14::Transform toStored(const QTransform& matrix) {
    return {matrix.m11(), matrix.m12(), matrix.m13(), matrix.m21(), matrix.m22(),
            matrix.m23(), matrix.m31(), matrix.m32(), matrix.m33()};
}

} // namespace Archive::Internal
