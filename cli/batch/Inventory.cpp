#include "batch/Inventory.h"

#include "Messages.h"
#include "Places.h"
#include "Sha256.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <sys/stat.h>

#include <algorithm>
#include <array>

namespace Batch {
namespace {

/// Kinds of files that were passed over because of what they hold.
constexpr std::array<const char*, 2> kindsOfContent = {"no-project", "empty"};

/// Whether the file is as it was when it was done. In place, the result is the file.
bool isUnchanged(const Row& row, const Found& found) {
    const bool isInPlace = row.output.isEmpty() && row.outputSize.has_value();
    return isInPlace ? found.size == row.outputSize && found.time == row.outputTime
                     : found.size == row.size && found.time == row.time;
}

struct Output {
    bool exists = false;
    bool isOurs = false; ///< as the batch wrote it
};

Output outputOf(const Row& row, const QByteArray& results) {
    struct stat status = {};
    if (row.output.isEmpty() || lstat((results + '/' + row.output).constData(), &status) != 0)
        return {};
    return {true, row.outputSize == status.st_size && row.outputTime == timeOf(status)};
}

} // namespace

std::optional<Content> Inventory::known(const Found& found) const {
    const auto row = m_state.row(found.path);
    if (!row || !isUnchanged(*row, found))
        return std::nullopt;
    if (row->state != FileState::Skipped)
        return Content::Project;
    const bool isKnown = std::any_of(kindsOfContent.begin(), kindsOfContent.end(),
                                     [&](const char* kind) { return row->kind == kind; });
    if (!isKnown)
        return std::nullopt;
    return row->kind == "empty" ? Content::Empty : Content::Other;
}

/// Whether this batch has made the file.
bool Inventory::isOwn(const Found& found) const {
    const QByteArray folder = m_options.results + '/';
    if (!m_options.results.isEmpty() && found.path.startsWith(folder) &&
        !m_state.pathWithOutput(found.path.mid(folder.size())).isEmpty())
        return true;
    if (found.kind != "backup")
        return false;
    const auto original = m_state.row(found.path.left(found.path.lastIndexOf(".bak")));
    return original && original->backup == found.path;
}

void Inventory::take(const Found& found) {
    if (isOwn(found))
        return;
    if (!isOfShard(found.name)) {
        if (found.what == Found::What::Project)
            wish(found);
        return;
    }
    const auto earlier = m_state.row(found.path);
    if (found.what != Found::What::Project) {
        Row row;
        row.path = found.path;
        row.name = found.name;
        row.size = found.size;
        row.time = found.time;
        const bool isSkipped = found.what == Found::What::Skipped;
        row.state = isSkipped ? FileState::Skipped : FileState::Failed;
        if (!isSkipped)
            row.code = Messages::Unreadable;
        row.kind = found.kind;
        row.reason = found.reason;
        // What was done stays recorded; only this run leaves it out.
        if (!earlier || earlier->state == FileState::Skipped || earlier->state == FileState::Waiting ||
            earlier->state == FileState::Failed)
            m_state.put(row);
        return;
    }
    Row row;
    if (earlier && earlier->state != FileState::Skipped) {
        row = *earlier;
        if (!isToBeDone(row, found)) {
            m_kept += row.state == FileState::Done || row.state == FileState::Current;
            return;
        }
        const bool isReplaceable = row.isReplaceable;
        row = row.forgotten();
        row.isReplaceable = isReplaceable;
        if (m_options.choosesAnew) {
            row.output.clear();
            row.isReplaceable = false;
        }
    }
    row.path = found.path;
    row.name = found.name;
    row.isBundle = found.isBundle;
    row.size = found.size;
    row.time = found.time;
    row.state = FileState::Waiting;
    m_state.put(row);
    if (row.output.isEmpty())
        wish(found);
}

/// Also notes whether the output that exists may be replaced.
bool Inventory::isToBeDone(Row& row, const Found& found) const {
    const Output output = outputOf(row, m_options.results);
    row.isReplaceable = row.isReplaceable || output.isOurs;
    if (m_options.force)
        return true;
    switch (row.state) {
    case FileState::Done:
    case FileState::Current:
        return !isUnchanged(row, found) || (!row.output.isEmpty() && row.outputSize && !output.exists);
    case FileState::Failed:
        return m_options.retryFailed || !isUnchanged(row, found);
    default:
        return true;
    }
}

void Inventory::wish(const Found& found) {
    if (m_options.results.isEmpty())
        return;
    const QFileInfo name(QFile::decodeName(found.name));
    const QByteArray ending = QFile::encodeName(Places::resultEnding(m_options.to));
    const QByteArray folder = found.name.left(found.name.lastIndexOf('/') + 1);
    const QByteArray base = QFile::encodeName(name.completeBaseName());
    m_state.wish(found.path, base.isEmpty() ? found.name + ending : folder + base + ending,
                 found.name + ending);
}

/// A hash of the name, so that every machine makes the same parts.
bool Inventory::isOfShard(const QByteArray& name) const {
    if (m_options.shard.count == 1)
        return true;
    const QByteArray hash = sha256(name);
    const auto number = qFromBigEndian<quint64>(hash.constData());
    return number % static_cast<quint64>(m_options.shard.count) ==
           static_cast<quint64>(m_options.shard.number - 1);
}

} // namespace Batch
