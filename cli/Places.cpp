#include "Places.h"

#include "Messages.h"
#include "Reader/Error.h"
#include "Reader/Files.h"

#include <QDir>
#include <QFileInfo>

namespace Places {
namespace {

/// The project file in a folder: the only .xml or .json file in it.
QString projectIn(const QString& folder) {
    const QStringList names =
        QDir(folder).entryList({QStringLiteral("*.xml"), QStringLiteral("*.json")}, QDir::Files, QDir::Name);
    if (names.size() != 1)
        throw Messages::Failure(Messages::notOneProject(folder, names.size()));
    return QDir(folder).filePath(names.front());
}

} // namespace

QString path(const std::string& text) {
    return QString::fromLocal8Bit(text.c_str());
}

bool isStandardStream(const QString& file) {
    return file == Reader::standardStream;
}

QString nameOf(const QString& file) {
    return isStandardStream(file) ? QStringLiteral("standard input") : file;
}

QString inputFor(const Arguments& arguments) {
    const QString input = path(arguments.file);
    return QFileInfo(input).isDir() ? projectIn(input) : input;
}

QString folderOf(const QString& file) {
    return isStandardStream(file) ? QString() : QFileInfo(file).absolutePath();
}

QString outputFor(const Arguments& arguments, const QString& input) {
    if (arguments.inPlace)
        return input;
    if (!arguments.output.empty())
        return path(arguments.output);
    if (isStandardStream(input) && arguments.bundle.empty())
        return Reader::standardStream;
    const QFileInfo file(arguments.bundle.empty()
                             ? input
                             : QDir(path(arguments.bundle))
                                   .filePath(isStandardStream(input) ? QStringLiteral("project")
                                                                     : QFileInfo(input).fileName()));
    const char* suffix = arguments.to > Reader::lastXmlVersion ? "json" : "xml";
    const QString name =
        QStringLiteral("%1.v%2.%3").arg(file.completeBaseName()).arg(arguments.to).arg(suffix);
    return file.path() == QLatin1String(".") ? name : file.path() + QLatin1Char('/') + name;
}

void makeBundle(const QString& folder) {
    if (!QFileInfo(folder).isDir() && !QDir().mkdir(folder))
        throw Messages::Failure(Messages::folderNotMade(folder));
}

void refuseExisting(const Arguments& arguments, const QString& output) {
    const bool exists = QFileInfo::exists(output) || QFileInfo(output).isSymLink();
    if (!isStandardStream(output) && !arguments.inPlace && !arguments.force && exists)
        throw Reader::Error(Reader::ErrorKind::OutputExists, {.file = output});
}

QString projectLocation(const QString& file, const QString& otherwise) {
    if (!isStandardStream(file))
        return file;
    return isStandardStream(otherwise) ? QStringLiteral("project") : otherwise;
}

} // namespace Places
