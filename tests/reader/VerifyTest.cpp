#include "Reader/Verify.h"
#include "support/Findings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Reader::Fault;
using Reader::Finding;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<Finding> findingsIn(const QByteArray& bytes) {
    return Reader::verify(Reader::parse(bytes, QStringLiteral("film")));
}

std::vector<std::string> linesIn(const QByteArray& bytes) {
    return Tests::linesOf(findingsIn(bytes));
}

/// Predeclarations of objects by id.
QByteArray predeclarations(const std::vector<int>& ids) {
    QByteArray text = "<RootObject type='Predeclarator' objectId='1'><predeclarations type='Array' size='" +
                      QByteArray::number(static_cast<int>(ids.size())) + "'>";
    int index = 0;
    for (const int id : ids) {
        ++index;
        text += "<Item type='Item' index='" + QByteArray::number(index) +
                "'><Data type='Predeclare' objectId='" + QByteArray::number(900 + index) +
                "'><oid type='ObjectRef' value='" + QByteArray::number(id) +
                "'/><refs type='Array' size='0'/></Data></Item>";
    }
    return text + "</predeclarations></RootObject>";
}

QByteArray archive(const std::vector<int>& declared, const QByteArray& content) {
    return "<Archive><RootRef type='ObjectRef' value='2'/>" + predeclarations(declared) + content +
           "</Archive>";
}

QByteArray project(const QByteArray& members) {
    return R"({"version":"1.0","data":{"@meta":{"class_name":"Timeline::Object","object_id":2})" + members +
           "}}";
}

TEST(VerifyArchive, ASoundOneHasNoFindings) {
    EXPECT_THAT(linesIn(archive({2, 3, 4}, "<RootObject type='Timeline::Object' objectId='2'>"
                                           "<BaseOfObject type='Base' objectId='2'/>"
                                           "<clips type='Array' size='2'>"
                                           "<Item index='1'><Data type='ObjectRef' value='3'/></Item>"
                                           "<Item index='2'><Data type='ObjectRef' value='0'/></Item></clips>"
                                           "<range type='Range' objectId='4'/></RootObject>"
                                           "<RootObject type='Timeline::Clip' objectId='3'/>")),
                IsEmpty());
}

TEST(VerifyArchive, ElementsOutsideOfObjects) {
    const QByteArray stray = "<list type='Array' size='5'><Item index='3'/></list>";
    EXPECT_THAT(linesIn(archive({2}, "<RootObject type='Timeline::Object' objectId='2'/>" + stray)),
                ElementsAre("wrong-size  0 Archive/list", "wrong-index  0 Archive/list/Item[1]"));
}

TEST(VerifyArchive, DanglingReferences) {
    const auto findings = findingsIn(archive(
        {2, 4}, "<RootObject type='Timeline::Object' objectId='2'>"
                "<BaseOfObject type='Base' objectId='2'><scene type='ObjectRef' value='9'/></BaseOfObject>"
                "<clips type='Array' size='2'><Item index='1'><Data type='ObjectRef' value='2'/></Item>"
                "<Item index='2'><Value type='Timeline::ClipTiming' objectId='4'>"
                "<track type='ObjectRef' value='8'/></Value></Item></clips>"
                "<part type='ObjectRef' value='4'/></RootObject>"));
    EXPECT_THAT(Tests::linesOf(findings),
                ElementsAre("dangling-reference Timeline::Object 2 BaseOfObject/scene",
                            "dangling-reference Timeline::ClipTiming 4 track",
                            "dangling-reference Timeline::Object 2 part")); // an embedded object is no target
    EXPECT_EQ(findings[0].to, 9u);
    EXPECT_EQ(findings[0].text, "refers to 9, and there is no such object");
    EXPECT_THAT(linesIn("<Archive><RootRef type='ObjectRef' value='2'/></Archive>"),
                ElementsAre("dangling-reference  0 Archive/RootRef"));
}

TEST(VerifyArchive, IdsOfTwoObjects) {
    EXPECT_THAT(
        linesIn(archive({2, 3}, "<RootObject type='Timeline::Object' objectId='2'>"
                                "<a type='ObjectRef' value='3'/><b type='Range' objectId='3'/></RootObject>"
                                "<RootObject type='File' objectId='3'/>")),
        ElementsAre("duplicate-id File 3"));
}

