#include "bench/MigrationTimes.h"

#include "Reader/JsonText.h"
#include "Reader/Migration.h"
#include "Reader/XmlText.h"
#include "bench/Measure.h"

#include <algorithm>
#include <memory>
#include <string_view>

namespace Bench {
namespace {

const QString name = QStringLiteral("project");

struct Counts {
    long long elements = 0;
    long long attributes = 0;
};

Counts countNodes(const QDomDocument& document) {
    Counts counts;
    QDomElement e = document.documentElement();
    while (!e.isNull()) {
        ++counts.elements;
        counts.attributes += e.attributes().count();
        QDomElement next = e.firstChildElement();
        for (; next.isNull() && !e.isNull(); e = e.parentNode().toElement())
            next = e.nextSiblingElement();
        e = next;
    }
    return counts;
}

/// The nodes that the archive has more before its conversion than as it was read.
Counts countAdded(const QByteArray& text) {
    Counts first;
    Counts last;
    Reader::MigrationOptions options;
    options.name = name;
    options.to = Reader::lastXmlVersion;
    const std::string_view lastStep =
        Reader::stepsFor(Bundle::Backend::Xml, oldestVersion, options.to).back()->className;
    options.watch = [&](const Reader::MigrationPart& part, const Reader::Document& document) {
        if (part.kind == Reader::MigrationPart::Kind::Preparation)
            first = countNodes(document.xml());
        if (part.name == lastStep)
            last = countNodes(document.xml());
    };
    Reader::Document document = Reader::parse(text, name);
    Reader::Migration(std::move(document), std::move(options)).run();
    return {std::max(0LL, last.elements - first.elements), std::max(0LL, last.attributes - first.attributes)};
}

/// Creates so many elements below a new one, with the attributes spread evenly.
QDomDocument createNodes(const Counts& counts) {
    const QString names[] = {"type", "value", "objectId", "index"};
    QDomDocument document;
    QDomElement parent = document.createElement("parent");
    document.appendChild(parent);
    long long attributes = 0;
    for (long long number = 1; number <= counts.elements; ++number) {
        QDomElement e = document.createElement("field");
        for (int place = 0; place < 4 && attributes * counts.elements < number * counts.attributes;
             ++place, ++attributes)
            e.setAttribute(names[place], "int32_t");
        parent.appendChild(e);
    }
    return document;
}

/// Runs one migration and measures each part that MigrationOptions::watch reports.
class Run {
public:
    std::vector<Part> steps;
    std::vector<Part> others;
    double migration = 0;
    double freeing = 0;
    std::size_t logLines = 0;
    QByteArray result;

    explicit Run(const QByteArray& text) {
        const double start = m_last = processorTime();
        Reader::MigrationOptions options;
        options.name = name;
        options.watch = [this](const Reader::MigrationPart& part, const Reader::Document&) { add(part); };
        Reader::Document document = Reader::parse(text, name);
        add("parse");
        auto pipeline = std::make_unique<Reader::Migration>(std::move(document), std::move(options));
        pipeline->run();
        result = pipeline->save();
        add("write");
        migration = processorTime() - start;
        logLines = pipeline->report().log.size();
        freeing = millisecondsOf([&] { pipeline.reset(); });
    }

    /// 0 if there is no such part.
    double timeOf(const std::string& part) const {
        const auto found =
            std::find_if(others.begin(), others.end(), [&](const Part& other) { return other.name == part; });
        return found == others.end() ? 0 : found->milliseconds;
    }

private:
    void add(const Reader::MigrationPart& part) {
        using Kind = Reader::MigrationPart::Kind;
        const Reader::AdaptorRow* row = Reader::findAdaptor(part.name);
        if (row && row->isStep())
            add(part.name, steps);
        else if (part.kind == Kind::Adaptor)
            add(part.name);
        else
            add(part.kind == Kind::Preparation ? "count, list and sort the archive" : "compare the result");
    }
    void add(const std::string& part) { add(part, others); }
    void add(const std::string& part, std::vector<Part>& parts) {
        const double now = processorTime();
        parts.push_back({part, now - m_last});
        m_last = now;
    }

    double m_last;
};

std::vector<Part> medians(const std::vector<Run>& runs, std::vector<Part> Run::*parts) {
    std::vector<Part> result = runs.front().*parts;
    for (std::size_t place = 0; place < result.size(); ++place) {
        std::vector<double> numbers;
        for (const Run& run : runs)
            numbers.push_back((run.*parts)[place].milliseconds);
        result[place].milliseconds = median(numbers);
    }
    return result;
}

} // namespace

MigrationTimes measureMigration(const Size& size, int runs) {
    MigrationTimes times;
    const auto generate = [&] { return generateProject(oldestVersion, size); };
    // Memory is measured first: a child process can reuse free memory of this process, which would not be
    // counted.
    times.loadMemory = peakMemory(generate, [](const QByteArray& text) { Reader::parseXml(text, name); });
    times.migrationMemory = peakMemory(generate, [](const QByteArray& text) { Run run(text); });

    const QByteArray text = generate();
    times.elements = countElements(text);
    times.bytesRead = static_cast<std::size_t>(text.size());
    std::vector<Run> all;
    std::vector<MigrationTimes> measured;
    std::vector<double> ratios;
    const Counts added = countAdded(text);
    for (int number = 0; number < runs; ++number) {
        Run& run = all.emplace_back(text);
        times.migration = run.migration;
        times.freeMigrated = run.freeing;
        times.convert = run.timeOf("XmlToJson");
        times.bytesWritten = static_cast<std::size_t>(run.result.size());
        times.logLines = run.logLines;
        {
            const nlohmann::json result = Reader::parseJson(run.result, name);
            run.result.clear();
            times.write = millisecondsOf([&] { Reader::writeJson(result); });
        }
        QDomDocument created; // declared here so that freeing it is not measured
        times.create = millisecondsOf([&] { created = createNodes(added); });
        QDomDocument document;
        times.load = millisecondsOf([&] { document = Reader::parseXml(text, name); });
        times.freeLoaded = millisecondsOf([&] { document = QDomDocument(); });
        measured.push_back(times);
        ratios.push_back(times.migration / times.floor());
    }
    times = measured[placeOfMedian(ratios)];
    times.steps = medians(all, &Run::steps);
    times.others = medians(all, &Run::others);
    return times;
}

double timeOfLoading(const QByteArray& text) {
    QDomDocument document; // declared here so that freeing it is not measured
    return millisecondsOf([&] { document = Reader::parseXml(text, name); });
}

double timeOfMigration(const QByteArray& text) {
    return Run(text).migration;
}

} // namespace Bench
