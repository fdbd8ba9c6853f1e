// The index that all steps of a migration share agrees with a search of the archive after every step.

#include "Reader/Document.h"
#include "support/Files.h"
#include "support/IndexedSteps.h"
#include "support/Paths.h"

#include <gtest/gtest.h>

#include <QDir>

namespace {

TEST(MigrationIndexTest, AgreesWithASearchAfterEveryStep) {
    const QDir samples(QString::fromStdString(Tests::samplesFolder().string()));
    const QStringList names = samples.entryList({QStringLiteral("*.xml")});
    ASSERT_GE(names.size(), 8);
    for (const QString& name : names) {
        const auto bytes = QByteArray::fromStdString(Tests::readFile(samples.filePath(name).toStdString()));
        EXPECT_EQ(Tests::indexDifferenceAfterSteps(Reader::parse(bytes, name)), "") << name.toStdString();
    }
}

} // namespace
