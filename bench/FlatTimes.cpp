#include "bench/FlatTimes.h"

#include "Reader/Document.h"
#include "Reader/Migration.h"
#include "bench/Generator.h"
#include "bench/Measure.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <utility>
#include <vector>

using nlohmann::json;

namespace Bench {
namespace {

QByteArray migrated(const QByteArray& text, int version) {
    Reader::MigrationOptions options;
    options.name = QStringLiteral("project");
    options.to = version;
    Reader::Document document = Reader::parse(text, options.name);
    Reader::Migration migration(std::move(document), std::move(options));
    migration.run();
    return migration.save();
}

} // namespace

FlatTimes measureFlat(int version, std::size_t elements, int runs) {
    const QByteArray text = migrated(generateProject(Reader::lastXmlVersion, {elements, 0, 0, 0}), version);
    std::vector<FlatTimes> measured;
    std::vector<double> ratios;
    FlatTimes times;
    times.version = version;
    times.bytesRead = static_cast<std::size_t>(text.size());
    for (int run = 0; run < runs; ++run) {
        QByteArray result;
        times.migration = millisecondsOf([&] { result = migrated(text, Reader::currentVersion); });
        times.bytesWritten = static_cast<std::size_t>(result.size());
        json document; // declared here so that freeing it is not measured
        times.parse = millisecondsOf([&] { document = json::parse(text.begin(), text.end()); });
        const json written = json::parse(result.begin(), result.end());
        std::string dumped;
        times.dump = millisecondsOf([&] { dumped = written.dump(); });
        measured.push_back(times);
        ratios.push_back(times.migration / times.floor());
    }
    return measured[placeOfMedian(ratios)];
}

} // namespace Bench
