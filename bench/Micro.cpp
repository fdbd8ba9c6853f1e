#include "bench/Micro.h"

#include "Adaptors/Project/V28_ClipLabelAdaptor.h"
#include "Adaptors/Project/V29_ClipTimingModeAdaptor.h"
#include "Reader/Chain.h"
#include "Reader/Conversion.h"
#include "Reader/Document.h"
#include "Reader/Flatten.h"
#include "Reader/JsonText.h"
#include "Reader/Road.h"
#include "Reader/XmlText.h"
#include "bench/Generator.h"
#include "bench/RoadTimes.h"

#include <benchmark/benchmark.h>

#include <utility>

using nlohmann::json;

namespace Bench {
namespace {

const QString name = QStringLiteral("project");

/// One text at a time: those of 50 MB are not to stand beside each other.
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

Reader::Journey journeyTo(int version) {
    Reader::Journey journey;
    journey.name = name;
    journey.to = version;
    return journey;
}

/// The document that a step meets on the road.
Reader::Document documentBefore(const Reader::Step& step, const QByteArray& text) {
    Reader::Document document = Reader::parse(text, name);
    Reader::migrate(document, journeyTo(step.hasXml() ? step.number - 1 : Reader::lastXmlVersion));
    if (!step.hasXml())
        document.content = Reader::openEnvelope(Reader::Conversion().convert(document.xml()).second, name);
    for (const Reader::Step* other : Reader::stepsFor(document.form(), *document.version, step.number)) {
        if (other == &step)
            break;
        if (document.isXml())
            other->makeXml()->adapt(document.xml());
        else if (other->hasJson())
            other->makeJson()->adapt(document.json().flat);
    }
    return document;
}

void stepOnTheRoad(benchmark::State& state, const Reader::Step* step) {
    const QByteArray text = generateProject(oldestVersion, {static_cast<std::size_t>(state.range(0)), 0});
    Reader::Document before = documentBefore(*step, text);
    for (auto _ : state) {
        state.PauseTiming();
        if (before.isXml()) {
            QDomDocument document = before.xml().cloneNode().toDocument();
            state.ResumeTiming();
            step->makeXml()->adapt(document);
            state.PauseTiming();
            document.clear();
            state.ResumeTiming();
        } else {
            Serialize::Json::FlatObject document = before.json().flat;
            state.ResumeTiming();
            step->makeJson()->adapt(document);
            state.PauseTiming();
            document = {};
            state.ResumeTiming();
        }
    }
}

void wholeRoad(benchmark::State& state) {
    const QByteArray text = generateProject(oldestVersion, {static_cast<std::size_t>(state.range(0)), 0});
    for (auto _ : state) {
        Reader::Document document = Reader::parse(text, name);
        Reader::Report report = Reader::migrate(document, journeyTo(Reader::currentVersion));
        benchmark::DoNotOptimize(
            Reader::save(std::move(document), journeyTo(Reader::currentVersion), report));
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
        benchmark::RegisterBenchmark("road", wholeRoad)
            ->ArgName("elements")
            ->Arg(elements)
            ->Unit(benchmark::kMillisecond);
        for (const Reader::Step& row : Reader::chain())
            benchmark::RegisterBenchmark(("step/" + std::string(row.className)).c_str(), stepOnTheRoad, &row)
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
