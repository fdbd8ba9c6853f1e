#pragma once

// Replacing rgba() colours in SVG text.

#include <QByteArray>

namespace Stored::V21::Internal {

/// Replaces rgba() by a colour that Qt can read, in attributes with double quotes. Works on the text, without
/// parsing it. Quirk: it skips some and stops early at others, and documents depend on that.
QByteArray withoutRgba(const QByteArray& text);

} // namespace Stored::V21::Internal
