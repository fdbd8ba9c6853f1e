// Whole numbers that 64 bits can't hold keep their digits, though steps see them as floating numbers.

#include "Reader/WideNumbers.h"
#include "Reader/JsonText.h"
#include "Reader/Migration.h"

#include <gtest/gtest.h>

using nlohmann::json;

namespace {

const QString name = QStringLiteral("film.json");

QByteArray project(const QByteArray& fields, const QByteArray& version = "76",
                   const QByteArray& envelope = {}) {
    return R"({"data":{"@meta":{"class_name":"Project::Content","object_id":2})" + fields + "}," + envelope +
           R"("schemaVersion":)" + version + R"(,"version":"1.0"})";
}

struct Result {
    std::string text;
    std::vector<Reader::LogLine> log;
};

Result migrated(const QByteArray& bytes) {
    Reader::MigrationOptions options;
    options.name = name;
    Reader::Migration migration(Reader::parse(bytes, name), options);
    migration.run();
    const QByteArray text = migration.save();
    return {text.toStdString(), migration.report().log};
}

TEST(WideNumbers, KeepTheirDigits) {
    const QByteArray fields =
        R"(,"a":18446744073709551616,"b":[-9223372036854775809,{"c":[[0,123456789012345678901234567890],1.5]}],)"
        R"("d":{"@meta":{"class_name":"Note","e":99999999999999999999,"object_id":5},"f":{"g":99999999999999999999}},)"
        R"("h":18446744073709551615,"i":1.8446744073709552e+19)";
    const Result result =
        migrated(project(fields, "76", R"("other":[340282366920938463463374607431768211456],)"));
    EXPECT_EQ(result.text,
              project(fields, "77", R"("other":[340282366920938463463374607431768211456],)").toStdString() +
                  '\n');
    EXPECT_TRUE(result.log.empty());
}

TEST(WideNumbers, AreFloatingNumbersForSteps) {
    const Reader::Document document = Reader::parse(project(R"(,"a":18446744073709551617,"b":[1e2])"), name);
    const json& root = document.json().flat.objects.at(2);
    EXPECT_TRUE(root.at("a").is_number_float());
    EXPECT_EQ(root.at("a").get<double>(), 18446744073709551616.0);
}

TEST(WideNumbers, AreNoIds) {
    const Result result = migrated(project(
        R"(,"a":{"@meta":{"class_name":"Note","object_id":99999999999999999999}},)"
        R"("b":{"@meta_reference":99999999999999999999},"c":{"@meta":{"class_name":99999999999999999999,"object_id":9}})"));
    EXPECT_EQ(
        result.text,
        project(
            R"(,"a":{"@meta":{"class_name":"Note","object_id":10}},)"
            R"("b":{"@meta_reference":99999999999999999999},"c":{"@meta":{"class_name":99999999999999999999,"object_id":9}})",
            "77")
                .toStdString() +
            '\n');
}

TEST(WideNumbers, ACloneHasThem) {
    const QByteArray text =
        project(R"(,"a":[18446744073709551617])", "76", R"("other":18446744073709551618,)");
    const Reader::Document document = Reader::parse(text, name);
    EXPECT_EQ(Reader::serialize(document.clone()).bytes, text + '\n');
    EXPECT_EQ(Reader::serialize(document.clone().clone()).bytes, text + '\n');
}

/// A document whose root object has the fields, after a change.
Reader::Serialized changed(const QByteArray& fields, const std::function<void(json&)>& change) {
    Reader::Document document = Reader::parse(project(fields), name);
    change(document.json().flat.objects.at(2));
    return Reader::serialize(std::move(document));
}

TEST(WideNumbers, AnotherValueInThePlaceStays) {
    for (const json& value : {json(3), json("x"), json(1.5), json(nullptr)}) {
        const Reader::Serialized result =
            changed(R"(,"a":18446744073709551617)", [&](json& object) { object["a"] = value; });
        EXPECT_EQ(result.bytes, project(",\"a\":" + QByteArray::fromStdString(value.dump())) + '\n');
        EXPECT_TRUE(result.moved.empty());
    }
}

TEST(WideNumbers, ANumberThatIsRemovedIsNoLoss) {
    const Reader::Serialized result =
        changed(R"(,"a":{"b":18446744073709551617})", [](json& object) { object.erase("a"); });
    EXPECT_EQ(result.bytes, project("") + '\n');
    EXPECT_TRUE(result.moved.empty());
}

TEST(WideNumbers, ANumberInAnotherPlaceIsReported) {
    const Reader::Serialized result = changed(R"(,"a":{"b":[0,18446744073709551617]})", [](json& object) {
        object["c"] = std::move(object["a"]);
        object.erase("a");
    });
    EXPECT_EQ(result.bytes, project(R"(,"c":{"b":[0,1.8446744073709552e+19]})") + '\n');
    ASSERT_EQ(result.moved.size(), 1u);
    EXPECT_EQ(result.moved[0].id, 2u);
    EXPECT_EQ(result.moved[0].path, "a/b/1");
    EXPECT_EQ(result.moved[0].digits, "18446744073709551617");
}

TEST(WideNumbers, OfALongPathTheInnermostPartsAreReported) {
    constexpr int depth = 30;
    const QByteArray lists =
        QByteArray("[").repeated(depth) + "18446744073709551617" + QByteArray("]").repeated(depth);
    const Reader::Serialized result = changed(",\"a\":" + lists, [](json& object) {
        object["c"] = std::move(object["a"]);
        object.erase("a");
    });
    ASSERT_EQ(result.moved.size(), 1u);
    EXPECT_EQ(result.moved[0].path, "..." + QByteArray("/0").repeated(24).toStdString());
}

TEST(WideNumbers, InAPlaceThatIsNoListOrObjectAnyMoreAreNoLoss) {
    for (const json& value : {json(3), json::array(), json::object({{"1", 5}})}) {
        const Reader::Serialized result =
            changed(R"(,"a":[0,18446744073709551617],"b":{"c":18446744073709551618})", [&](json& object) {
                object["a"] = value;
                object["b"] = json::array({1, 2});
            });
        EXPECT_EQ(result.bytes,
                  project(",\"a\":" + QByteArray::fromStdString(value.dump()) + ",\"b\":[1,2]") + '\n');
        EXPECT_TRUE(result.moved.empty());
    }
}

TEST(WideNumbers, ALossIsALineOfTheLog) {
    const QByteArray before =
        R"(,"a":{"@meta":{"class_name":"Timeline::ClipTiming","object_id":3},"fadeInDuraion":)";
    const Result result = migrated(project(before + "18446744073709551617}"));
    EXPECT_EQ(result.text,
              project(QByteArray(before).replace("Duraion", "Duration") + "1.8446744073709552e+19}", "77")
                      .toStdString() +
                  '\n');
    ASSERT_EQ(result.log.size(), 1u);
    EXPECT_EQ(result.log[0].severity, "WARNING");
    EXPECT_NE(result.log[0].text.find("18446744073709551617"), std::string::npos) << result.log[0].text;
    EXPECT_NE(result.log[0].text.find("object 3 (fadeInDuraion)"), std::string::npos) << result.log[0].text;
}

TEST(WideNumbers, TakeNoMoreTimeWhereTheyAreDeep) {
    constexpr int depth = 50000;
    QByteArray text = "18446744073709551617";
    text = QByteArray("[18446744073709551617,").repeated(depth) + text + QByteArray("]").repeated(depth);
    const QByteArray document = project(",\"a\":" + text);
    EXPECT_EQ(Reader::serialize(Reader::parse(document, name)).bytes, document + '\n');
}

} // namespace
