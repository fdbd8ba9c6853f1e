#pragma once

// For this project's own use.

#include "Stored/V14/Transform.h"

#include <QTransform>

namespace Archive::Internal {

inline constexpr Stored::V14::Transform identityTransform = {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0};

/// The matrix as documents store it, element by element under QTransform's own names.
inline Stored::V14::Transform toStored(const QTransform& matrix) {
    return {matrix.m11(), matrix.m12(), matrix.m13(), matrix.m21(), matrix.m22(),
            matrix.m23(), matrix.m31(), matrix.m32(), matrix.m33()};
}

} // namespace Archive::Internal
