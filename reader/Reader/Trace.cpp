#include "Reader/Trace.h"

#include "Reader/Chain.h"
#include "Reader/Error.h"
#include "Reader/Files.h"
#include "Reader/JsonText.h"

#include <QDir>

#include <optional>

using nlohmann::json;

namespace Reader {
namespace {

/// A value's own copy constructor takes stack for each level of depth; its text does not.
json copyOf(const json& value) {
    return parseJson(writeJson(value), QString());
}

/// The road goes on with the document, and serialising uses one up.
Document copyOf(const Document& document) {
    Document copy;
    if (document.isXml()) {
        copy.content = document.xml().cloneNode().toDocument();
        return copy;
    }
    JsonDocument project;
    project.root = document.json().root;
    project.envelope = document.json().envelope;
    for (const auto& [id, object] : document.json().flat.objects)
        project.flat.objects.emplace_hint(project.flat.objects.end(), id, copyOf(object));
    copy.content = std::move(project);
    return copy;
}

QByteArray bytesOf(const Document& document, std::optional<int> version) {
    Document copy = copyOf(document);
    copy.version = version;
    return serialize(std::move(copy)).bytes;
}

} // namespace

void Trace::note(const std::string& className, const Document& document) {
    QByteArray bytes = bytesOf(document, std::nullopt);
    const bool isStart = className.empty();
    const bool isChanged = bytes != m_last;
    m_last = std::move(bytes);
    if (isStart) {
        m_version = document.version.value_or(0);
        return;
    }
    const Step* step = findStep(className);
    m_version = step ? step->number : m_version;
    Entry entry{static_cast<int>(m_entries.size()) + 1, className, {}};
    if (isChanged)
        entry.file = write(entry, document);
    m_entries.push_back(std::move(entry));
}

QString Trace::write(const Entry& entry, const Document& document) const {
    const QString name = QStringLiteral("%1-%2.%3")
                             .arg(entry.place, 2, 10, QLatin1Char('0'))
                             .arg(QString::fromStdString(entry.className), document.isXml() ? "xml" : "json");
    if (!QDir().mkpath(m_folder))
        throw Error(Problem::Unwritable,
                    m_folder.toStdString() + ": the folder can't be made; name another one");
    QString file = QDir(m_folder).filePath(name);
    writeFile(file, bytesOf(document, m_version), m_existing);
    return file;
}

} // namespace Reader
