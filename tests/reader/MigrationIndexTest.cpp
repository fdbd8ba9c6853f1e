// What a migration knows of an archive between its steps is what a search of the archive would find.

#include "Reader/Document.h"
#include "Reader/Migration.h"
#include "support/Files.h"
#include "support/Outlines.h"
#include "support/Paths.h"

#include <gtest/gtest.h>

#include <QDir>

namespace {

TEST(MigrationIndexTest, AgreesWithASearchBehindEveryStep) {
    const QDir samples(QString::fromStdString(Tests::samplesFolder().string()));
    int stops = 0;
    for (const QString& name : samples.entryList({QStringLiteral("*.xml")})) {
        Reader::MigrationOptions options;
        options.name = name;
        options.watch = [&](const Reader::MigrationPart& part, const Reader::Document& now) {
            auto* outline = now.isXml() ? Archive::Internal::Outline::of(now.xml()) : nullptr;
            if (!outline)
                return;
            EXPECT_EQ(Tests::difference(*outline, now.xml()), "")
                << name.toStdString() << " behind " << part.name;
            ++stops;
        };
        const auto bytes = QByteArray::fromStdString(Tests::readFile(samples.filePath(name).toStdString()));
        Reader::Migration(Reader::parse(bytes, name), options).run();
    }
    EXPECT_GT(stops, 100);
}

} // namespace
