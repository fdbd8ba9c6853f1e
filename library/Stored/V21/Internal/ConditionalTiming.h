#pragma once

// For the model's own use.

#include <QDomElement>

#include <vector>

namespace Stored::V21::Internal {

/// Gives animations whose `begin` names another one ("a.end-500ms") the time that this means ("2500ms"). True if
/// there was any such animation.
bool resolveConditionalTiming(const std::vector<QDomElement>& animations);

} // namespace Stored::V21::Internal
