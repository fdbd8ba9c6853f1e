#pragma once

namespace Stored::V14 {

/// A 3 by 3 matrix by rows, as documents of version 14 and later store it.
struct Transform {
    double m11 = 0.0;
    double m12 = 0.0;
    double m13 = 0.0;
    double m21 = 0.0;
    double m22 = 0.0;
    double m23 = 0.0;
    double m31 = 0.0;
    double m32 = 0.0;
    double m33 = 0.0;
};

/// The names and members of the fields, in the order in which documents store them.
struct TransformField {
    const char* name;
    double Transform::*member;
};

inline constexpr TransformField transformFields[] = {
    {"m11", &Transform::m11}, {"m12", &Transform::m12}, {"m13", &Transform::m13},
    {"m21", &Transform::m21}, {"m22", &Transform::m22}, {"m23", &Transform::m23},
    {"m31", &Transform::m31}, {"m32", &Transform::m32}, {"m33", &Transform::m33},
};

} // namespace Stored::V14
