#pragma once

// The length of the animations in an SVG text, as Qt SVG computes it.

#include <QXmlStreamReader>

#include <optional>

namespace Stored::V21::Internal {

/// The length of the animations in milliseconds that Qt SVG gives for the text in the reader's device;
/// nothing if Qt SVG does not accept the text. Qt's renderer gets the animations only: nothing else changes
/// the number. The rest of a hostile text could make it open files, unpack images, load style sheets, compare
/// each element with each style rule, or recurse as deep as the text. Text elements would make it look for
/// fonts, which fails in a process without a QGuiApplication.
std::optional<int> animationDuration(QXmlStreamReader& reader);

} // namespace Stored::V21::Internal
