#include "Reader/Document.h"
#include "Reader/Contents.h"
#include "Reader/Error.h"
#include "Reader/XmlText.h"
#include "support/Compare.h"
#include "support/Documents.h"

#include <gtest/gtest.h>

#include <unordered_set>
#include <utility>

using Reader::ErrorKind;

namespace {

const QString name = QStringLiteral("film.xml");

/// The kind and the text of the error that reading throws; the test fails if there is none.
std::pair<ErrorKind, std::string> failure(const QByteArray& bytes) {
    try {
        Reader::parse(bytes, name);
    } catch (const Reader::Error& error) {
        return {error.kind(), error.what()};
    }
    ADD_FAILURE() << "was read: " << bytes.left(200).toStdString();
    return {ErrorKind::UnknownStep, ""};
}

void expectFailure(const QByteArray& bytes, ErrorKind kind, const std::string& part) {
    const auto [found, text] = failure(bytes);
    EXPECT_EQ(static_cast<int>(found), static_cast<int>(kind)) << text;
    EXPECT_TRUE(text.starts_with("film.xml")) << text;
    EXPECT_NE(text.find(part), std::string::npos) << text;
}

TEST(Parse, EmptyInput) {
    expectFailure("", ErrorKind::Empty, "empty");
    expectFailure(" \n\t ", ErrorKind::Empty, "empty");
    expectFailure("\xEF\xBB\xBF", ErrorKind::Empty, "empty");
}

TEST(Parse, NeitherXmlNorJson) {
    expectFailure("PK\x03\x04", ErrorKind::UnknownForm, "neither XML nor JSON: a zip archive");
    expectFailure("film", ErrorKind::UnknownForm, "neither XML nor JSON");
    expectFailure(QByteArray("\0\0\0\x01", 4), ErrorKind::UnknownForm, "neither XML nor JSON");
}

TEST(Parse, BrokenXmlNamesLineAndColumn) {
    expectFailure("<Archive>\n <RootRef>\n</Archive>", ErrorKind::BrokenXml, "film.xml:3:");
    expectFailure("<Archive>", ErrorKind::BrokenXml, "film.xml:1:");
    expectFailure("<Archive/><Archive/>", ErrorKind::BrokenXml, "film.xml:1:");
    expectFailure("<Archive a='1' a='2'/>", ErrorKind::BrokenXml, "film.xml:1:");
    expectFailure("<Archive a='&nbsp;'/>", ErrorKind::BrokenXml, "nbsp");
    expectFailure("<Archive a='\xFF\xFE'/>", ErrorKind::BrokenXml, "film.xml:1:");
    expectFailure("<Archive>\n<RootRef value='>", ErrorKind::BrokenXml, "film.xml:2:");
    expectFailure("<Archive>\n<RootRef", ErrorKind::BrokenXml, "film.xml:2:");
    expectFailure("<Archive>\n<!-- ", ErrorKind::BrokenXml, "film.xml:2:");
}

TEST(Parse, CharactersThatXmlForbids) {
    expectFailure("<Archive a='&#1;'/>", ErrorKind::BrokenXml, "film.xml:1:");
    expectFailure("<Archive a='&#x1F;'/>", ErrorKind::BrokenXml, "film.xml:1:");
    expectFailure("<Archive>&#0;</Archive>", ErrorKind::BrokenXml, "film.xml:1:");
    expectFailure("<Archive>\n\x01</Archive>", ErrorKind::BrokenXml, "film.xml:2:");
    expectFailure("<Archive a='&#xFFFE;'/>", ErrorKind::BrokenXml, "film.xml:1:");
    expectFailure("<Archive a='&#xD800;'/>", ErrorKind::BrokenXml, "film.xml:1:");
    EXPECT_NO_THROW(Reader::parse("<Archive a='&#9;&#10;&#x1F3AC;'/>", name));
}

TEST(Parse, LostBlocksAreNoTexts) {
    const QByteArray lost(512, '\0');
    expectFailure("<Archive>\n<RootRef value='1" + lost + "2'/></Archive>", ErrorKind::BrokenXml,
                  "film.xml:2:18: ");
    expectFailure("<Archive>" + lost + "</Archive>", ErrorKind::BrokenXml, "512 NUL bytes");
    expectFailure("<Archive/>\n" + lost, ErrorKind::BrokenXml, "512 NUL bytes");
}

TEST(Parse, DocumentTypesAreRefused) {
    expectFailure("<?xml version='1.0'?>\n<!DOCTYPE Archive>\n<Archive/>", ErrorKind::RefusedXml,
                  "film.xml:2:1");
    expectFailure("<!DOCTYPE a [<!ENTITY b 'c'>]><Archive d='&b;'/>", ErrorKind::RefusedXml, "document type");
    EXPECT_NO_THROW(Reader::parse(
        "<!-- <!DOCTYPE a> --><Archive a='&lt;!DOCTYPE'><![CDATA[<!DOCTYPE]]></Archive>", name));
}

TEST(Parse, TooManyAttributesAreRefused) {
    const auto element = [](int count) {
        QByteArray text = "<Archive";
        for (int number = 0; number < count; ++number)
            text += " a" + QByteArray::number(number) + (number % 2 ? "='>'" : " = \"'\"");
        return text + "/>";
    };
    expectFailure("<Archive>\n" + element(200000) + "</Archive>", ErrorKind::RefusedXml, "film.xml:2:");
    expectFailure(element(257), ErrorKind::RefusedXml, "256 attributes");
    EXPECT_NO_THROW(Reader::parse(element(256), name));
    // Behind the place where the text is broken nothing is counted: here a quote is missing.
    QByteArray elements;
    for (int number = 0; number < 300; ++number)
        elements += "<RootObject a='1'/>";
    expectFailure("<Archive>\n<RootRef a=' />" + elements + "</Archive>", ErrorKind::BrokenXml,
                  "film.xml:2:");
    expectFailure("<Archive>\n<RootRef a='1" + QByteArray(512, '\0') + elements + "</Archive>",
                  ErrorKind::BrokenXml, "film.xml:2:");
}

TEST(Parse, ForeignEncodingsAreRefused) {
    expectFailure("<?xml version='1.0' encoding='UTF-7'?><Archive/>", ErrorKind::ForeignEncoding, "UTF-8");
    EXPECT_NO_THROW(Reader::parse("<?xml version='1.0' encoding='ISO-8859-1'?><Archive a='\xE9'/>", name));
    EXPECT_NO_THROW(Reader::parse("\xEF\xBB\xBF<Archive/>", name));
    EXPECT_NO_THROW(Reader::parse("<?xml version='1.0' encoding='Windows-1252'?><Archive a='\x80'/>", name));
    EXPECT_NO_THROW(Reader::parse("<?xml version='1.0' encoding='us-ascii'?><Archive/>", name));
    expectFailure("<?xml version='1.0' encoding='Shift_JIS'?><Archive/>", ErrorKind::ForeignEncoding,
                  "Shift_JIS");
    expectFailure("<?xml version='1.0' encoding='UTF-16'?><Archive/>", ErrorKind::ForeignEncoding, "UTF-16");
}

TEST(Parse, TooGreatADepthIsRefused) {
    const auto nested = [](int depth) {
        return "<Archive>" + QByteArray("<a b='/>'>").repeated(depth) + "<c/>" +
               QByteArray("</a>").repeated(depth) + "</Archive>";
    };
    expectFailure(nested(100000), ErrorKind::RefusedXml, "nested deeper");
    expectFailure(QByteArray("<a>").repeated(1000000), ErrorKind::RefusedXml, "nested deeper");
    EXPECT_NO_THROW(Reader::parse(nested(3000), name));
    EXPECT_NO_THROW(Reader::parse("<Archive>" + QByteArray("<a/>").repeated(20000) + "</Archive>", name));
}

TEST(Parse, ADepthThatManyElementsAllowIsRefusedToo) {
    // Each element allows the others to be a little deeper, but no file is deeper than 10000 levels.
    expectFailure("<Archive>" + QByteArray("<b/>").repeated(500000) + QByteArray("<a>").repeated(10000),
                  ErrorKind::RefusedXml, "elements are nested deeper than 10000 levels");
}

TEST(Parse, ExactlyOneArchive) {
    expectFailure("<Project/>", ErrorKind::NoArchive, "<Project>");
    expectFailure("<Archive><a><Archive/></a></Archive>", ErrorKind::NoArchive, "2 <Archive>");
}

TEST(Parse, BrokenJsonNamesTheByte) {
    expectFailure("{\"data\": nul}", ErrorKind::BrokenJson, "byte 13");
    expectFailure("{\"data\": \"\xFF\"}", ErrorKind::BrokenJson, "byte");
    expectFailure("{", ErrorKind::BrokenJson, "at byte 1: it was cut off");
    expectFailure("{} x", ErrorKind::BrokenJson, "byte 4");
    expectFailure("{\"data\": -1e999}", ErrorKind::BrokenJson, "number overflow parsing '-1e999'");
}

TEST(Parse, WrongEnvelopes) {
    expectFailure("[]", ErrorKind::WrongEnvelope, "array");
    expectFailure("{}", ErrorKind::WrongEnvelope, "\"version\" is missing");
    expectFailure(R"({"version": "1.0"})", ErrorKind::WrongEnvelope, "\"data\" is missing");
    expectFailure(R"({"version": "2.0", "data": {"@meta": {}}})", ErrorKind::WrongEnvelope, "\"2.0\"");
    expectFailure(R"({"version": 1.0, "data": {"@meta": {}}})", ErrorKind::WrongEnvelope, "1.0");
    expectFailure(R"({"version": "1.0", "data": null})", ErrorKind::WrongEnvelope, "\"data\" is null");
    expectFailure(R"({"version": "1.0", "data": [1]})", ErrorKind::WrongEnvelope, "\"data\" is array");
    expectFailure(R"({"version": "1.0", "data": {"x": 1}})", ErrorKind::WrongEnvelope, "no class object");
    expectFailure(
        R"({"version": "1.0", "data": {"@meta": {}, "b": {"@meta_reference": 18446744073709551615}}})",
        ErrorKind::WrongEnvelope, "no object id is left");
}

TEST(Parse, SchemaVersions) {
    EXPECT_EQ(Reader::parse("<Archive schemaVersion='27'/>", name).version(), 27);
    EXPECT_EQ(Reader::parse("<Archive/>", name).version(), std::nullopt);
    EXPECT_EQ(Reader::parse("<Archive schemaVersion='27'/>", name, 30).version(), 30);
    EXPECT_EQ(Reader::parse("<Archive schemaVersion='new'/>", name, 30).version(), 30);
    EXPECT_EQ(
        Reader::parse(R"({"version": "1.0", "schemaVersion": 63, "data": {"@meta": {}}})", name).version(),
        63);
    EXPECT_EQ(Reader::parse(R"({"version": "1.0", "data": {"@meta": {}}})", name).version(), std::nullopt);
    expectFailure("<Archive schemaVersion='new'/>", ErrorKind::BadVersion, "no version number");
    expectFailure("<Archive schemaVersion='-1'/>", ErrorKind::BadVersion, "no version number");
    expectFailure("<Archive schemaVersion=''/>", ErrorKind::BadVersion, "no version number");
    expectFailure("<Archive schemaVersion='99999999999999999999'/>", ErrorKind::BadVersion,
                  "no version number");
    expectFailure("<Archive schemaVersion='1000001'/>", ErrorKind::BadVersion, "no version number");
    EXPECT_EQ(Reader::parse("<Archive schemaVersion='1000000'/>", name).version(), 1000000);
    expectFailure(R"({"version": "1.0", "schemaVersion": "63", "data": {"@meta": {}}})",
                  ErrorKind::BadVersion, "no version number");
    expectFailure(R"({"version": "1.0", "schemaVersion": -1, "data": {"@meta": {}}})", ErrorKind::BadVersion,
                  "no version number");
    expectFailure(R"({"version": "1.0", "schemaVersion": 18446744073709551615, "data": {"@meta": {}}})",
                  ErrorKind::BadVersion, "no version number");
}

TEST(Parse, TheVersionThatTheDocumentStatesIsKept) {
    const auto statedIn = [](const QByteArray& bytes, std::optional<int> given = std::nullopt) {
        const Reader::Document document = Reader::parse(bytes, name, given);
        EXPECT_EQ(document.clone().statedVersion(), document.statedVersion());
        return document.statedVersion();
    };
    EXPECT_EQ(statedIn("<Archive schemaVersion='45'/>"), 45);
    EXPECT_EQ(statedIn("<Archive schemaVersion='45'/>", 12), 45);
    EXPECT_EQ(statedIn("<Archive schemaVersion='new'/>", 12), std::nullopt);
    EXPECT_EQ(statedIn("<Archive/>", 12), std::nullopt);
    const QByteArray json = R"({"version": "1.0", "schemaVersion": 70, "data": {"@meta": {}}})";
    EXPECT_EQ(statedIn(json), 70);
    EXPECT_EQ(statedIn(json, 65), 70);
    EXPECT_EQ(Reader::parse(json, name, 65).version(), 65);
}

TEST(Parse, AGivenVersionIsOneOfTheForm) {
    const auto expectWrong = [](const QByteArray& bytes, int version, const std::string& form) {
        try {
            Reader::parse(bytes, name, version);
            ADD_FAILURE() << "was read as version " << version;
        } catch (const Reader::Error& error) {
            EXPECT_EQ(error.kind(), ErrorKind::WrongForm) << error.what();
            EXPECT_EQ(error.facts().version, version);
            EXPECT_EQ(error.facts().reason, form);
        }
    };
    const QByteArray xml = "<Archive schemaVersion='45'/>";
    const QByteArray json = R"({"version": "1.0", "schemaVersion": 70, "data": {"@meta": {}}})";
    for (const int version : {63, 77})
        expectWrong(xml, version, "an XML archive");
    for (const int version : {0, 45, 58})
        expectWrong(json, version, "JSON");
    EXPECT_EQ(Reader::parse(xml, name, 62).version(), 62);
    EXPECT_EQ(Reader::parse(json, name, 59).version(), 59);
    EXPECT_EQ(Reader::parse(xml, name, 78).version(), 78); // too new, which a migration reports
}

TEST(Document, CountsFollowAChangeOfTheArchive) {
    Reader::Document document = Reader::parse("<Archive><RootRef value='1'/><RootObject type='A' "
                                              "objectId='1'><b type='B' objectId='2'/></RootObject>"
                                              "</Archive>",
                                              name);
    const Reader::ObjectCounts before = {{"A", 1}, {"B", 1}};
    EXPECT_EQ(Reader::countObjects(document), before);

    QDomElement inner = document.xml().documentElement().lastChildElement().firstChildElement();
    inner.setAttribute(QStringLiteral("type"), QStringLiteral("C"));
    const Reader::ObjectCounts after = {{"A", 1}, {"C", 1}};
    EXPECT_EQ(Reader::countObjects(document), after);
}

TEST(Serialize, ArchivesKeepTheirContent) {
    const QByteArray text =
        "<?xml version='1.0'?><!-- kept --><Archive z='1' a='&lt;&quot;&#10;&amp;'><!-- c --><b>te&lt;xt</b>"
        "<x:y x:z='1'/><![CDATA[a<b]]><?go on?></Archive>";
    const QByteArray once = Reader::serialize(Reader::parse(text, name, 5)).bytes;
    EXPECT_EQ(Reader::serialize(Reader::parse(once, name)).bytes, once);
    QDomDocument expected =
        Tests::xml("<Archive schemaVersion='5' z='1' a='&lt;&quot;&#10;&amp;'><!-- c --><b>te&lt;xt</b>"
                   "<x:y x:z='1'/><![CDATA[a<b]]><?go on?></Archive>");
    EXPECT_EQ(
        Tests::difference(expected.documentElement(), Reader::parse(once, name).xml().documentElement()), "");
    EXPECT_TRUE(once.contains("<!-- kept -->"));
    EXPECT_TRUE(once.contains("<?go on?>"));
    EXPECT_LT(once.indexOf(" a="), once.indexOf(" schemaVersion=")); // sorted
    EXPECT_LT(once.indexOf(" schemaVersion="), once.indexOf(" z="));
}

TEST(Serialize, TextsAreReadAgain) {
    for (const char* text :
         {"plain", "", "\\u007f", "\\u0000", "\\n\\t", "\\\"", "\\\\", "caf\u00e9", "~ "}) {
        SCOPED_TRACE(text);
        const QByteArray bytes = R"({"data":{"@meta":{"class_name":"A","object_id":2},"text":")" +
                                 QByteArray(text) + R"("},"version":"1.0"})";
        const auto before = Reader::parse(bytes, name);
        const auto after = Reader::parse(Reader::serialize(before.clone()).bytes, name);
        EXPECT_EQ(before.json().flat.objects, after.json().flat.objects);
    }
}