TEST(VerifyArchive, CountsOfArrays) {
    const auto findings = findingsIn(archive(
        {2}, "<RootObject type='Timeline::Object' objectId='2'>"
             "<a type='Array' size='2'><Item index='1'/></a><b type='Array'/><c type='Array' size='0'/>"
             "<d type='Array' size='3'><Item index='1'/><Item index='3'/><Item/></d>"
             "<e type='Array' size='-1'/></RootObject>"));
    EXPECT_THAT(Tests::linesOf(findings),
                ElementsAre("wrong-size Timeline::Object 2 a", "wrong-size Timeline::Object 2 b",
                            "wrong-size Timeline::Object 2 e", "wrong-index Timeline::Object 2 d/Item[2]",
                            "wrong-index Timeline::Object 2 d/Item[3]"));
    EXPECT_EQ(findings[0].text, "size is \"2\", the items are 1");
    EXPECT_EQ(findings[3].text, "index is \"3\", the item is number 2");
}

TEST(VerifyArchive, Predeclarations) {
    EXPECT_THAT(
        linesIn(archive({3, 7}, "<RootObject type='Timeline::Object' objectId='2'>"
                                "<a type='ObjectRef' value='3'/><b type='Range' objectId='4'/></RootObject>"
                                "<RootObject type='File' objectId='3'/>")),
        ElementsAre("not-predeclared Timeline::Object 2", "not-predeclared Range 4",
                    "stale-predeclaration Predeclare 902 oid"));
}

TEST(VerifyArchive, UnreachableObjects) {
    EXPECT_THAT(linesIn(archive({2, 3, 4, 5}, "<RootObject type='Timeline::Object' objectId='2'>"
                                              "<a type='ObjectRef' value='3'/></RootObject>"
                                              "<RootObject type='File' objectId='3'/>"
                                              "<RootObject type='File' objectId='4'>"
                                              "<a type='ObjectRef' value='5'/></RootObject>"
                                              "<RootObject type='File' objectId='5'>"
                                              "<a type='ObjectRef' value='4'/></RootObject>")),
                ElementsAre("unreachable File 4", "unreachable File 5"));
}

TEST(VerifyArchive, DepthCostsNoStackAndNoLongPaths) {
    QByteArray deep;
    for (int depth = 0; depth < 450; ++depth)
        deep += "<a>";
    deep += "<b type='ObjectRef' value='9'/>";
    for (int depth = 0; depth < 450; ++depth)
        deep += "</a>";
    const auto findings = findingsIn(
        archive({2}, "<RootObject type='Timeline::Object' objectId='2'>" + deep + "</RootObject>"));
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(findings[0].path.substr(0, 8), ".../a/a/");
    EXPECT_LT(findings[0].path.size(), 100u);
}

TEST(VerifyJson, ASoundOneHasNoFindings) {
    EXPECT_THAT(
        linesIn(project(R"(,"a":{"@meta":{"class_name":"File","object_id":3}},"b":[{"@meta_reference":3}])")),
        IsEmpty());
}

TEST(VerifyJson, DanglingReferences) {
    const auto findings = findingsIn(project(R"(,"clips":[{"clip":null},{"clip":{"@meta_reference":9}}],
                    "file":{"@meta":{"class_name":"File","object_id":3},"path":{"@meta_reference":8}})"));
    EXPECT_THAT(Tests::linesOf(findings), ElementsAre("dangling-reference Timeline::Object 2 clips/1/clip",
                                                      "dangling-reference File 3 path"));
    EXPECT_EQ(findings[0].to, 9u);
}

TEST(VerifyJson, IdsOfTwoObjects) {
    EXPECT_THAT(linesIn(project(R"(,"a":{"@meta":{"class_name":"File","object_id":3}},
                                    "b":{"@meta":{"class_name":"Clip","object_id":3}})")),
                ElementsAre("duplicate-id File 3"));
}

TEST(VerifyJson, UnreachableObjects) {
    Reader::Document document = Reader::parse(project(""), QStringLiteral("film"));
    document.json().flat.objects[7] =
        nlohmann::json::parse(R"({"@meta":{"class_name":"File","object_id":7}})");
    EXPECT_THAT(Tests::linesOf(Reader::verify(document)), ElementsAre("unreachable File 7"));
}

TEST(Verify, EachFaultHasItsName) {
    EXPECT_EQ(Reader::nameOf(Fault::DanglingReference), "dangling-reference");
    EXPECT_EQ(Reader::nameOf(Fault::DuplicateId), "duplicate-id");
    EXPECT_EQ(Reader::nameOf(Fault::WrongSize), "wrong-size");
    EXPECT_EQ(Reader::nameOf(Fault::WrongIndex), "wrong-index");
    EXPECT_EQ(Reader::nameOf(Fault::NotPredeclared), "not-predeclared");
    EXPECT_EQ(Reader::nameOf(Fault::StalePredeclaration), "stale-predeclaration");
    EXPECT_EQ(Reader::nameOf(Fault::Unreachable), "unreachable");
}

} // namespace
