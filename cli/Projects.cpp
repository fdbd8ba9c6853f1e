#include "Projects.h"

#include "Messages.h"

#include "Reader/Error.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <filesystem>
#include <system_error>

namespace Projects {
namespace {

const QStringList suffixes = {QStringLiteral(".xml"), QStringLiteral(".json")};

/// The name without its suffix; empty for one that no project has.
QString baseOf(const QString& name) {
    for (const QString& suffix : suffixes) {
        if (name.endsWith(suffix, Qt::CaseInsensitive) && !name.startsWith(QLatin1Char('.')))
            return name.chopped(suffix.size());
    }
    return {};
}

/// Names of the regular files in a folder, sorted. Qt's lists leave names out that are no UTF-8.
QStringList filesIn(const QString& folder) {
    QStringList names;
    std::error_code error;
    const std::filesystem::directory_iterator entries(QFile::encodeName(folder).toStdString(), error);
    if (error)
        throw Reader::Error(Reader::ErrorKind::Unreadable, {.file = folder, .reason = error.message()});
    for (const auto& entry : entries) {
        if (entry.is_regular_file(error))
            names += QFile::decodeName(entry.path().filename().c_str());
    }
    names.sort();
    return names;
}

} // namespace

QStringList projectsAmong(const QStringList& names) {
    static const QRegularExpression version(QStringLiteral("\\.v[0-9]+$"));
    QSet<QString> bases;
    for (const QString& name : names)
        bases.insert(baseOf(name));
    QStringList projects;
    for (const QString& name : names) {
        const QString base = baseOf(name);
        const int end = base.lastIndexOf(version);
        const bool isResult = end > 0 && bases.contains(base.left(end));
        if (!base.isEmpty() && !isResult)
            projects += name;
    }
    return projects;
}

QString soleProjectIn(const QString& folder) {
    const QStringList projects = projectsAmong(filesIn(folder));
    if (projects.size() != 1)
        throw Messages::Failure(Messages::notOneProject(folder, projects));
    return QDir(folder).filePath(projects.front());
}

} // namespace Projects
