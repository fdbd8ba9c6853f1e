#pragma once

// Resolving animations that start relative to other animations.

#include <QDomElement>

#include <vector>

namespace Stored::V21::Internal {

/// Replaces each `begin` that names another animation ("a.end-500ms") by its time ("2500ms"). Returns whether
/// there was any.
bool resolveConditionalTiming(const std::vector<QDomElement>& animations);

} // namespace Stored::V21::Internal
