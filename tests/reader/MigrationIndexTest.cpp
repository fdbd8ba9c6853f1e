// What the road knows of an archive between its steps is what a search of the archive would find.

#include "Reader/Document.h"
#include "Reader/Road.h"
#include "support/Files.h"
#include "support/Outlines.h"
#include "support/Paths.h"

#include <gtest/gtest.h>

#include <QDir>

namespace {

TEST(RoadOutlineTest, KnowsTheTruthBehindEveryStep) {
    Reader::useStandInFolders();
    const QDir samples(QString::fromStdString(Tests::samplesFolder().string()));
    int stops = 0;
    for (const QString& name : samples.entryList({QStringLiteral("*.xml")})) {
        Reader::Document document = Reader::parse(
            QByteArray::fromStdString(Tests::readFile(samples.filePath(name).toStdString())), name);
        Reader::Journey journey;
        journey.name = name;
        journey.watch = [&](const std::string& step, const Reader::Document& now) {
            auto* outline = now.isXml() ? Archive::Internal::Outline::of(now.xml()) : nullptr;
            if (!outline)
                return;
            EXPECT_EQ(Tests::difference(*outline, now.xml()), "") << name.toStdString() << " behind " << step;
            ++stops;
        };
        Reader::migrate(document, journey);
    }
    EXPECT_GT(stops, 100);
}

} // namespace
