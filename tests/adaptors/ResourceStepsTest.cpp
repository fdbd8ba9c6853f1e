// Steps on resources, collections and previews, where case files are not enough: large documents, and trees
// that no file can represent.

#include "Adaptors/Project/V12_ClipPreviewAdaptor.h"
#include "Adaptors/Project/V34_NoPreviewAdaptor.h"
#include "Adaptors/Project/V44_StringPtrToStringAdaptor.h"
#include "Adaptors/Project/V58_EffectAuxResourceAdaptor.h"
#include "Adaptors/Project/V59_EffectAuxResourceDownloadingAdaptor.h"
#include "Adaptors/Project/V62_CollectionItemPayloadAdaptor.h"
#include "Archive/Xml.h"
#include "support/ArchiveBuilder.h"
#include "support/Compare.h"
#include "support/Log.h"

#include <gtest/gtest.h>

using Tests::ArchiveBuilder;

namespace {

// So many that a quadratic step would exceed the time limit of the test.
constexpr int many = 20'000;

int countOf(const char* tag, const QDomDocument& document) {
    return document.elementsByTagName(tag).length();
}

TEST(NoPreview, RecordsAreRemovedAsIfOneByOne) {
    ArchiveBuilder sample;
    for (const long long id : {10, 20, 30, 20, 40, 50})
        sample.addDeclared(id % 20 == 0 ? "StaticPreview::ImageObject" : "Video", id);
    sample.predeclarations.setAttribute("size", "17");
    sample.predeclarations.lastChildElement().setAttribute("index", "99");
    sample.add("StaticPreview::WaveformObject", 77);

    QDomDocument expected = sample.document.cloneNode().toDocument();
    QDomElement predeclarations =
        expected.documentElement().firstChildElement().firstChildElement("predeclarations");
    for (const long long id : {20, 20, 40, 77})
        Archive::removePredeclare(predeclarations, id);

    Project::V34_NoPreviewAdaptor().adapt(sample.document);
    EXPECT_EQ(Tests::difference(predeclarations, sample.predeclarations), "");
    EXPECT_EQ(sample.predeclarations.attribute("size"), "14");
    EXPECT_EQ(countOf("RootObject", sample.document), 4);
}

TEST(NoPreview, ManyPreviews) {
    ArchiveBuilder sample;
    for (int n = 0; n < many; ++n)
        sample.addDeclared("StaticPreview::ImageObject", 10 + n);
    Project::V34_NoPreviewAdaptor().adapt(sample.document);
    EXPECT_EQ(countOf("RootObject", sample.document), 1);
    EXPECT_EQ(countOf("Item", sample.document), 0);
    EXPECT_EQ(sample.predeclarations.attribute("size"), "0");
}

TEST(ClipPreview, ManyClips) {
    ArchiveBuilder sample;
    for (int n = 0; n < many; ++n)
        sample.add("Timeline::Clip", 10 + n)
            .appendChild(Archive::createImageRef(sample.document, "preview", "a.png"));
    Project::V12_ClipPreviewAdaptor().adapt(sample.document);
    EXPECT_EQ(countOf("preview", sample.document), many);
    EXPECT_EQ(countOf("image", sample.document), many);
    // 10 + many - 1 was the greatest id, and each object takes two.
    EXPECT_EQ(sample.archive.lastChildElement().attribute("objectId").toLongLong(),
              10 + many + 2 * (many - 1));
}

TEST(EffectAuxResource, ManyEffects) {
    ArchiveBuilder sample;
    for (int n = 0; n < many; ++n)
        sample.add("Effect::Sepia", 10 + n)
            .appendChild(Archive::createObject(sample.document, "BaseOfObject", "Effect::Object", 10 + n));
    Project::V58_EffectAuxResourceAdaptor().adapt(sample.document);
    Project::V59_EffectAuxResourceDownloadingAdaptor().adapt(sample.document);
    EXPECT_EQ(countOf("auxResource", sample.document), many);
    EXPECT_EQ(countOf("remoteSize", sample.document), many);
}

TEST(CollectionItemPayload, ManyItems) {
    ArchiveBuilder sample;
    for (int n = 0; n < many; ++n) {
        sample.addDeclared("Collection::PersistentItem::Import::Object", 1'000'000 + n)
            .appendChild(Archive::createObjectRef(sample.document, "item", 10 + n));
        sample.add("Import::Object", 10 + n)
            .appendChild(Archive::createString(sample.document, "remoteUrl", QString::number(n)));
    }
    Project::V62_CollectionItemPayloadAdaptor().adapt(sample.document);
    EXPECT_EQ(countOf("payload", sample.document), many);
    const QDomElement lastItem = sample.archive.lastChildElement().previousSiblingElement();
    EXPECT_EQ(Archive::typeOf(lastItem), "Collection::Item");
    EXPECT_EQ(Archive::valueOf(lastItem, "downloadUrl"), QString::number(many - 1));
}

TEST(StringPtrToString, EmptyDocument) {
    QDomDocument document;
    const Tests::Log log;
    Project::V44_StringPtrToStringAdaptor().adapt(document);
    EXPECT_TRUE(document.documentElement().isNull());
    EXPECT_TRUE(log.lines().empty());
}

TEST(StringPtrToString, TextThatDoesNotParseIsLeftToTheParser) {
    QDomDocument document;
    document.setContent(QString("<Archive><name type=\"StringPtr\"/></Archive>"));
    document.documentElement().appendChild(document.createElement("not a name"));
    QDomDocument expected;
    expected.setContent(QString("<Archive>\n <name type=\"String\"/>\n <not a name/>\n</Archive>\n"));

    const Tests::Log log;
    Project::V44_StringPtrToStringAdaptor().adapt(document);
    EXPECT_EQ(document.toString(1), expected.toString(1));
    EXPECT_TRUE(log.lines().empty());
}

} // namespace
