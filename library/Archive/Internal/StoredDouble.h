#pragma once

// For this project's own use.

#include "Archive/Internal/Words.h"
#include "Archive/Xml.h"

namespace Archive::Internal {

/// The double in the `binaryData` of the first child `name`, whatever the child's type says; 0.0 where there is
/// none, and for an infinity.
inline double doubleIn(const QDomElement& parent, const QString& name) {
    return extractValue(parent.firstChildElement(name).attribute(Words::binaryData), 0.0);
}

} // namespace Archive::Internal
