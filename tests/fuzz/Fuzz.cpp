#include "Fuzz.h"

#include "Reader/Error.h"
#include "Reader/Road.h"
#include "support/Facts.h"
#include "support/Outlines.h"

#include <QHashFunctions>

#include <glog/logging.h>

#include <cstdlib>
#include <iostream>
#include <optional>

using Reader::Document;
using Reader::Journey;

namespace Fuzz {
namespace {

const QString name = QStringLiteral("fuzz");

/// Nothing for a document that the reader refuses.
std::optional<Document> read(const QByteArray& bytes) {
    try {
        Document document = Reader::parse(bytes, name);
        if (!document.version)
            document.version = 0;
        return document;
    } catch (const Reader::Error&) {
        return std::nullopt;
    }
}

/// What the road knows of an archive between two steps is what a search finds.
void checkOutline(const std::string& step, const Document& document) {
    if (!document.isXml())
        return;
    if (auto* outline = Archive::Internal::Outline::of(document.xml()))
        check(Tests::difference(*outline, document.xml()).empty(), step.c_str());
}

} // namespace

void initialize(const char* program) {
    qSetGlobalQHashSeed(0);
    FLAGS_stderrthreshold = google::NUM_SEVERITIES;
    for (int severity = 0; severity < google::NUM_SEVERITIES; ++severity)
        google::SetLogDestination(severity, "");
    google::InitGoogleLogging(program);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    Reader::useStandInFolders();
}

void check(bool holds, const char* what) {
    if (holds)
        return;
    std::cerr << what << '\n';
    std::abort();
}

QByteArray bytesOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), static_cast<int>(size)};
}

void checkFacts(const Document& archive) {
    check(archive.facts.has_value(), "nothing was taken down");
    const std::string difference = Tests::difference(*archive.facts, archive.xml());
    check(difference.empty(), difference.c_str());
}

void travel(const QByteArray& bytes) {
    std::optional<Document> document = read(bytes);
    if (!document)
        return;
    Journey journey;
    journey.name = journey.location = journey.target = name;
    journey.watch = checkOutline;
    QByteArray saved;
    try {
        Reader::Report report = Reader::migrate(*document, journey);
        saved = Reader::save(std::move(*document), journey, report).bytes;
    } catch (const Reader::Error&) {
        return;
    }
    checkReadsAgain(saved);
}

void checkReadsAgain(const QByteArray& saved) {
    std::optional<Document> again = read(saved);
    check(again.has_value(), "what was saved is refused");
    check(Reader::serialize(std::move(*again)).bytes == saved, "what was saved is saved as something else");
}

} // namespace Fuzz
