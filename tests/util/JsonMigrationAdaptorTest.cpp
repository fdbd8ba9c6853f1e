// The step from the archive to JSON, as a document reader uses it.

#include "Archive/Internal/ArchiveEditor.h"
#include "Reader/Conversion.h"
#include "support/Conversion.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

using Bundle::Backend;
using nlohmann::json;
using Tests::expectSame;
using Tests::item;
using Tests::object;
using Tests::predeclarator;
using Tests::ref;
using Tests::xml;

namespace {

TEST(JsonMigrationAdaptor, ConvertsFromXmlToJsonOnly) {
    const Reader::Conversion conversion;
    EXPECT_TRUE(conversion.canConvert(Backend::Xml, Backend::Json));
    EXPECT_FALSE(conversion.canConvert(Backend::Json, Backend::Xml));
    EXPECT_FALSE(conversion.canConvert(Backend::Xml, Backend::Xml));
    EXPECT_FALSE(conversion.canConvert(Backend::Json, Backend::Json));
}

TEST(JsonMigrationAdaptor, IsNeverNeededForJson) {
    const Reader::Conversion conversion;
    EXPECT_FALSE(conversion.needAdaptForActualVersion(json()));
    EXPECT_FALSE(conversion.needAdaptForActualVersion(json::object()));
    EXPECT_FALSE(conversion.needAdaptForActualVersion({{"version", "0.1"}, {"data", nullptr}}));
}

TEST(JsonMigrationAdaptor, GivesItsVersionAndRemembersThatItRan) {
    struct Numbered : Util::JsonMigrationAdaptor {
        using JsonMigrationAdaptor::JsonMigrationAdaptor;
        int actualVersion() const override { return 0; }
        QString name() const override { return {}; }
    };
    Numbered adaptor(-7);
    EXPECT_FALSE(adaptor.converted());
    const auto [version, value] = adaptor.convert(xml("<NoArchive/>"));
    EXPECT_EQ(version, -7);
    expectSame({{"data", nullptr}, {"version", "1.0"}}, value);
    EXPECT_TRUE(adaptor.converted());
    const Numbered copy(adaptor);
    EXPECT_TRUE(copy.converted());
    EXPECT_EQ(adaptor.convert(xml("<NoArchive/>")).first, -7);
    EXPECT_TRUE(adaptor.converted());
}

/// A document and its conversion without shared ids.
struct Unshared {
    explicit Unshared(const std::string& content) : document(Tests::archive(content)) {
        Archive::Internal::ArchiveEditor archive(document);
        value = Util::XmlToJsonAdaptor().adapt(archive, sharedIds);
    }

    QDomDocument document;
    json value;
    std::set<unsigned long long> sharedIds;
};

TEST(SharedIds, AreNoneInMostDocuments) {
    const std::string pair =
        "<Value type='Array' size='1'>" + item(ref("First", 4) + ref("Second", 5)) + "</Value>";
    const std::vector<std::string> contents = {
        ref("RootRef", 2) + object("A", 2, ref("b", 3) + ref("again", 3)) + object("B", 3, ref("back", 2)),
        predeclarator({{"A", 2}, {"Transition::Fade", 3}, {"Timeline::Clip", 4}, {"Timeline::Clip", 5}}) +
            ref("RootRef", 2) + object("A", 2, "<f type='Array'>" + item(ref("Key", 3) + pair) + "</f>") +
            object("Transition::Fade", 3, ref("clip", 4)) + object("Timeline::Clip", 4) +
            object("Timeline::Clip", 5),
        ref("RootRef", 2) +
            object("A", 2, "<BaseOfObject type='C'><x type='bool' value='1'/></BaseOfObject>"),
        ref("RootRef", 2) + object("A", 2, ref("b", 3)) + object("B", 3) + object("Later", 3),
        ref("RootRef", 9) + object("A", 2),
        object("A", 2),
    };
    for (const std::string& content : contents) {
        SCOPED_TRACE(content);
        const Unshared unshared(content);
        expectSame(Tests::convert(Tests::archive(content)), unshared.value);
        EXPECT_TRUE(unshared.sharedIds.empty());
    }
}

// An object inside another is converted where it is, and once more at the first reference.
TEST(SharedIds, ConvertsNestedRootObjectsTwice) {
    const std::string content =
        ref("RootRef", 2) +
        object("A", 2, "<in type='B' objectId='7'>" + object("N", 3, ref("c", 4)) + "</in>" + ref("n", 3)) +
        object("C", 4, "<x type='int32_t' value='5'/>");
    const Unshared unshared(content);
    const json data = unshared.value["data"];
    expectSame(Tests::convert(Tests::archive(content)), unshared.value);
    EXPECT_EQ(data["in"]["RootObject"]["c"]["x"], 5);
    EXPECT_EQ(data["n"]["c"]["@meta_reference"], 4);
}

TEST(SharedIds, LeaveTheDocumentAsItIs) {
    const std::string content = ref("RootRef", 2) +
                                object("A", 2, "<e type='E' objectId='3'/>" + ref("b", 3)) + object("B", 3) +
                                object("Unreached", 4);
    const Unshared unshared(content);
    EXPECT_EQ(unshared.document.toString(), Tests::archive(content).toString());
    EXPECT_EQ(unshared.sharedIds, std::set<unsigned long long>{3});
}

TEST(SharedIds, RemovesIdsOfRootObjectsFromEmbeddedObjects) {
    const std::string content = ref("RootRef", 2) +
                                object("A", 2,
                                       "<own type='E' objectId='8'/><other type='E' objectId='3'/>"
                                       "<none type='E'/>" +
                                           ref("b", 3)) +
                                object("B", 3, "<BaseOfObject type='C' objectId='3'/>");
    const Unshared unshared(content);
    const json data = unshared.value["data"];
    EXPECT_EQ(data["own"]["@meta"]["object_id"], 8);
    EXPECT_EQ(data["other"]["@meta"]["object_id"], 0);
    EXPECT_EQ(data["none"]["@meta"]["object_id"], 0);
    EXPECT_EQ(data["b"]["@meta"]["object_id"], 3);
    EXPECT_EQ(data["b"]["C"]["@meta"]["object_id"], 1);
    EXPECT_EQ(unshared.sharedIds, std::set<unsigned long long>{3});
    EXPECT_EQ(Tests::convert(Tests::archive(content))["data"]["other"]["@meta"]["object_id"], 3);
}

} // namespace
