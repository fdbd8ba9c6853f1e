#pragma once

// Replacing references to adjustable points by their coordinates.

#include <QByteArray>

#include <optional>
#include <vector>

namespace Stored::V21::Internal {

/// An adjustable point; its texts are in UTF-8.
struct Point {
    QByteArray id;
    QByteArray x;
    QByteArray y;
};

/// The text with "id.posX" and "id.posY" replaced by the values of the points. The result is as if the points
/// were replaced one after the other, X before Y, each in the whole text that the previous ones gave,
/// inserted values included. Nothing if points name each other so often that this would take too long or give
/// too long a text.
std::optional<QByteArray> withPointsFilledIn(const QByteArray& text, const std::vector<Point>& points);

} // namespace Stored::V21::Internal
