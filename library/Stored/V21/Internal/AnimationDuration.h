#pragma once

// For the model's own use.

#include <QXmlStreamReader>

#include <optional>

namespace Stored::V21::Internal {

/// What the Qt SVG module says of the SVG text that the reader's device holds: the milliseconds that its animations
/// last, or nothing where it gives no document. Its renderer gets to see the animations alone. They are all that
/// counts for the number, and the rest of a stranger's text could make it open files and unpack images, load style
/// sheets, compare each element with each style rule, or recurse with the depth of the text; text would have it look
/// for fonts, which it can't do in a process without a QGuiApplication.
std::optional<int> animationDuration(QXmlStreamReader& reader);

} // namespace Stored::V21::Internal
