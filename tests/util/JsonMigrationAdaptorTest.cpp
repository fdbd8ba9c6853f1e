// The step from the archive to JSON as a reader sees it.

#include "Reader/Conversion.h"
#include "support/Conversion.h"

#include <gtest/gtest.h>

using Bundle::Backend;
using nlohmann::json;
using Tests::expectSame;
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

TEST(JsonMigrationAdaptor, HandsItsNumberBackAndNotesThatItRan) {
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

} // namespace
