#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>

/// What the fuzz targets share.
namespace Fuzz {

/// Log lines of steps and Qt's warnings go nowhere, and the hash has a fixed seed.
void initialize(const char* name);

/// Ends the run, which keeps the text as a finding.
void check(bool holds, const char* what);

QByteArray bytesOf(const std::uint8_t* data, std::size_t size);

/// Takes a document to the newest version and saves it. What is refused is refused by Reader::Error and by nothing
/// else; what is saved can be read again and is saved again as the same bytes.
void migrate(const QByteArray& bytes);

/// The same bytes come out of a saved document that is read and saved once more.
void checkReadsAgain(const QByteArray& saved);

/// What the parser saw of an archive is what a search of it finds.
void checkFacts(const QByteArray& archive);

} // namespace Fuzz
