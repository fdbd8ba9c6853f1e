#pragma once

#include <QByteArray>

namespace Batch {

/// What the beginning of a file shows.
enum class Content {
    Project,
    Unclear, ///< a project may begin like this
    Other,
    Empty,
};

/// `beginning` are the first bytes of a file.
Content contentOf(const QByteArray& beginning);

} // namespace Batch
