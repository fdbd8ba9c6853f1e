#pragma once

#include "Reader/Migration.h"
#include "support/Film.h"

#include <gtest/gtest.h>

#include <QByteArray>

#include <string>
#include <vector>

/// The samples that are single files: one film in two variants, saved by the editor at many versions.
namespace Tests {

enum class Cut { Short, Long };

struct Sample {
    const char* file;
    int version;
    bool isXml;
    Cut cut;
};

inline constexpr Sample samples[] = {
    {"holiday-v3.xml", 3, true, Cut::Long},     {"holiday-v12.xml", 12, true, Cut::Long},
    {"holiday-v21.xml", 21, true, Cut::Long},   {"holiday-v27.xml", 27, true, Cut::Short},
    {"holiday-v34.xml", 34, true, Cut::Long},   {"holiday-v45.xml", 45, true, Cut::Long},
    {"holiday-v55.xml", 55, true, Cut::Long},   {"holiday-v60.json", 60, false, Cut::Long},
    {"holiday-v62.xml", 62, true, Cut::Short},  {"holiday-v63.json", 63, false, Cut::Short},
    {"holiday-v70.json", 70, false, Cut::Long}, {"holiday-v76.json", 76, false, Cut::Long},
};

/// The sample of that version.
const Sample& sampleOf(int version);

QByteArray bytesOf(const Sample& sample);

/// The expected film of a sample at the newest version.
const std::vector<ExpectedTimeline>& filmOf(const Sample& sample);

/// The options for a project named "holiday", without side files.
Reader::MigrationOptions optionsTo(int version);

struct Result {
    QByteArray bytes;
    Reader::MigrationReport report;
};

/// A project that is migrated and saved.
Result migrated(const QByteArray& bytes, const Reader::MigrationOptions& options, bool toBundle = false);
Result migrated(const QByteArray& bytes, int to = Reader::currentVersion);

/// An effect of a clip, by its class without "Effect::". Throws if there is none.
const nlohmann::json& effectOf(const Project& project, const std::string& clip, const std::string& className);
double intensityOf(const Project& project, const std::string& clip, const std::string& className);

/// The nine numbers of a matrix, row by row.
std::vector<double> matrixOf(const Project& project, const nlohmann::json& holder, const std::string& key);

/// Base class of tests of every sample after migration.
class HolidayTest : public testing::TestWithParam<Sample> {
protected:
    static bool isLong() { return GetParam().cut == Cut::Long; }
    static int version() { return GetParam().version; }
    static const Result& result();
    static Project project() { return Project(result().bytes); }
};

/// The name of a sample as a test's parameter.
std::string sampleName(const testing::TestParamInfo<Sample>& info);

} // namespace Tests
