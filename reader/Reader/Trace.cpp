#include "Reader/Trace.h"

#include "Reader/AdaptorTable.h"
#include "Reader/Error.h"
#include "Reader/Files.h"
#include "Reader/LineDiff.h"
#include "Reader/Unfinished.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <optional>
#include <utility>

namespace Reader {
namespace {

QByteArray bytesOf(const Document& document, std::optional<int> version) {
    Document copy = document.clone(); // serialize() consumes its argument
    copy.setVersion(version);
    if (!version &&
        copy.isXml()) // so that diffs don't show the version that the document had in the beginning
        copy.xml().documentElement().removeAttribute(QStringLiteral("schemaVersion"));
    return serialize(std::move(copy)).bytes;
}

} // namespace

Trace::Trace(const QString& folder, const WriteOptions& options, Diffs diffs)
    : m_folder(folder), m_options(options), m_diffs(diffs) {
    m_options.onlyRegularFiles = true;
}

void Trace::note(const MigrationPart& part, const Document& document) {
    if (part.kind == MigrationPart::Kind::Comparison)
        return;
    QByteArray bytes = bytesOf(document, std::nullopt);
    const bool isChanged = bytes != m_last;
    const QByteArray before = std::exchange(m_last, std::move(bytes));
    const bool isConverted = std::exchange(m_form, document.form()) != document.form();
    if (m_entries.empty())
        m_version = document.version().value_or(0);
    if (part.kind == MigrationPart::Kind::Preparation)
        return;
    const bool isRepair = part.kind == MigrationPart::Kind::Repair;
    const AdaptorRow* row = isRepair ? nullptr : findAdaptor(part.name);
    m_version = row && row->isStep() ? row->number : m_version;
    Entry entry{static_cast<int>(m_entries.size()) + 1, part.name, {}, isRepair};
    if (isChanged)
        entry.file = write(entry, document);
    if (isChanged && !isConverted && m_diffs == Diffs::Unified)
        entry.diff = writeDiff(entry, before, document);
    m_entries.push_back(std::move(entry));
}

QString Trace::write(const Entry& entry, const Document& document) const {
    const QString name = QStringLiteral("%1-%2.%3")
                             .arg(entry.place, 2, 10, QLatin1Char('0'))
                             .arg(QString::fromStdString(entry.className), document.isXml() ? "xml" : "json");
    std::optional<Unfinished> newFolder;
    if (!QFileInfo(m_folder).isDir()) {
        const HeldSignals held;
        if (!QDir().mkpath(m_folder))
            throw Error(ErrorKind::Unwritable, {.file = m_folder, .reason = "the folder can't be made"});
        newFolder.emplace(QFile::encodeName(m_folder), Unfinished::Kind::Folder);
    }
    QString file = QDir(m_folder).filePath(name);
    writeFile(file, bytesOf(document, m_version), m_options);
    if (newFolder)
        newFolder->keep();
    return file;
}

/// The diff of a document that has been written.
QString Trace::writeDiff(const Entry& entry, const QByteArray& before, const Document& document) const {
    const auto linesOf = [&](const QByteArray& bytes) { return document.isXml() ? bytes : indented(bytes); };
    const std::string name = QFileInfo(entry.file).fileName().toStdString();
    QString file = entry.file + QStringLiteral(".diff");
    writeFile(file, unifiedDiff(linesOf(before), linesOf(m_last), "before/" + name, "after/" + name),
              m_options);
    return file;
}

} // namespace Reader