TEST(Serialize, JsonKeepsItsEnvelope) {
    const QByteArray text =
        R"({"data":{"@meta":{"class_name":"A","object_id":2}},"other":{"x":[1]},"schemaVersion":63,"version":"1.0"})";
    EXPECT_EQ(Reader::serialize(Reader::parse(text, name)).bytes, text + '\n');
}

TEST(Contents, OfAnArchive) {
    const Reader::Document document = Reader::parse(
        "<Archive><RootRef type='ObjectRef' value='2'/>"
        "<RootObject type='Predeclarator' objectId='1'><predeclarations><Item><Data type='Predeclare' "
        "objectId='8'>"
        "<oid type='ObjectRef' value='77'/></Data></Item></predeclarations></RootObject>"
        "<RootObject type='Timeline::Object' objectId='2'><clips type='Array'>"
        "<Item><Key type='ObjectRef' value='3'/><Value type='Timeline::ClipTiming' objectId='4'/></Item>"
        "<Item><Key type='ObjectRef' value='9'/></Item><Item><Key type='ObjectRef' value='3'/></Item>"
        "<Item><Data type='ObjectRef' value='5'/></Item></clips></RootObject>"
        "<RootObject type='Timeline::Clip' objectId='3'><BaseOfObject type='Base' objectId='3'/>"
        "<name type='String' value='Beach'/></RootObject>"
        "<RootObject type='Timeline::Clip' objectId='5'/><RootObject type='File' objectId='5'/></Archive>",
        name);
    const Reader::ObjectCounts counts = {{"Base", 1},
                                         {"File", 1},
                                         {"Timeline::Clip", 2},
                                         {"Timeline::ClipTiming", 1},
                                         {"Timeline::Object", 1}};
    EXPECT_EQ(Reader::countObjects(document), counts);
    const auto clips = Reader::listClips(document);
    ASSERT_EQ(clips.size(), 3u);
    EXPECT_EQ(clips[0].id, 3u);
    EXPECT_EQ(clips[0].name, "Beach");
    EXPECT_EQ(clips[1].id, 9u);
    EXPECT_EQ(clips[2].id, 5u);
    const auto reached = Reader::findReachable(document);
    EXPECT_TRUE(reached.count(3) && reached.count(5) && !reached.count(77));
}

