#pragma once

#include "Commands.h"

#include <QString>

/// The files and folders that a command reads and writes, from its arguments.
namespace Places {

/// An argument of the command line as a path.
QString path(const std::string& text);

/// Whether that path is "-": standard input or output.
bool isStandardStream(const QString& file);

/// The name of an input in messages.
QString nameOf(const QString& file);

/// The project file: the argument itself, or the one project file in it if it is a folder. Throws
/// Messages::Failure.
QString inputFor(const Arguments& arguments);

/// The folder for side files: the one of that file; empty for a standard stream.
QString folderOf(const QString& file);

/// The path of the result: from the options, or the input itself, or a file next to it with the version in
/// its name.
QString outputFor(const Arguments& arguments, const QString& input);

/// Creates the folder of a bundle if it is missing, but not its parent. Throws Messages::Failure.
void makeBundle(const QString& folder);

/// Throws Reader::Error if the output exists and must not be replaced.
void refuseExisting(const Arguments& arguments, const QString& output);

/// The path of a project file, for resolving paths in it: `file`, or `otherwise` if that is a standard
/// stream. If both are, a name in the working folder.
QString projectLocation(const QString& file, const QString& otherwise);

} // namespace Places
