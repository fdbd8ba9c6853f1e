#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>

/// Functions that the fuzz targets share.
namespace Fuzz {

/// Discards log lines of steps and Qt's warnings, and sets a fixed seed for Qt's hash.
void initialize(const char* name);

/// Aborts the run unless the condition holds, so that the input is saved as a finding.
void check(bool holds, const char* what);

QByteArray bytesOf(const std::uint8_t* data, std::size_t size);

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
