#include "bench/Micro.h"

#include "Adaptors/Project/V28_ClipLabelAdaptor.h"
#include "Adaptors/Project/V29_ClipTimingModeAdaptor.h"
#include "Reader/AdaptorTable.h"
#include "Reader/Conversion.h"
#include "Reader/Document.h"
#include "Reader/Flatten.h"
#include "Reader/JsonText.h"
#include "Reader/Migration.h"
#include "Reader/XmlText.h"
#include "bench/Generator.h"
#include "bench/MigrationTimes.h"
#include "bench/StepInput.h"

#include <benchmark/benchmark.h>

#include <string>
#include <utility>
#include <vector>

using nlohmann::json;

namespace Bench {
namespace {

const QString name = QStringLiteral("project");

/// Keeps one text only: several texts of 50 MB should not be in memory at once.
const QByteArray& archiveText(int version, std::size_t megabytes) {
    static std::pair<int, std::size_t> kept;
    static QByteArray text;
    if (kept != std::pair(version, megabytes)) {
        text = generateProject(version, {0, megabytes * 1000000});
        kept = {version, megabytes};
    }
    return text;
}

std::size_t megabytesOf(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0));
}

void countBytes(benchmark::State& state, const QByteArray& text) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * text.size());
}

json converted(const QByteArray& text) {
    return Reader::Conversion().convert(Reader::parseXml(text, name)).second;
}

void load(benchmark::State& state) {
    const QByteArray& text = archiveText(27, megabytesOf(state));
    for (auto _ : state) {
        QDomDocument document = Reader::parseXml(text, name);
        state.PauseTiming();
        document.clear();
        state.ResumeTiming();
    }
    countBytes(state, text);
}

void saveXml(benchmark::State& state) {
    const QByteArray& text = archiveText(27, megabytesOf(state));
    const QDomDocument document = Reader::parseXml(text, name);
    for (auto _ : state)
        benchmark::DoNotOptimize(Reader::writeXml(document));
    countBytes(state, text);
}

template <class Adaptor, int version>
void step(benchmark::State& state) {
    const QByteArray& text = archiveText(version, megabytesOf(state));
    for (auto _ : state) {
        state.PauseTiming();
        QDomDocument document = Reader::parseXml(text, name);
        state.ResumeTiming();
        Adaptor().adapt(document);
        state.PauseTiming();
        document.clear();
        state.ResumeTiming();
    }
    countBytes(state, text);
}

void convert(benchmark::State& state) {
    const QByteArray& text = archiveText(Reader::lastXmlVersion, megabytesOf(state));
    const QDomDocument document = Reader::parseXml(text, name);
    for (auto _ : state) {
        json envelope = Reader::Conversion().convert(document).second;
        state.PauseTiming();
        envelope = json();
        state.ResumeTiming();
    }
    countBytes(state, text);
}

void flatten(benchmark::State& state) {
    const QByteArray& text = archiveText(Reader::lastXmlVersion, megabytesOf(state));
    for (auto _ : state) {
        state.PauseTiming();
        json root = std::move(converted(text)["data"]);
        Reader::FlattenNotes notes;
        Reader::FlatDocument document;
        state.ResumeTiming();
        document = Reader::flatten(std::move(root), notes);
        state.PauseTiming();
        document = {};
        state.ResumeTiming();
    }
    countBytes(state, text);
}

void nest(benchmark::State& state) {
    const QByteArray& text = archiveText(Reader::lastXmlVersion, megabytesOf(state));
    for (auto _ : state) {
        state.PauseTiming();
        Reader::FlattenNotes notes;
        Reader::FlatDocument document = Reader::flatten(std::move(converted(text)["data"]), notes);
        std::size_t leftOut = 0;
        json root;
        state.ResumeTiming();
        root = Reader::nest(std::move(document), leftOut);
        state.PauseTiming();
        root = json();
        state.ResumeTiming();
    }
    countBytes(state, text);
}

void writeJson(benchmark::State& state) {
    const QByteArray& text = archiveText(Reader::lastXmlVersion, megabytesOf(state));
    const json envelope = converted(text);
    for (auto _ : state)
        benchmark::DoNotOptimize(Reader::writeJson(envelope));
    countBytes(state, text);
}

void stepInMigration(benchmark::State& state, const Reader::AdaptorRow* step) {
    const QByteArray text = generateProject(oldestVersion, {static_cast<std::size_t>(state.range(0)), 0});
    const Reader::Document before = documentBefore(*step, text);
    for (auto _ : state) {
        state.PauseTiming();
        {
            Reader::Document document = before.clone();
            state.ResumeTiming();
            if (document.isXml())
                step->makeXml()->adapt(document.xml());
            else
                step->makeJson()->adapt(document.json().flat);
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
}

void wholeMigration(benchmark::State& state) {
    const QByteArray text = generateProject(oldestVersion, {static_cast<std::size_t>(state.range(0)), 0});
    for (auto _ : state) {
        Reader::MigrationOptions options;
        options.name = name;
        Reader::Migration migration(Reader::parse(text, name), std::move(options));
        migration.run();
        benchmark::DoNotOptimize(migration.save());
    }
    countBytes(state, text);
}

void addBenchmarks() {
    using Run = void (*)(benchmark::State&);
    const std::pair<const char*, Run> bySize[] = {
        {"load", load},
        {"saveXml", saveXml},
        {"V28_ClipLabelAdaptor", step<Project::V28_ClipLabelAdaptor, 27>},
        {"V29_ClipTimingModeAdaptor", step<Project::V29_ClipTimingModeAdaptor, 28>},
        {"conversion", convert},
        {"flatten", flatten},
        {"nest", nest},
        {"writeJson", writeJson},
    };
    for (const std::int64_t megabytes : {5, 50}) {
        for (const auto& [title, run] : bySize)
            benchmark::RegisterBenchmark(title, run)
                ->ArgName("MB")
                ->Arg(megabytes)
                ->Unit(benchmark::kMillisecond);
    }
    for (const std::int64_t elements : {10000, 100000}) {
        benchmark::RegisterBenchmark("migration", wholeMigration)
            ->ArgName("elements")
            ->Arg(elements)
            ->Unit(benchmark::kMillisecond);
        for (const Reader::AdaptorRow* row :
             Reader::stepsToRun(Bundle::Backend::Xml, oldestVersion, Reader::currentVersion))
            benchmark::RegisterBenchmark(("step/" + std::string(row->className)).c_str(), stepInMigration,
                                         row)
                ->ArgName("elements")
                ->Arg(elements)
                ->Unit(benchmark::kMillisecond);
    }
}

} // namespace

int runMicro(std::vector<std::string> arguments) {
    addBenchmarks();
    arguments.insert(arguments.begin(), "adaptors-bench");
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    int count = static_cast<int>(pointers.size());
    pointers.push_back(nullptr);
    benchmark::Initialize(&count, pointers.data());
    if (benchmark::ReportUnrecognizedArguments(count, pointers.data()))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

} // namespace Bench
