#pragma once

#include "Reader/Document.h"

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

/// Functions that the fuzz targets share.
namespace Fuzz {

/// Discards log lines of steps and Qt's warnings, and sets a fixed seed for Qt's hash.
void initialize(const char* name);

/// Aborts the run unless the condition holds, so that the input is saved as a finding.
void check(bool holds, const char* what);

QByteArray bytesOf(const std::uint8_t* data, std::size_t size);

/// A document with a version, 0 where it names none. Nothing where the reader refuses it.
std::optional<Reader::Document> read(const QByteArray& bytes);

/// Fails where a text has a character that a terminal obeys, other than the end of a line.
void checkFitForTerminal(const std::string& text);

/// Fails unless a line is JSON in ASCII.
void checkIsJson(const std::string& line);

/// Migrates a document to the newest version and saves it. Fails if it throws anything but Reader::Error, or
/// if the saved document can't be read and saved again as the same bytes.
void migrate(const QByteArray& bytes);

/// The same with repairs: what can't be read is recovered.
void migrateWithRepairs(const QByteArray& bytes);

/// Fails unless a saved document that is read and saved again gives the same bytes.
void checkReadsAgain(const QByteArray& saved);

/// Fails unless the facts that the parser collects agree with a search of the archive.
void checkFacts(const QByteArray& archive);

} // namespace Fuzz
