// Steps that are no finite numbers: their bits differ between machines, so they can't be in a case file.

#include "Adaptors/Project/V16_PanZoomAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"
#include "support/Documents.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

/// A clip 3 whose zoom shows the centre half from a quarter of its length on, and a timing of the clip `timed`.
QDomDocument migrated(long long timed, long long duration, long long sourcePosition) {
    const QString text =
        QStringLiteral(
            "<Archive><RootObject type='Timeline::Object' objectId='2'><clips type='Array' size='1'>"
            "<Item type='Item' index='1'><Key type='ObjectRef' value='%1'/>"
            "<Value type='Timeline::ClipTiming'><duration type='int64_t' value='%2'/>"
            "<sourcePosition type='int64_t' value='%3'/><sourceDuration type='int64_t' value='0'/>"
            "</Value></Item></clips></RootObject>"
            "<RootObject type='Timeline::Clip' objectId='3'><effects type='Array' size='1'>"
            "<Item type='Item' index='1'><Data type='ObjectRef' value='10'/></Item></effects></RootObject>"
            "<RootObject type='Effect::Zoom' objectId='10'>"
            "<partIn type='double' value='0.25' binaryData='P9AAAAAAAAA='/><rect>"
            "<left type='double' value='0.25' binaryData='P9AAAAAAAAA='/>"
            "<right type='double' value='0.75' binaryData='P+gAAAAAAAA='/>"
            "<bottom type='double' value='0.75' binaryData='P+gAAAAAAAA='/></rect></RootObject></Archive>")
            .arg(timed)
            .arg(duration)
            .arg(sourcePosition);
    QDomDocument document = Tests::xml(text.toStdString());
    Project::V16_PanZoomAdaptor().adapt(document);
    return document;
}

struct Entry {
    QString readableStep;
    double step;
    double m11;
};

std::vector<Entry> keyValuesOf(const QDomDocument& document) {
    std::vector<Entry> entries;
    for (const QDomElement& data : Archive::Internal::elements(document, "Data")) {
        if (Archive::typeOf(data) != "AnimationTransformationKeyValue")
            continue;
        const QDomElement step = data.firstChildElement("step");
        const QDomElement m11 = Archive::Internal::childAt(data, {"value", "matrix", "m11"});
        entries.push_back(
            {step.attribute("value"), Archive::readValue(step, -1.0), Archive::readValue(m11, -1.0)});
    }
    return entries;
}

void expectUndefinedSteps(const QDomDocument& document) {
    const auto entries = keyValuesOf(document);
    ASSERT_EQ(entries.size(), 2U);
    for (const Entry& entry : entries) {
        EXPECT_EQ(entry.readableStep, "nan");
        EXPECT_TRUE(std::isnan(entry.step));
    }
    // No step is less than another, so the later key value is inserted before the earlier one.
    EXPECT_EQ(entries[0].m11, 2.0);
    EXPECT_EQ(entries[1].m11, 1.0);
}

TEST(PanZoomTest, StepsOfAClipWithoutTimingAreUndefined) {
    expectUndefinedSteps(migrated(4, 1000, 0));
}

TEST(PanZoomTest, StepsOfAnEmptySourceAreUndefined) {
    expectUndefinedSteps(migrated(3, 0, 0));
    // Infinity minus infinity, and 0 times infinity.
    expectUndefinedSteps(migrated(3, 1000, -1000));
}

TEST(PanZoomTest, StepsInAnEmptySourceAreInfinite) {
    // 0 * inf + inf is NaN, 0.25 * inf + inf is infinite. The latter is inserted first: no step is less than
    // it.
    const auto entries = keyValuesOf(migrated(3, 1000, 1000));
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].readableStep, "inf");
    EXPECT_EQ(entries[0].step, 0.0); // infinities are stored as 0.0
    EXPECT_EQ(entries[0].m11, 2.0);
    EXPECT_EQ(entries[1].readableStep, "nan");
    EXPECT_TRUE(std::isnan(entries[1].step));
    EXPECT_EQ(entries[1].m11, 1.0);
}

} // namespace
