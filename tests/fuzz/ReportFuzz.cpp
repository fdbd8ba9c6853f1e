// The page of any migration is well-formed, and nothing of a document becomes a part of its markup.

#include "Fuzz.h"
#include "Mutate.h"
#include "Reader/Error.h"
#include "Reader/Migration.h"
#include "Report/Verdict.h"
#include "report/Page.h"

#include <QDomDocument>
#include <QSet>

FUZZ_MUTATE_BY(Fuzz::mutateProject)

namespace {

/// Migrates a document as `adaptors report` does.
ReportPage::Facts factsOf(Reader::Document document, const QByteArray& bytes) {
    ReportPage::Facts facts;
    facts.name = bytes.left(300).toStdString();
    facts.resultName = bytes.right(300).toStdString();
    facts.input = ReportPage::File::of(bytes);
    facts.faultsOfInput = Reader::verify(document);
    facts.media = ReportPage::mediaOf(Reader::readTimelines(document), QString());
    ReportPage::Observer observer(document);
    Reader::MigrationOptions options;
    options.name = options.location = options.target = QStringLiteral("fuzz");
    options.reread = [&bytes] { return *Fuzz::read(bytes); };
    options.watch = [&](const Reader::MigrationPart& part, const Reader::Document& current) {
        observer.note(part, current);
    };
    Reader::Migration migration(std::move(document), std::move(options));
    try {
        migration.run();
        const QByteArray saved = migration.save();
        facts.result = ReportPage::File::of(saved);
        facts.faultsOfResult = Reader::verify(Reader::parse(saved, {}));
    } catch (const Reader::Error& error) {
        facts.failure = Messages::messageFor(error);
    }
    observer.moveTo(facts);
    facts.report = migration.report();
    facts.isWhole = !facts.failure && Reader::Report::isWhole(facts.report);
    return facts;
}

/// The page as XML, which it is but for its first line and its script.
QDomDocument parsed(QByteArray page) {
    page.replace("<!DOCTYPE html>\n", "");
    const int script = page.lastIndexOf("<script>");
    if (script >= 0)
        page.remove(script, page.lastIndexOf("</script>") + 9 - script);
    QDomDocument document;
    Fuzz::check(document.setContent(page), "a page is not well-formed");
    return document;
}

void checkMarkup(const QDomElement& element) {
    static const QSet<QString> refused = {"iframe", "object",        "embed", "form",
                                          "base",   "foreignObject", "image"};
    Fuzz::check(!refused.contains(element.tagName()), "a page has an element that no page may have");
    Fuzz::check(element.tagName() != QLatin1String("script") ||
                    element.attribute(QStringLiteral("type")) == QLatin1String("application/json"),
                "a page has a second script");
    const QDomNamedNodeMap attributes = element.attributes();
    for (int place = 0; place < attributes.length(); ++place) {
        const QDomAttr attribute = attributes.item(place).toAttr();
        Fuzz::check(!attribute.name().startsWith(QLatin1String("on")), "an attribute is a script");
        const bool isLink =
            attribute.name().endsWith(QLatin1String("href")) || attribute.name() == QLatin1String("src");
        Fuzz::check(!isLink || attribute.value().startsWith('#') ||
                        attribute.value() == QLatin1String("data:,"),
                    "a page needs another file");
    }
    for (QDomElement child = element.firstChildElement(); !child.isNull(); child = child.nextSiblingElement())
        checkMarkup(child);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::initialize("ReportFuzz");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes = Fuzz::bytesOf(data, size);
    std::optional<Reader::Document> document = Fuzz::read(bytes);
    if (!document)
        return 0;
    const std::string page = ReportPage::page(factsOf(std::move(*document), bytes));
    Fuzz::checkFitForTerminal(page);
    checkMarkup(parsed(QByteArray::fromStdString(page)).documentElement());
    return 0;
}
