#pragma once

// Matrices as documents store them.

#include "Stored/V14/Transform.h"

#include <QtGlobal>

namespace Archive::Internal {

inline constexpr Stored::V14::Transform identityTransform = {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0};

/// A matrix that scales each axis and then moves, and its inverse. Quirk: computes bit for bit what QTransform
/// does, also where that rounds to a simpler matrix. QTransform itself is in Qt Gui, which is slow to load.
class ScaleAndMove {
public:
    constexpr ScaleAndMove(double scaleX, double scaleY, double moveX, double moveY)
        : m_scaleX(scaleX), m_scaleY(scaleY), m_moveX(moveX), m_moveY(moveY) {}

    Stored::V14::Transform matrix() const {
        // A matrix without a scale keeps -0.0; the product with a scale makes it 0.0.
        const double zero = isScaled() || !isMoved() ? 0.0 : -0.0;
        return of(m_scaleX, m_scaleY, zero + m_moveX, zero + m_moveY);
    }

    /// The identity if there is none.
    Stored::V14::Transform inverse() const {
        const bool isProduct = isScaled() && isMoved();
        const bool scales =
            isProduct ? !qFuzzyIsNull(m_scaleX - 1.0) || !qFuzzyIsNull(m_scaleY - 1.0) : isScaled();
        const bool moves = isProduct ? !qFuzzyIsNull(m_moveX) || !qFuzzyIsNull(m_moveY) : isMoved();
        const Stored::V14::Transform self = matrix();
        if (!scales)
            return moves ? of(1.0, 1.0, -self.m31, -self.m32) : identityTransform;
        if (qFuzzyIsNull(m_scaleX) || qFuzzyIsNull(m_scaleY))
            return identityTransform;
        const double scaleX = 1.0 / self.m11;
        const double scaleY = 1.0 / self.m22;
        return of(scaleX, scaleY, -self.m31 * scaleX, -self.m32 * scaleY);
    }

private:
    static Stored::V14::Transform of(double scaleX, double scaleY, double moveX, double moveY) {
        return {scaleX, 0.0, 0.0, 0.0, scaleY, 0.0, moveX, moveY, 1.0};
    }

    bool isScaled() const { return m_scaleX != 1.0 || m_scaleY != 1.0; }
    bool isMoved() const { return m_moveX != 0.0 || m_moveY != 0.0; }

    double m_scaleX;
    double m_scaleY;
    double m_moveX;
    double m_moveY;
};

} // namespace Archive::Internal
