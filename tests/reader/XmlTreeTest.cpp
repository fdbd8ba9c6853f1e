// The tree of an archive is the one that Qt builds from the same text.

#include "Reader/XmlTree.h"
#include "support/Facts.h"
#include "support/Files.h"
#include "support/Paths.h"

#include <gtest/gtest.h>

#include <QXmlStreamReader>

#include <cstring>
#include <filesystem>
#include <vector>

using Archive::Internal::TreeFacts;

namespace {

QDomDocument treeOf(const QByteArray& text) {
    QXmlStreamReader reader(text);
    reader.setNamespaceProcessing(false);
    QDomDocument document = Reader::buildXmlTree(reader);
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    return document;
}

QDomDocument qtTreeOf(const QByteArray& text) {
    QXmlStreamReader reader(text);
    reader.setNamespaceProcessing(false);
    QDomDocument document;
    EXPECT_TRUE(document.setContent(&reader, false));
    return document;
}

void expectSameNode(const QDomNode& expected, const QDomNode& actual) {
    EXPECT_EQ(expected.nodeType(), actual.nodeType());
    EXPECT_EQ(expected.nodeName(), actual.nodeName());
    EXPECT_EQ(expected.nodeValue(), actual.nodeValue());
    EXPECT_EQ(expected.nodeValue().isNull(), actual.nodeValue().isNull());
    EXPECT_EQ(expected.localName().isNull(), actual.localName().isNull());
    EXPECT_EQ(expected.namespaceURI().isNull(), actual.namespaceURI().isNull());
    const QDomNamedNodeMap attributes = expected.attributes();
    EXPECT_EQ(attributes.length(), actual.attributes().length());
    for (int number = 0; number < attributes.length(); ++number) {
        const QDomNode attribute = attributes.item(number);
        const QDomNode other = actual.attributes().namedItem(attribute.nodeName());
        ASSERT_FALSE(other.isNull()) << attribute.nodeName().toStdString();
        expectSameNode(attribute, other);
    }
    QDomNode child = expected.firstChild();
    QDomNode other = actual.firstChild();
    for (; !child.isNull() && !other.isNull(); child = child.nextSibling(), other = other.nextSibling())
        expectSameNode(child, other);
    EXPECT_EQ(child.isNull(), other.isNull()) << "below " << expected.nodeName().toStdString();
}

void expectTreeOfQt(const QByteArray& text) {
    SCOPED_TRACE(text.left(500).toStdString());
    expectSameNode(qtTreeOf(text), treeOf(text));
    EXPECT_EQ(qtTreeOf(text).doctype().name(), treeOf(text).doctype().name());
}

TEST(XmlTree, IsTheSameAsQts) {
    for (const char* text : {
             "<a/>",
             "<?xml version='1.0'?><a/>",
             "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a/>\n",
             "<?xml version='1.0' encoding='UTF-8' standalone='yes'?><a/>",
             "<?xml version='1.0' encoding='UTF-8' standalone='no'?><a/>",
             "<!-- before --><?before it?><a/><!-- behind --><?behind?>",
             "<a><!----><!-- in --><?in  two words ?><b/></a>",
             "<a>\n <b/>\t<c> text </c>\r\n</a>",
             "<a>text<b/>text</a>",
             "<a> &amp; &lt; </a>",
             "<a>&#32;</a>",
             "<a>&#160;</a>",
             "<a>\xC2\xA0</a>",
             "<a><![CDATA[]]><![CDATA[  ]]><![CDATA[ x < & ]]>behind</a>",
             "<a x='' y=' ' z='&lt;&amp;&quot;&#10;'/>",
             "<a x='1'><b x='1' y='1'/><b y='1' x='1'/></a>",
             "<a long='a value of more than twenty-four characters'><b long='a value of more than "
             "twenty-four "
             "characters'/></a>",
             "<p:a xmlns:p='u' p:x='1' xmlns='v'><b/></p:a>",
             "<\xC3\xA4 \xC3\xB6='\xF0\x9D\x84\x9E'/>",
         })
        expectTreeOfQt(text);
}

// Many more strings than a cache can hold.
TEST(XmlTree, DoesNotConfuseStrings) {
    QByteArray text = "<a>";
    for (int number = 0; number < 20000; ++number) {
        const QByteArray digits = QByteArray::number(number);
        text += "<e" + digits + " n" + digits + "='" + digits + "' value='" + digits + "'/>";
    }
    const QDomDocument document = treeOf(text + "</a>");
    int number = 0;
    for (QDomElement e = document.documentElement().firstChildElement(); !e.isNull();
         e = e.nextSiblingElement(), ++number) {
        const QString digits = QString::number(number);
        ASSERT_EQ(e.tagName(), "e" + digits);
        ASSERT_EQ(e.attribute("n" + digits), digits);
        ASSERT_EQ(e.attribute(QStringLiteral("value")), digits);
    }
    EXPECT_EQ(number, 20000);
}

TEST(XmlTree, SharesWhatIsEqual) {
    const QDomDocument document = treeOf("<a><bc type='double'/><bc type='double'/></a>");
    const QDomElement first = document.documentElement().firstChildElement();
    const QDomElement second = first.nextSiblingElement();
    EXPECT_EQ(first.tagName().constData(), second.tagName().constData());
    EXPECT_EQ(first.attribute(QStringLiteral("type")).constData(),
              second.attribute(QStringLiteral("type")).constData());
}

TEST(XmlTree, LeavesErrorsWithTheReader) {
    for (const char* text : {"", "<a>", "<a></b>", "<a x='1' x='2'/>", "<a>&what;</a>", "<a/><b/>", "text"}) {
        QXmlStreamReader reader(QByteArray::fromRawData(text, static_cast<int>(std::strlen(text))));
        reader.setNamespaceProcessing(false);
        Reader::buildXmlTree(reader);
        EXPECT_TRUE(reader.hasError()) << text;
    }
}

std::vector<QByteArray> xmlSamples() {
    std::vector<QByteArray> texts;
    for (const auto& entry : std::filesystem::directory_iterator(Tests::samplesFolder())) {
        if (entry.path().extension() == ".xml")
            texts.push_back(QByteArray::fromStdString(Tests::readFile(entry.path())));
    }
    EXPECT_GE(texts.size(), 8);
    return texts;
}

TEST(XmlTree, OfEverySampleIsTheSameAsQts) {
    for (const QByteArray& text : xmlSamples())
        expectTreeOfQt(text);
}

/// Collects the facts and compares them with a search of the tree.
TreeFacts factsOf(const QByteArray& text) {
    SCOPED_TRACE(text.left(500).toStdString());
    QXmlStreamReader reader(text);
    reader.setNamespaceProcessing(false);
    TreeFacts facts;
    const QDomDocument document = Reader::buildXmlTree(reader, &facts);
    EXPECT_EQ(Tests::difference(facts, document), "");
    return facts;
}

TEST(XmlTree, FactsAgreeWithASearch) {
    for (const QByteArray& text : xmlSamples())
        factsOf(text);
    const TreeFacts facts = factsOf(
        "<Archive><RootObject type='A' objectId='5'><Archive/><x objectId='07' type='A'/><y objectId='x'/>"
        "<BaseOfObject objectId='7' type='B'><RootObject/></BaseOfObject></RootObject></Archive>");
    EXPECT_EQ(facts.archives, 2);
    EXPECT_EQ(facts.rootObjects->size(), 2);
    EXPECT_EQ(facts.baseParts->size(), 1);
    EXPECT_EQ(facts.objectsByType.value(QStringLiteral("A")), 2);
    EXPECT_EQ(facts.objectsByType.value(QString()), 1);
    ASSERT_TRUE(facts.greatest);
    EXPECT_EQ(facts.greatest->id, 7);
    EXPECT_EQ(facts.greatest->holder.tagName(), "x");
}

TEST(XmlTree, FactsHaveNoGreatestIdIfItNeedsAScanOfTheText) {
    QByteArray many;
    for (int number = 0; number < 100; ++number)
        many += " a" + QByteArray::number(number) + "=''";
    for (const QByteArray& text : {
             QByteArray("<?xml version='1.0' encoding='UTF-8'?><a objectId='3'>text</a>"),
             "<a objectId='3'" + many.left(many.size() - 7) + "/>",
         })
        EXPECT_TRUE(factsOf(text).greatest) << text.toStdString();
    for (const QByteArray& text : {
             QByteArray("<?xml version='1.0' encoding='ISO-8859-1'?><a objectId='3'/>"),
             QByteArray("<!-- before --><a objectId='3'/>"),
             QByteArray("<a objectId='3'/><?behind?>"),
             QByteArray("<a objectId='3'><!-- in --></a>"),
             QByteArray("<a objectId='3'><![CDATA[x]]></a>"),
             QByteArray("<a objectId='3'><?in it?></a>"),
             QByteArray("<p:a objectId='3'/>"),
             QByteArray("<a xmlA='' objectId='3'/>"),
             QByteArray("<a xmlns='u' objectId='3'/>"),
             "<a objectId='3'" + many + "/>",
         })
        EXPECT_FALSE(factsOf(text).greatest) << text.toStdString();
}

TEST(XmlTree, FactsSayWhetherTypesAreOnlyInTheirAttributes) {
    for (const char* text : {
             "<a type='StringPtr' value='x &lt;&amp;&gt;&quot;'/>",
             "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>\n <b type='StringPtr'/>\n</a>",
             "<a value='\xC3\xA9\xE2\x82\xAC'/>",
             "<a typed='StringPtr' Type='StringPtr'/>",
             "<a value='a&#9;b&#10;c&#13;d'/>",
         })
        EXPECT_TRUE(factsOf(text).showsTypes) << text;
    for (const char* text : {
             "<a mytype='StringPtr'/>",
             "<a>type=\"StringPtr\"</a>",
             "<a value='\x7F'/>",
             "<a value='\x7F and many more characters than are shared'/>",
             "<a value='\xF0\x9F\x98\x80'/>",
             "<a value='\xC2\x85'/>",
             "<a><!-- type=\"StringPtr\" --></a>",
             "<p:a type='StringPtr'/>",
         })
        EXPECT_FALSE(factsOf(text).showsTypes) << text;
}

} // namespace
