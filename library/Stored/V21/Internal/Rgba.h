#pragma once

// For the model's own use.

#include <QByteArray>

namespace Stored::V21::Internal {

/// Replaces rgba() by what Qt knows as a colour, in attributes that stand in double quotes. Works on the text: what it
/// steps over and where it stops shows in documents.
QByteArray withoutRgba(const QByteArray& text);

} // namespace Stored::V21::Internal
