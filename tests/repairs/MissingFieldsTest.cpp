// Fields that steps on JSON read without looking whether they are there.

#include "repairs/OldProject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using namespace Tests;

namespace {

/// A project of version 76 with one clip, a file, and these fields of its track, its clip and its file.
QByteArray project(const QByteArray& track, const QByteArray& clip, const QByteArray& file) {
    return R"({"version":"1.0","schemaVersion":76,"data":{"@meta":{"class_name":"Timeline::Object","object_id":1},"name":"Film",
        "tracks":[{"@meta":{"class_name":"Timeline::Track","object_id":2},"type":16,)" +
           track +
           R"("timeline":{"@meta_reference":1}}],"trackingLinks":[],"transitions":[],"links":[],"clips":[
        {"clip":{"@meta":{"class_name":"Timeline::Clip","object_id":3},)" +
           clip + R"("name":"Beach","file":{"@meta":{"class_name":"File","object_id":4})" + file + R"(}},
        "timing":{"@meta":{"class_name":"Timeline::ClipTiming","object_id":5},"timestamp":0,"duration":10,
        "track":{"@meta_reference":2}}}]}})";
}

const QByteArray wholeTrack = R"("used":true,"hidden":false,)";
const QByteArray wholeClip = R"("type":1,)";
const QByteArray wholeFile = R"(,"path":"/films/beach.mp4")";

TEST(MissingFields, AWholeProjectNeedsNone) {
    const QByteArray bytes = project(wholeTrack, wholeClip, wholeFile);
    const Migrated plain = migrateOld(bytes, false);
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    EXPECT_THAT(repaired.repairs(), ElementsAre());
    EXPECT_EQ(repaired.bytes, plain.bytes);
}

TEST(MissingFields, ATrackIsUsedAndShown) {
    const QByteArray bytes = project("", wholeClip, wholeFile);
    EXPECT_EQ(migrateOld(bytes, false).failedStep(), "V77_TrackUsedAdaptor");
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    const Project result = repaired.project();
    EXPECT_EQ(trackTypeOf(result, "Film", "Beach"), 16);
    const auto& track = *result.all("Timeline::Track").at(0);
    EXPECT_EQ(track.at("hidden"), false);
    EXPECT_THAT(repaired.repairs(), ElementsAre("missing-fields"));
    EXPECT_EQ(repaired.repair("missing-fields").count, 2U);
}

TEST(MissingFields, AFieldOfAnotherTypeIsReplaced) {
    const QByteArray bytes = project(R"("used":"yes","hidden":0,)", wholeClip, wholeFile);
    EXPECT_EQ(migrateOld(bytes, false).failedStep(), "V77_TrackUsedAdaptor");
    expectWhole(migrateOld(bytes, true));
}

TEST(MissingFields, AClipIsAVideo) {
    const QByteArray bytes = project(wholeTrack, "", wholeFile);
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    EXPECT_EQ(repaired.project().all("Timeline::Clip").at(0)->at("type"), 1);
    EXPECT_THAT(namesOf(repaired.repair("missing-fields").clips()), ElementsAre("Beach"));
}

TEST(MissingFields, AFileHasAnEmptyPath) {
    const QByteArray bytes = project(wholeTrack, wholeClip, "");
    EXPECT_EQ(migrateOld(bytes, false).failedStep(), "PortableLoadAdaptor");
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    EXPECT_EQ(repaired.project().all("File").at(0)->at("path"), "");
    EXPECT_EQ(repaired.repair("missing-fields").before, "PortableLoadAdaptor");
}

} // namespace
