#pragma once

#include "Commands.h"
#include "Reader/Files.h"
#include "Reader/Unfinished.h"

#include <QString>

/// Where a command reads and writes, as the command line says it.
namespace Places {

/// A name of the command line.
QString path(const std::string& text);

/// A name for messages; "-" is `standardName`.
QString nameOf(const QString& file, const char* standardName = "standard input");

/// The project's file, for a folder that holds one project too: results, backups and the like beside it don't count.
/// Throws Messages::Failure.
QString inputFor(const Arguments& arguments);

/// The folder that side files are looked up in and written to; empty for a standard stream, a pipe or a device.
QString folderOf(const QString& file);

/// Where the result goes: as the options say, into the folder that they name, in the input's place, or beside it.
/// `ownName` is the result's name in a folder.
QString outputFor(const Arguments& arguments, const QString& input, const QString& ownName);

/// What the name of a migration's result to that schema version ends with: ".v77.json".
QString resultEnding(int to);

/// The name of a migration's result, such as "film.v77.json".
QString resultName(const Arguments& arguments, const QString& input);

/// How the result is written. A name that the command line doesn't write out must be free or a regular file's.
Reader::WriteOptions optionsToWrite(const Arguments& arguments, const QString& input);

/// Makes the folder of a bundle where it is missing, but not the one above it, and adds it to `made`. Throws
/// Messages::Failure.
void makeBundle(const QString& folder, Reader::UnfinishedParts& made);

/// Paths inside a project count from the folder of its file; from the working folder where there is no file.
QString projectLocation(const QString& file, const QString& otherwise);

} // namespace Places
