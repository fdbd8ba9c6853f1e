#include "bench/StepInput.h"

#include "Reader/Migration.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace Bench {
namespace {

Reader::MigrationOptions
watching(std::function<void(const Reader::MigrationPart&, const Reader::Document&)> watch) {
    Reader::MigrationOptions options;
    options.name = QStringLiteral("project");
    options.watch = std::move(watch);
    return options;
}

void migrate(const QByteArray& text, Reader::MigrationOptions options) {
    Reader::Document document = Reader::parse(text, options.name);
    Reader::Migration(std::move(document), std::move(options)).run();
}

} // namespace

Reader::Document documentBefore(const Reader::AdaptorRow& step, const QByteArray& text) {
    std::vector<std::string> parts;
    migrate(text, watching([&](const Reader::MigrationPart& part, const Reader::Document&) {
                parts.push_back(part.name);
            }));
    const auto place = std::find(parts.begin(), parts.end(), step.className) - parts.begin();

    std::optional<Reader::Document> before;
    migrate(text,
            watching([&, count = 0](const Reader::MigrationPart&, const Reader::Document& document) mutable {
                if (++count == place)
                    before = document.clone();
            }));
    return std::move(before).value();
}

} // namespace Bench
