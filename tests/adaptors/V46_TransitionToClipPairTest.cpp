// The step to version 46, where case files are not enough: its log lines and new ids if several timelines get
// a title.

#include "Adaptors/Project/V46_TransitionToClipPairAdaptor.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"
#include "support/Compare.h"
#include "support/Documents.h"
#include "support/Log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Words = Archive::Words;
using testing::ElementsAre;

namespace {

const std::string dataIsNull = "WARNING Predeclaration <Data> element is null";

/// The record of timeline `id`.
QString record(int id, const QString& refs = QString()) {
    return QStringLiteral("<Item type='Item'><Data type='Predeclare' objectId='%1'>"
                          "<typeName type='String' value='Timeline::Object'/>"
                          "<oid type='ObjectRef' value='%2'/>%3</Data></Item>")
        .arg(id + 3)
        .arg(id)
        .arg(refs);
}

/// A timeline of one clip, with a transition at its end. It uses the ids from `id` to `id` + 4.
QString timeline(int id, const QString& timing = QString()) {
    return QStringLiteral(
               "<RootObject type='Timeline::Object' objectId='%1'><clips type='Array' size='1'>"
               "<Item type='Item' index='1'><Key type='ObjectRef' value='%3'/>"
               "<Value type='Timeline::ClipTiming' objectId='%4'><track type='ObjectRef' value='%2'/>%5"
               "</Value></Item></clips></RootObject>"
               "<RootObject type='Timeline::Track' objectId='%2'><type type='int32_t' value='16'/>"
               "<timeline type='ObjectRef' value='%1'/></RootObject>"
               "<RootObject type='Timeline::Clip' objectId='%3'>"
               "<transition type='ObjectRef' value='7'/></RootObject>")
        .arg(id)
        .arg(id + 1)
        .arg(id + 2)
        .arg(id + 4)
        .arg(timing.isEmpty() ? QStringLiteral("<transitionHalf type='int64_t' value='5'/>") : timing);
}

QDomDocument archive(const QString& records, const QString& objects) {
    const QString content = QStringLiteral("<RootObject type='Predeclarator' objectId='1'>"
                                           "<predeclarations type='Array' size='0'>%1</predeclarations>"
                                           "</RootObject>%2")
                                .arg(records, objects);
    return Tests::archive(content.toStdString());
}

QDomDocument adapted(QDomDocument document) {
    Project::V46_TransitionToClipPairAdaptor().adapt(document);
    return document;
}

std::vector<long long> idsOf(const QDomDocument& document, const QString& tag, const QString& type) {
    std::vector<long long> ids;
    for (const QDomElement& e : Archive::Internal::elements(document, tag, type))
        ids.push_back(static_cast<long long>(Archive::objectIdOf(e)));
    return ids;
}

/// The ids of the added presets. A title uses twenty ids; its preset has the second one.
std::vector<long long> presetIds(const QDomDocument& document) {
    return idsOf(document, Words::RootObject, QStringLiteral("Overlay::Preset"));
}

TEST(V46TransitionToClipPair, AnAddedReferenceIsReportedByTheNextSearchThatPassesIt) {
    const Tests::Log log;
    adapted(archive(record(20) + record(10), timeline(10) + timeline(20)));
    EXPECT_THAT(log.lines(), ElementsAre(dataIsNull));
}

TEST(V46TransitionToClipPair, EverySearchReportsWhatItPasses) {
    const Tests::Log log;
    const QString empty = QStringLiteral("<Item type='Item'/>");
    adapted(
        archive(record(30) + empty + record(20) + record(10), timeline(10) + timeline(20) + timeline(30)));
    // The search for timeline 30 passes no such entry, that for 20 the reference of 30 and the empty entry,
    // that for 10 these and the reference of 20.
    EXPECT_EQ(log.lines(), std::vector<std::string>(5, dataIsNull));
}

TEST(V46TransitionToClipPair, TimelinesOfOneIdShareTheirRecord) {
    const Tests::Log log;
    const QString refs = QStringLiteral("<refs type='Array' size='1'><Item type='Item' index='1'/></refs>");
    const QDomDocument document =
        adapted(archive(record(20, refs) + record(10), timeline(10) + timeline(20) + timeline(20)));
    const auto records = Archive::Internal::elements(document, Words::Data, Words::Predeclare);
    EXPECT_EQ(records.front().firstChildElement(Words::refs).attribute(Words::size), QStringLiteral("3"));
    // Both timelines 20 find their record first. The search for 10 passes the old entry and the two
    // references.
    EXPECT_EQ(log.lines(), std::vector<std::string>(3, dataIsNull));
}

TEST(V46TransitionToClipPair, AReferenceIsAddedBehindARecordWithinTheRecord) {
    const Tests::Log log;
    const QString refs = QStringLiteral("<refs type='Array' size='1'>%1</refs>").arg(record(10));
    const QDomDocument document = adapted(archive(record(20, refs), timeline(10) + timeline(20)));
    EXPECT_THAT(presetIds(document), ElementsAre(26, 46));
    EXPECT_THAT(log.lines(), ElementsAre());
}

// Because of the comment the step scans the text for the greatest id, again each time.
TEST(V46TransitionToClipPair, IdsAreTheSameFromTreeAndText) {
    const QString records = record(20) + record(10) + record(30);
    const QString timelines = timeline(10) + timeline(20) + timeline(30);
    QDomDocument commented = adapted(archive(records, timelines + QStringLiteral("<!-- by hand -->")));
    QDomElement root = commented.documentElement();
    for (QDomNode node = root.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (node.isComment()) {
            root.removeChild(node);
            break;
        }
    }
    EXPECT_EQ(Tests::difference(commented, adapted(archive(records, timelines))), "");
}

TEST(V46TransitionToClipPair, AnIdThatIsRemovedWithTransitionHalfIsNotCounted) {
    const QString half = QStringLiteral("<transitionHalf type='int64_t' value='5' objectId='1000'/>");
    const QString deep = QStringLiteral("<transitionHalf><a objectId='1000'/></transitionHalf>");
    for (const QString& timing : {half, deep}) {
        const QDomDocument document = adapted(archive(record(10), timeline(10) + timeline(20, timing)));
        // Timeline 20 has no record and gets nothing, but loses its `transitionHalf`.
        EXPECT_THAT(presetIds(document), ElementsAre(26));
    }
    const QDomDocument document =
        adapted(archive(record(10) + record(20), timeline(10) + timeline(20, half)));
    // Timeline 20 uses the ids 1001 to 1020.
    EXPECT_THAT(presetIds(document), ElementsAre(1002, 1022));
}

TEST(V46TransitionToClipPair, ATimelineWithinTheRecordsAddsEntriesToThem) {
    const Tests::Log log;
    const QString within = QStringLiteral("<RootObject type='Holder' objectId='8'>%1</RootObject>");
    const QDomDocument document =
        adapted(archive(within.arg(timeline(20)) + record(10) + record(20), timeline(10)));
    EXPECT_THAT(presetIds(document), ElementsAre(26, 46));
    // The search for 10 passes the clip of 20. That for 20 passes it, too, then the two items of the
    // transition that 20 lists by then, and the reference of 10.
    EXPECT_EQ(log.lines(), std::vector<std::string>(5, dataIsNull));
}

TEST(V46TransitionToClipPair, NothingIsKeptForTheNextDocument) {
    Project::V46_TransitionToClipPairAdaptor adaptor;
    for (int run = 0; run < 2; ++run) {
        QDomDocument document = archive(record(10), timeline(10));
        adaptor.adapt(document);
        EXPECT_EQ(Tests::difference(adapted(archive(record(10), timeline(10))), document), "");
    }
}

} // namespace
