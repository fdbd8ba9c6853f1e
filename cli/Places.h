#pragma once

#include "Commands.h"

#include <QString>

/// Where a command reads and writes, as the command line says it.
namespace Places {

/// A name of the command line.
QString path(const std::string& text);

/// Whether that path is "-": standard input or output.
bool isStandardStream(const QString& file);

/// An input's name for messages.
QString nameOf(const QString& file);

/// The project's file, for a folder that holds one project too. Throws Messages::Failure.
QString inputFor(const Arguments& arguments);

/// The folder that side files are looked up in and written to; empty for a standard stream.
QString folderOf(const QString& file);

/// Where the result goes: as the options say, in the input's place, or beside it under the version's name.
QString outputFor(const Arguments& arguments, const QString& input);

/// Makes the folder of a bundle where it is missing, but not the one above it. Throws Messages::Failure.
void makeBundle(const QString& folder);

/// Throws Reader::Error where the output is there already and is not to be replaced.
void refuseExisting(const Arguments& arguments, const QString& output);

/// Paths inside a project count from the folder of its file; from the working folder where there is no file.
QString projectLocation(const QString& file, const QString& otherwise);

} // namespace Places
