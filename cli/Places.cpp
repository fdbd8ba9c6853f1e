#include "Places.h"

#include "Messages.h"
#include "Projects.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Places {
namespace {

/// The name in the folder, without the "./" of the working folder.
QString inFolder(const QString& folder, const QString& name) {
    return folder == QLatin1String(".") ? name : QDir(folder).filePath(name);
}

bool isFolder(const QString& path) {
    return path != Reader::standardStream && QFileInfo(path).isDir();
}

} // namespace

QString path(const std::string& text) {
    return QFile::decodeName(text.c_str());
}

QString nameOf(const QString& file, const char* standardName) {
    return file == Reader::standardStream ? QString::fromLatin1(standardName) : file;
}

QString inputFor(const Arguments& arguments) {
    const QString input = path(arguments.file);
    return isFolder(input) ? Projects::soleProjectIn(input) : input;
}

QString folderOf(const QString& file) {
    return Reader::isStream(file) ? QString() : QFileInfo(file).absolutePath();
}

QString resultEnding(int to) {
    const auto* const suffix = to > Reader::lastXmlVersion ? ".json" : ".xml";
    return QStringLiteral(".v") + QString::number(to) + QLatin1String(suffix);
}

QString resultName(const Arguments& arguments, const QString& input) {
    const QString base =
        Reader::isStream(input) ? QStringLiteral("project") : QFileInfo(input).completeBaseName();
    return base + resultEnding(arguments.to);
}

QString outputFor(const Arguments& arguments, const QString& input, const QString& ownName) {
    if (arguments.inPlace)
        return input;
    if (arguments.beforeWriting)
        return path(arguments.output);
    if (!arguments.bundle.empty())
        return inFolder(path(arguments.bundle), ownName);
    QString output = path(arguments.output);
    if (isFolder(output))
        return inFolder(output, ownName);
    if (!output.isEmpty())
        return output;
    return Reader::isStream(input) ? Reader::standardStream : inFolder(QFileInfo(input).path(), ownName);
}

Reader::WriteOptions optionsToWrite(const Arguments& arguments, const QString& input) {
    const bool isNamed =
        !arguments.output.empty() && !arguments.beforeWriting && !isFolder(path(arguments.output));
    return {arguments.force ? Reader::Existing::Replace : Reader::Existing::Refuse,
            Reader::permissionsOf(input), !isNamed};
}

void makeBundle(const QString& folder, Reader::UnfinishedParts& made) {
    if (QFileInfo(folder).isDir())
        return;
    const Reader::HeldSignals held;
    if (!QDir().mkdir(folder))
        throw Messages::Failure(Messages::folderNotMade(folder));
    made.add(QFile::encodeName(folder), Reader::Unfinished::Kind::Folder);
}

QString projectLocation(const QString& file, const QString& otherwise) {
    if (!Reader::isStream(file))
        return file;
    return Reader::isStream(otherwise) ? QStringLiteral("project") : otherwise;
}

} // namespace Places
