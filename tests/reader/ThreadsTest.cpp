// Many migrations at once in one process: each gives the same report and the same bytes as when it runs
// alone. `./dev test-threads` runs this under ThreadSanitizer.

#include "Reader/Error.h"
#include "Reader/Migration.h"
#include "support/Files.h"
#include "support/Paths.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <QDir>
#include <QTemporaryDir>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using nlohmann::json;

namespace {

constexpr int projectCount = 200;
constexpr int threadCount = 8;

struct Sample {
    QByteArray bytes;
    QString folder; ///< of its side files; empty if it has none
};

std::vector<Sample> readSamples() {
    const auto folder = QString::fromStdString(Tests::samplesFolder().string());
    const auto read = [](const QString& path) {
        return QByteArray::fromStdString(Tests::readFile(path.toStdString()));
    };
    std::vector<Sample> samples;
    for (const QString& name :
         QDir(folder).entryList({"holiday-*.xml", "holiday-*.json"}, QDir::Files, QDir::Name))
        samples.push_back({read(folder + '/' + name), QString()});
    samples.push_back({read(folder + "/holiday-v20-bundle/holiday.xml"), folder + "/holiday-v20-bundle"});
    return samples;
}

/// The result of a migration.
struct Outcome {
    std::string error;
    std::string report;
    QByteArray bytes;
    std::size_t logLines = 0;

    bool operator==(const Outcome&) const = default;
};

std::string textOf(const Reader::MigrationReport& report) {
    json text = {{"formBefore", static_cast<int>(report.formBefore)},
                 {"formAfter", static_cast<int>(report.formAfter)},
                 {"from", report.from},
                 {"to", report.to},
                 {"steps", report.steps},
                 {"skipped", report.skipped},
                 {"objectsBefore", report.objectsBefore},
                 {"objectsAfter", report.objectsAfter},
                 {"clipsBefore", report.clipsBefore},
                 {"clipsAfter", report.clipsAfter()},
                 {"duplicateIds", report.duplicateIds},
                 {"leftOut", report.leftOut}};
    for (const Reader::LogLine& line : report.log)
        text["log"].push_back({line.step, line.severity, line.text, line.place});
    for (const Reader::Loss& loss : report.losses)
        text["losses"].push_back({loss.part.id, loss.part.name, loss.step, loss.reason});
    return text.dump(1);
}

/// The bytes of a project. Some are truncated; on others some steps log errors.
QByteArray bytesOf(int number, const Sample& sample) {
    QByteArray bytes = sample.bytes;
    if (number % 29 == 28)
        return bytes.left(bytes.size() * 2 / 3);
    if (number % 3 == 1)
        bytes.replace("type=\"Predeclarator\"", "type=\"Other\"");
    return bytes;
}

/// Migrates the project of that number, with folders, a location and a target version of its own.
Outcome migrate(int number, const std::vector<Sample>& samples, const QString& outputFolder) {
    static constexpr int versions[] = {Reader::currentVersion, 40, 62, 63, Reader::currentVersion, 70};
    const Sample& sample = samples[static_cast<std::size_t>(number) % samples.size()];
    const QString place = QStringLiteral("/films/%1").arg(number);
    Reader::MigrationOptions options;
    options.name = QStringLiteral("film %1").arg(number);
    options.location = options.target = place + "/film";
    options.to = versions[static_cast<std::size_t>(number) % std::size(versions)];
    options.folders = {place + "/media", place + "/models", place + "/stabilized"};
    options.sourceFiles = Reader::SideFiles(sample.folder);
    options.targetFiles = Reader::SideFiles(outputFolder + QStringLiteral("/%1").arg(number));
    QDir().mkpath(outputFolder + QStringLiteral("/%1").arg(number));
    Outcome outcome;
    try {
        Reader::Migration migration(Reader::parse(bytesOf(number, sample), options.name), options);
        migration.run();
        outcome.bytes = migration.save(number % 2 == 0);
        outcome.report = textOf(migration.report());
        outcome.logLines = migration.report().log.size();
    } catch (const Reader::Error& error) {
        outcome.error = error.what();
    }
    return outcome;
}

TEST(Threads, MigrationsAtOnceGiveTheSameAsAlone) {
    const std::vector<Sample> samples = readSamples();
    const QTemporaryDir alone;
    const QTemporaryDir atOnce;
    std::vector<Outcome> expected;
    for (int number = 0; number < projectCount; ++number)
        expected.push_back(migrate(number, samples, alone.path()));

    std::vector<Outcome> found(projectCount);
    std::atomic<int> next = 0;
    std::vector<std::thread> threads;
    for (int count = 0; count < threadCount; ++count)
        threads.emplace_back([&] {
            for (int number = next++; number < projectCount; number = next++)
                found[static_cast<std::size_t>(number)] = migrate(number, samples, atOnce.path());
        });
    for (std::thread& thread : threads)
        thread.join();

    int failed = 0;
    int logged = 0;
    int marked = 0;
    for (std::size_t number = 0; number < projectCount; ++number) {
        EXPECT_EQ(found[number].error, expected[number].error) << number;
        EXPECT_EQ(found[number].report, expected[number].report) << number;
        EXPECT_TRUE(found[number].bytes == expected[number].bytes) << number << ": other bytes";
        const QString folder = QStringLiteral("/%1").arg(number);
        for (const QString& name : QDir(alone.path() + folder).entryList(QDir::Files))
            EXPECT_EQ(Tests::readFile((atOnce.path() + folder + '/' + name).toStdString()),
                      Tests::readFile((alone.path() + folder + '/' + name).toStdString()));
        failed += !expected[number].error.empty();
        logged += expected[number].logLines > 0;
        marked += expected[number].bytes.contains("#PACKAGES_ROOT#");
    }
    // Each of these could be confused between threads, so there must be some.
    EXPECT_GT(failed, 5);
    EXPECT_GT(logged, 20);
    EXPECT_GT(marked, 50);
    EXPECT_LT(marked, projectCount);
}

} // namespace
