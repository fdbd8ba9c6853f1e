#pragma once

#include "Reader/Document.h"
#include "Reader/MigrationReport.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace Repairs {

/// A project, and what was needed to open its file.
struct Opened {
    Reader::Document document;
    Reader::OpeningReport report;
};

/// Opens a project as Reader::parse() does, but also one whose text needs repairs, whose file is damaged, or whose
/// schema version is missing or wrong. A file that needs none of this gives the same document. Throws Reader::Error for a
/// file that has nothing of a project.
///
/// Threads: thread-safe.
Opened open(const QByteArray& bytes, const QString& name, std::optional<int> version = std::nullopt);

} // namespace Repairs
