// What each step of a migration changed, told of documents that are made for it.

#include "Reader/Explanation.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using nlohmann::json;
using Reader::Explanation;
using Reader::FieldChange;
using Reader::MigrationPart;

namespace {

Reader::Document documentOf(const std::string& fields) {
    return Reader::parse(
        QByteArray::fromStdString(
            R"({"version":"1.0","schemaVersion":70,"data":{"@meta":{"class_name":"Note","object_id":1},)" +
            fields + "}}"),
        QStringLiteral("film"));
}

/// What one step changed between two states of the root object.
Reader::StepEffect effectOf(const std::string& before, const std::string& after,
                            const std::string& clip = {}) {
    Explanation explanation(clip);
    explanation.note({MigrationPart::Kind::Comparison, {}}, documentOf("\"never\":1"));
    explanation.note({MigrationPart::Kind::Preparation, {}}, documentOf(before));
    explanation.note({MigrationPart::Kind::Adaptor, "SomeAdaptor"}, documentOf(after));
    EXPECT_EQ(explanation.steps().size(), 1U);
    return explanation.steps().empty() ? Reader::StepEffect() : explanation.steps()[0];
}

std::string pen(int id, const std::string& name) {
    return R"({"@meta":{"class_name":"Pen","object_id":)" + std::to_string(id) + R"(},"name":")" + name +
           "\"}";
}

TEST(Explanation, OfAStepThatChangedNothingIsEmpty) {
    const Reader::StepEffect effect = effectOf(R"("a":1)", R"("a":1)");
    EXPECT_TRUE(effect.changedNothing());
    EXPECT_TRUE(effect.fields.empty());
}
TEST(Explanation, TellsWhatWasAddedRemovedAndChanged) {
    const Reader::StepEffect effect =
        effectOf(R"("a":1,"b":2,"c":)" + pen(2, "red"), R"("a":5,"d":3,"c":)" + pen(3, "blue"));
    EXPECT_EQ(effect.className, "SomeAdaptor");
    EXPECT_EQ(effect.added, (Reader::ObjectCounts{{"Pen", 1}}));
    EXPECT_EQ(effect.removed, (Reader::ObjectCounts{{"Pen", 1}}));
    EXPECT_EQ(effect.changed, (Reader::ObjectCounts{{"Note", 1}}));
    std::vector<std::string> fields;
    for (const FieldChange& change : effect.fields)
        fields.push_back(change.field + ' ' + std::string(nameOf(change.kind)));
    EXPECT_EQ(fields, (std::vector<std::string>{"a changed", "b removed", "c changed", "d added"}));
}

TEST(Explanation, ShowsOfListsOfObjectsWhatIsNotInBoth) {
    const Reader::StepEffect effect = effectOf(R"("list":[)" + pen(2, "red") + ',' + pen(3, "blue") + ']',
                                               R"("list":[)" + pen(3, "blue") + ',' + pen(4, "green") + ']');
    ASSERT_EQ(effect.fields.size(), 1U);
    const FieldChange::Example& example = effect.fields[0].examples.at(0);
    ASSERT_EQ(example.before.size(), 1U);
    EXPECT_EQ(example.before[0]["name"], "red");
    ASSERT_EQ(example.after.size(), 1U);
    EXPECT_EQ(example.after[0]["name"], "green");
}

TEST(Explanation, ShowsBothListsWhereOnlyTheirOrderChanged) {
    const Reader::StepEffect effect = effectOf(R"("list":[)" + pen(2, "red") + ',' + pen(3, "blue") + ']',
                                               R"("list":[)" + pen(3, "blue") + ',' + pen(2, "red") + ']');
    ASSERT_EQ(effect.fields.size(), 1U);
    const FieldChange::Example& example = effect.fields[0].examples.at(0);
    ASSERT_EQ(example.before.size(), 2U);
    EXPECT_EQ(example.before[0]["name"], "red");
    EXPECT_EQ(example.after[0]["name"], "blue");
}

TEST(Explanation, ShowsListsWholeWhereOneHoldsNoObjects) {
    for (const auto& [before, after] : {std::pair("[]", "[{\"x\":1}]"), std::pair("[{\"x\":1}]", "[]"),
                                        std::pair("[1]", "[{\"x\":1}]"), std::pair("{}", "[{\"x\":1}]")}) {
        const Reader::StepEffect effect =
            effectOf("\"list\":" + std::string(before), "\"list\":" + std::string(after));
        ASSERT_EQ(effect.fields.size(), 1U) << before;
        const FieldChange::Example& example = effect.fields[0].examples.at(0);
        EXPECT_EQ(example.before, json::parse(before));
        EXPECT_EQ(example.after, json::parse(after));
    }
}

TEST(Explanation, CountsAllObjectsAndShowsThree) {
    const auto pens = [](const std::string& name) {
        std::string text = "\"list\":[" + pen(2, name);
        for (int id = 3; id < 7; ++id)
            text += ',' + pen(id, name);
        return text + ']';
    };
    const Reader::StepEffect effect = effectOf(pens("red"), pens("blue"));
    ASSERT_EQ(effect.fields.size(), 1U);
    EXPECT_EQ(effect.fields[0].count, 5U);
    EXPECT_EQ(effect.fields[0].examples.size(), 3U);
    EXPECT_EQ(effect.changed, (Reader::ObjectCounts{{"Pen", 5}}));
}

// Of one clip only

/// Two clips: "Beach" with the id 2, and one whose name is no text.
std::string clips(int volume) {
    const std::string fields = "\"volume\":" + std::to_string(volume) + '}';
    return R"("a":{"@meta":{"class_name":"Timeline::Clip","object_id":2},"name":"Beach",)" + fields +
           R"(,"b":{"@meta":{"class_name":"Timeline::Clip","object_id":3},"name":5,)" + fields +
           R"(,"c":{"@meta":{"class_name":"Timeline::Clip","object_id":4},)" + fields;
}

TEST(ExplanationOfAClip, FindsItByItsNameOrItsId) {
    for (const char* clip : {"Beach", "2"}) {
        const Reader::StepEffect effect = effectOf(clips(1), clips(2), clip);
        ASSERT_EQ(effect.fields.size(), 1U) << clip;
        EXPECT_EQ(effect.fields[0].count, 1U);
        EXPECT_EQ(effect.fields[0].examples.at(0).clip, 2U);
        EXPECT_EQ(effect.fields[0].examples.at(0).clipName, "Beach");
    }
}

TEST(ExplanationOfAClip, WithoutANameIsFoundByItsId) {
    for (const char* clip : {"3", "4"}) {
        const Reader::StepEffect effect = effectOf(clips(1), clips(2), clip);
        ASSERT_EQ(effect.fields.size(), 1U) << clip;
        EXPECT_EQ(effect.fields[0].examples.at(0).clipName, "");
    }
}

TEST(ExplanationOfAClip, ThatIsNotThereIsEmpty) {
    Explanation explanation("Pier");
    explanation.note({MigrationPart::Kind::Preparation, {}}, documentOf(clips(1)));
    explanation.note({MigrationPart::Kind::Adaptor, "SomeAdaptor"}, documentOf(clips(2)));
    EXPECT_FALSE(explanation.hasFoundClip());
    ASSERT_EQ(explanation.steps().size(), 1U);
    EXPECT_TRUE(explanation.steps()[0].changedNothing());
}

} // namespace
