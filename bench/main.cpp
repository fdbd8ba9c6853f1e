#include "Reader/AdaptorTable.h"
#include "bench/Figures.h"
#include "bench/Generator.h"
#include "bench/Measure.h"
#include "bench/Micro.h"
#include "bench/MigrationTimes.h"
#include "bench/Recovery.h"
#include "bench/Table.h"

#include <QFile>

#include <glog/logging.h>

#include <algorithm>
#include <charconv>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr const char* usage =
    R"(adaptors-bench                       migrations from version 3 to the newest at 10,000 and 100,000 elements
adaptors-bench --large               the same, and at 1,000,000 elements
adaptors-bench --elements N...       the same at these sizes
adaptors-bench --clips N EFFECTS     the same with a tenth of N clips and with N, each with its effects so many times
adaptors-bench --figures KIND N...   measures at these sizes and prints JSON; KIND is migration, flat or peers
adaptors-bench --once KIND FILE      milliseconds of one call and the bytes that it takes; KIND is load or migration
adaptors-bench --write N VERSION     writes such a project to standard output
adaptors-bench --recovery PLACES     recovers projects with so many cuts, and so many lost blocks, of each version
adaptors-bench --micro [ARGUMENTS]   single operations, with the arguments of Google Benchmark
)";

int refuse() {
    std::cerr << usage;
    return 2;
}

template <class Number>
bool readNumber(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && number > 0;
}

int runsFor(std::size_t elements) {
    return elements <= 20000 ? 15 : elements <= 200000 ? 7 : 3;
}

int printTable(const std::vector<Bench::Size>& sizes) {
    constexpr std::size_t elementsPerClip = 100;
    std::vector<Bench::MigrationTimes> projects;
    for (const Bench::Size& size : sizes) {
        std::cerr << "measuring " << size.elements + size.clips
                  << (size.clips > 0 ? " clips\n" : " elements\n");
        projects.push_back(
            Bench::measureMigration(size, runsFor(size.elements + size.clips * elementsPerClip)));
    }
    Bench::printTable(std::cout, projects);
    return 0;
}

int printSizes(const std::vector<std::string>& arguments) {
    std::vector<Bench::Size> sizes;
    for (const std::string& argument : arguments) {
        Bench::Size size;
        if (!readNumber(argument, size.elements))
            return refuse();
        sizes.push_back(size);
    }
    return sizes.empty() ? refuse() : printTable(sizes);
}

int printClips(const std::vector<std::string>& arguments) {
    Bench::Size many;
    if (arguments.size() != 2 || !readNumber(arguments[0], many.clips) ||
        !readNumber(arguments[1], many.effectsPerClip))
        return refuse();
    Bench::Size few = many;
    few.clips = std::max<std::size_t>(1, many.clips / 10);
    return printTable({few, many});
}

nlohmann::json figuresOf(const std::string& kind, std::size_t elements) {
    const int runs = runsFor(elements);
    if (kind == "migration")
        return Bench::figuresOf(Bench::measureMigration({elements, 0, 0, 0}, runs));
    constexpr int runsOfPeers = 3; // live lists take minutes
    if (kind == "peers")
        return Bench::figuresOf(Bench::measurePeers(elements, runsOfPeers));
    nlohmann::json versions = nlohmann::json::array();
    for (int version = Reader::lastXmlVersion + 1; version < Reader::currentVersion; ++version)
        versions.push_back(Bench::figuresOf(Bench::measureFlat(version, elements, runs)));
    return {{"elements", elements}, {"versions", versions}};
}

int printFigures(const std::vector<std::string>& arguments) {
    if (arguments.size() < 2 ||
        (arguments[0] != "migration" && arguments[0] != "flat" && arguments[0] != "peers"))
        return refuse();
    nlohmann::json all = nlohmann::json::array();
    for (std::size_t place = 1; place < arguments.size(); ++place) {
        std::size_t elements = 0;
        if (!readNumber(arguments[place], elements))
            return refuse();
        std::cerr << "measuring " << arguments[0] << " with " << elements << " elements\n";
        all.push_back(figuresOf(arguments[0], elements));
    }
    std::cout << all.dump(1) << '\n';
    return std::cout.good() ? 0 : 1;
}

int measureOnce(const std::vector<std::string>& arguments) {
    if (arguments.size() != 2 || (arguments[0] != "load" && arguments[0] != "migration"))
        return refuse();
    QFile file(QString::fromStdString(arguments[1]));
    if (!file.open(QIODevice::ReadOnly)) {
        std::cerr << "can't read " << arguments[1] << '\n';
        return 1;
    }
    const QByteArray text = file.readAll();
    const std::size_t before = Bench::memoryNow();
    std::cout << (arguments[0] == "load" ? Bench::timeOfLoading(text) : Bench::timeOfMigration(text)) << ' ';
    std::cout << Bench::greatestMemory() - before << '\n';
    return std::cout.good() ? 0 : 1;
}

int writeProject(const std::vector<std::string>& arguments) {
    std::size_t elements = 0;
    int version = 0;
    if (arguments.size() != 2 || !readNumber(arguments[0], elements) || !readNumber(arguments[1], version))
        return refuse();
    const QByteArray text = Bench::generateProject(version, {elements, 0, 0, 0});
    std::cout.write(text.constData(), text.size());
    return std::cout.good() ? 0 : 1;
}

int measureRecovery(const std::vector<std::string>& arguments) {
    int places = 0;
    if (arguments.size() != 1 || !readNumber(arguments[0], places))
        return refuse();
    Bench::printRecoveryHeader(std::cout);
    std::size_t problems = 0;
    for (const int version : Bench::recoveryVersions)
        problems += Bench::measureRecovery(std::cout, version, places);
    return problems == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char* argv[]) {
    google::InitGoogleLogging(argv[0]);
    FLAGS_logtostderr = false;
    FLAGS_stderrthreshold = google::GLOG_FATAL;
    for (int severity = google::GLOG_INFO; severity <= google::GLOG_FATAL; ++severity)
        google::SetLogDestination(severity, ""); // no files

    std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.empty())
        return printTable({{10000, 0, 0, 0}, {100000, 0, 0, 0}});
    const std::string mode = arguments.front();
    arguments.erase(arguments.begin());
    if (mode == "--large" && arguments.empty())
        return printTable({{10000, 0, 0, 0}, {100000, 0, 0, 0}, {1000000, 0, 0, 0}});
    if (mode == "--elements")
        return printSizes(arguments);
    if (mode == "--clips")
        return printClips(arguments);
    if (mode == "--figures")
        return printFigures(arguments);
    if (mode == "--once")
        return measureOnce(arguments);
    if (mode == "--write")
        return writeProject(arguments);
    if (mode == "--recovery")
        return measureRecovery(arguments);
    if (mode == "--micro")
        return Bench::runMicro(std::move(arguments));
    return refuse();
}