TEST(Contents, OfJson) {
    const Reader::Document document = Reader::parse(
        R"({"version":"1.0","data":{"@meta":{"class_name":"Timeline::Object","object_id":2},
            "clips":[{"clip":{"@meta":{"class_name":"Timeline::Clip","object_id":3},"name":"Beach"},"timing":null},
                     {"clip":{"@meta_reference":9}},{"clip":null},7,{"clip":{"@meta_reference":3}}],
            "twice":{"@meta":{"class_name":"File","object_id":3}}}})",
        name);
    const Reader::ObjectCounts counts = {{"File", 1}, {"Timeline::Clip", 1}, {"Timeline::Object", 1}};
    EXPECT_EQ(Reader::countObjects(document), counts);
    const auto clips = Reader::listClips(document);
    ASSERT_EQ(clips.size(), 2u);
    EXPECT_EQ(clips[0].name, "Beach");
    EXPECT_EQ(clips[1].id, 9u);
    EXPECT_EQ(Reader::findReachable(document), (std::unordered_set<unsigned long long>{2, 3, 10}));
}

TEST(MovedDocument, LetsGoOfTheTree) {
    Reader::Document first = Reader::parse("<Archive/>", name, 27);
    Reader::Document second = std::move(first);
    EXPECT_TRUE(first.xml().isNull()); // NOLINT(bugprone-use-after-move)
    EXPECT_FALSE(second.xml().isNull());
    EXPECT_EQ(second.version(), 27);
    Reader::Document third =
        Reader::parse(R"({"version":"1.0","data":{"@meta":{"class_name":"A","object_id":2}}})", name);
    third = std::move(second);
    EXPECT_TRUE(second.xml().isNull()); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(third.xml().documentElement().tagName(), "Archive");
    EXPECT_EQ(third.version(), 27);
}

} // namespace
