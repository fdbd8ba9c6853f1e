#include "Archive/Internal/ArchiveEditor.h"
#include "support/Documents.h"

#include <gtest/gtest.h>

using Archive::Internal::ArchiveEditor;
using Tests::xml;

namespace {

TEST(StartIdsTest, CountsAppendedObjects) {
    ArchiveEditor archive(xml("<Archive objectId='7'><b objectId='3'/></Archive>"));
    archive.startIds();
    EXPECT_EQ(archive.nextId(), 8);
    archive.startIds();
    EXPECT_EQ(archive.nextId(), 8); // the first one was not used
    archive.appendRootObject("A", 12);
    archive.startIds();
    EXPECT_EQ(archive.nextId(), 13);
}

TEST(StartIdsTest, DoesNotCountObjectsThatWereRemovedBefore) {
    ArchiveEditor archive(xml("<Archive objectId='7'><b objectId='9'/></Archive>"));
    archive.startIds();
    archive.removeField(archive.root(), "b");
    EXPECT_EQ(archive.nextId(), 10);
    archive.startIds();
    EXPECT_EQ(archive.nextId(), 8);
}

TEST(StartIdsTest, CountsAppendedObjectsNextToAComment) {
    ArchiveEditor archive(xml("<Archive objectId='7'><!-- by hand --></Archive>"));
    archive.startIds();
    EXPECT_EQ(archive.nextId(), 8);
    const QDomElement object = archive.appendRootObject("A", 100);
    archive.startIds();
    EXPECT_EQ(archive.nextId(), 101);
    archive.remove(object);
    archive.startIds();
    EXPECT_EQ(archive.nextId(), 8);
}

// Reading the text stops at the prefix, which is not declared.
TEST(StartIdsTest, CountsNothingAfterAnErrorInTheText) {
    ArchiveEditor archive(xml("<Archive objectId='7'><p:b objectId='9'/></Archive>"));
    archive.startIds();
    EXPECT_EQ(archive.nextId(), 8);
    archive.appendRootObject("A", 100);
    archive.startIds();
    EXPECT_EQ(archive.nextId(), 8);
}

} // namespace
