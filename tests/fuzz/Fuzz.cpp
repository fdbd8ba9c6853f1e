#include "Fuzz.h"

#include "Reader/Error.h"
#include "Reader/Migration.h"
#include "Reader/XmlText.h"
#include "Repairs/Opening.h"
#include "support/Facts.h"
#include "support/IndexedSteps.h"

#include <QHashFunctions>

#include <glog/logging.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <optional>

using Reader::Document;

namespace Fuzz {
namespace {

const QString name = QStringLiteral("fuzz");

void migrateAndCheck(Document document, bool repair) {
    Reader::MigrationOptions options;
    options.name = options.location = options.target = name;
    options.repair = repair;
    QByteArray saved;
    try {
        Reader::Migration migration(std::move(document), std::move(options));
        migration.run();
        saved = migration.save();
    } catch (const Reader::Error&) {
        return;
    }
    checkReadsAgain(saved);
}

} // namespace

void initialize(const char* program) {
    qSetGlobalQHashSeed(0);
    FLAGS_stderrthreshold = google::NUM_SEVERITIES;
    for (int severity = 0; severity < google::NUM_SEVERITIES; ++severity)
        google::SetLogDestination(severity, "");
    google::InitGoogleLogging(program);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
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

std::optional<Document> read(const QByteArray& bytes) {
    try {
        Document document = Reader::parse(bytes, name);
        if (!document.version())
            document.setVersion(0);
        return document;
    } catch (const Reader::Error&) {
        return std::nullopt;
    }
}

void checkFitForTerminal(const std::string& text) {
    check(QString::fromStdString(text).toStdString() == text, "a text is no UTF-8");
    for (const QChar character : QString::fromStdString(text)) {
        const bool isObeyed = character != QLatin1Char('\n') && character.category() == QChar::Other_Control;
        check(!isObeyed, "a text has a control character");
        // Overrides and isolates of the direction of text.
        check(character < QChar(0x202a) || character > QChar(0x202e), "a text changes its direction");
        check(character < QChar(0x2066) || character > QChar(0x2069), "a text changes its direction");
    }
}

void checkIsJson(const std::string& line) {
    check(line.ends_with('\n'), "a line does not end");
    check(std::all_of(line.begin(), line.end() - 1, [](char byte) { return byte >= ' ' && byte <= '~'; }),
          "JSON has other characters than those of ASCII");
    check(nlohmann::json::accept(line), "what was written is no JSON");
}

void checkFacts(const QByteArray& archive) {
    Archive::Internal::TreeFacts facts;
    const QDomDocument document = Reader::parseXml(archive, name, &facts);
    const std::string difference = Tests::difference(facts, document);
    check(difference.empty(), difference.c_str());
}

void migrate(const QByteArray& bytes) {
    std::optional<Document> document = read(bytes);
    if (!document)
        return;
    const std::string difference = Tests::indexDifferenceAfterSteps(*document);
    check(difference.empty(), difference.c_str());
    migrateAndCheck(std::move(*document), false);
}

void migrateWithRepairs(const QByteArray& bytes) {
    try {
        migrateAndCheck(Repairs::open(bytes, name).document, true);
    } catch (const Reader::Error&) {
        return; // nothing of a project
    }
}

void checkReadsAgain(const QByteArray& saved) {
    std::optional<Document> again = read(saved);
    check(again.has_value(), "what was saved is refused");
    check(Reader::serialize(std::move(*again)).bytes == saved, "what was saved is saved as something else");
}

} // namespace Fuzz
