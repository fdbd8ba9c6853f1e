#pragma once

// For the model's own use.

#include <QByteArray>

#include <optional>
#include <vector>

namespace Stored::V21::Internal {

/// An adjustable point, as UTF-8.
struct Point {
    QByteArray id;
    QByteArray x;
    QByteArray y;
};

/// The text with the points' values in the place of "id.posX" and "id.posY": point after point, X before Y, each
/// wherever it occurs in what the ones before have left, values included. Nothing if they name one another so often
/// that this would take too long or make too long a text.
std::optional<QByteArray> withPointsFilledIn(const QByteArray& text, const std::vector<Point>& points);

} // namespace Stored::V21::Internal
