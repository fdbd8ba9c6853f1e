// The greatest object id: scanning a text for it, and searching the tree, which must give the same as
// scanning the written text, for any tree.

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Xml.h"
#include "support/Documents.h"

#include <gtest/gtest.h>

#include <QDomDocument>

#include <limits>
#include <random>

namespace {

using Tests::xml;

constexpr long long maxLong = std::numeric_limits<long long>::max();

TEST(MaxObjectId, StartsAtOne) {
    EXPECT_EQ(Archive::getMaxObjectId({}), 1);
    EXPECT_EQ(Archive::getMaxObjectId("<a b='7'/>"), 1);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='0'/>"), 1);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='-5'/>"), 1);
    EXPECT_EQ(Archive::getMaxObjectId("no xml"), 1);
}

TEST(MaxObjectId, ReadsObjectIdOfEveryElement) {
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='3'><b><c objectId='12'/></b><d objectId='5'/></a>"), 12);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='3' oid='90'><oid value='91'/><poid value='92'/></a>"), 3);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectid='9' ObjectId='9' objectIds='9'/>"), 1);
    EXPECT_EQ(Archive::getMaxObjectId("<a xmlns:x='urn:x' x:objectId='9' objectId='4'/>"), 4);
    EXPECT_EQ(
        Archive::getMaxObjectId("<a><!-- <b objectId='9'/> --><![CDATA[<b objectId='9'/>]]>objectId='9'</a>"),
        1);
}

TEST(MaxObjectId, WhatIsNoNumberChangesNothing) {
    EXPECT_EQ(
        Archive::getMaxObjectId("<a objectId='4'><b objectId='abc'/><b objectId='9x'/><b objectId=''/></a>"),
        4);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='4'><b objectId='9223372036854775808'/></a>"), 4);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='4'><b objectId='9223372036854775807'/></a>"), maxLong);
}

TEST(MaxObjectId, StopsAtTheFirstError) {
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='4'><b objectId='5'></a><c objectId='6'/>"), 5);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='4'/><b objectId='5'/>"), 4);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='4'><x:b objectId='5'/><c objectId='6'/></a>"), 4);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='4'><b objectId='5'"), 4);
}

/// Searching the tree must give the same as scanning the text.
void expectSame(const QDomDocument& document, const std::string& what) {
    const QByteArray text = document.toByteArray(1);
    EXPECT_EQ(Archive::Internal::ArchiveEditor(document).greatestId(), Archive::getMaxObjectId(text))
        << what << '\n'
        << text.left(2000).toStdString();
}

QDomDocument sample() {
    return xml("<a objectId='5'><b objectId='6'/></a>");
}

TEST(MaxObjectId, TreeAndTextAgreeOnParsedDocuments) {
    const char* const texts[] = {
        "<a/>",
        "<a objectId='5'><b objectId='9'/></a>",
        "<?xml version='1.0'?><a objectId='5'/>",
        "<?xml version='1.0' encoding='UTF-8'?><a objectId='5'/>",
        "<?xml version='1.0' encoding='utf-8' standalone='yes'?><a objectId='5'/>",
        "<?xml version='1.0' encoding='ISO-8859-1'?><a objectId='5' n='\xe4'/>",
        "<?xml version='1.1'?><a objectId='5'/>",
        "<!DOCTYPE a><a objectId='5'/>",
        "<!DOCTYPE a [<!ENTITY e 'x'>]><a objectId='5'>&e;<b objectId='6'/></a>",
        "<!-- first --><a objectId='5'><!-- in --><b objectId='6'/></a><!-- last -->",
        "<a objectId='5'><![CDATA[ <x> ]]><b objectId='6'/></a>",
        "<a objectId='5'><?target data?><b objectId='6'/></a>",
        "<?target data?><a objectId='5'/>",
        "<x:a objectId='5'><b objectId='6'/></x:a>",
        "<a objectId='5'><x:b objectId='6'/><c objectId='7'/></a>",
        "<a xmlns:x='urn:x' objectId='5'><x:b x:objectId='60' objectId='6'/><c objectId='7'/></a>",
        "<a x:objectId='9' objectId='5'><c objectId='7'/></a>",
        "<a objectId='5' n='&#1;'><b objectId='6'/></a>",
        "<a objectId='5' n='&#9;&#10;&#13;'><b objectId='6'/></a>",
        "<a objectId='5' n='\xf0\x9f\x8e\xac'><b objectId='6'>\xf0\x9f\x8e\xac</b></a>",
        "<a objectId='5' n='&#xFFFE;'><b objectId='6'/></a>",
        "<a objectId='5' n='&lt;&amp;&quot;&gt;'><b objectId='6'>]]&gt;</b></a>",
        "<a objectId='&#32;5 '><b objectId='&#9;6&#10;'/></a>",
        "<a objectId='9223372036854775807'><b objectId='9223372036854775808'/></a>",
        "<a objectId='18446744073709551615'/>",
        "<\xc3\xa4 objectId='5'><b \xc3\xb6='1' objectId='6'/></\xc3\xa4>",
        "<a xml:space='preserve' objectId='5'><b objectId='6'/></a>",
        "<a xmlns='urn:a' objectId='5'><b objectId='6'/></a>",
        "<xmlish objectId='5'><b objectId='6'/></xmlish>",
        "<a objectId='5'>text<b objectId='6'/>more &#x85; text</a>",
    };
    for (const char* text : texts) {
        QDomDocument document;
        if (document.setContent(QByteArray(text)))
            expectSame(document, text);
        else
            ADD_FAILURE() << "not read: " << text;
    }
}

TEST(MaxObjectId, TreeAndTextAgreeOnContentThatOnlyTheDomCanHave) {
    const auto document = [] { return xml("<a objectId='5'><b objectId='6'/></a>"); };
    // Texts that no parser gives, but that a step may set.
    for (const int unit : {0x0, 0x1, 0x8, 0xB, 0x1F, 0x7F, 0x85, 0xD800, 0xDC00, 0xFFFD, 0xFFFE, 0xFFFF}) {
        QDomDocument inAttribute = document();
        inAttribute.documentElement().setAttribute("n",
                                                   QString("x") + QChar(static_cast<ushort>(unit)) + "y");
        expectSame(inAttribute, "attribute with " + std::to_string(unit));
        QDomDocument inText = document();
        inText.documentElement().insertBefore(
            inText.createTextNode(QString("x") + QChar(static_cast<ushort>(unit))),
            inText.documentElement().firstChild());
        expectSame(inText, "text with " + std::to_string(unit));
    }
    for (const char* name :
         {"n:m", ":n", "n:", "xmlns:n", "xmlns", "xml:n", "1n", "n m", "", "n=\"1\" m", "\xc3\xb6"}) {
        QDomDocument withAttribute = document();
        withAttribute.documentElement().setAttribute(QString::fromUtf8(name), "1");
        expectSame(withAttribute, std::string("attribute named ") + name);
        QDomDocument withElement = document();
        QDomElement element = withElement.createElement("other");
        element.setTagName(QString::fromUtf8(name));
        element.setAttribute("objectId", "60");
        withElement.documentElement().insertBefore(element, withElement.documentElement().firstChild());
        expectSame(withElement, std::string("element named ") + name);
    }
}

TEST(MaxObjectId, TreeAndTextAgreeOnSeveralDocumentElementsAndStrayNodes) {
    QDomDocument document = xml("<a objectId='5'><b objectId='6'/></a>");
    QDomElement second = document.createElement("c");
    second.setAttribute("objectId", "70");
    document.appendChild(second);
    expectSame(document, "two document elements");
    document.insertBefore(document.createComment("first"), document.firstChild());
    expectSame(document, "comment first");
    document.documentElement().appendChild(document.createEntityReference("none"));
    expectSame(document, "entity reference");

    expectSame(QDomDocument(), "nothing");
    QDomDocument onlyComment;
    onlyComment.appendChild(onlyComment.createComment("x"));
    expectSame(onlyComment, "only a comment");
}

TEST(MaxObjectId, TreeAndTextAgreeOnDeclarations) {
    for (const char* data : {"version=\"1.0\"", "version='1.0'", "version=\"1.0\" encoding=\"UTF-8\"",
                             "version=\"1.1\"", "version=\"2.0\"", "version=\"1.0\" standalone=\"yes\"",
                             "version=\"1.0\" standalone=\"maybe\"", "encoding=\"UTF-8\"", "",
                             "version=\"1.0\" encoding=\"utf-8x\"", "version=\"1.0\" encoding=\"UTF-16\"",
                             "nonsense", "version=\"1.0\" encoding=\"x\" standalone=\"utf-8\"",
                             "version=\"1.0\" other=\"1\"", "version = \"1.0\" "}) {
        QDomDocument document = xml("<a objectId='5'/>");
        document.insertBefore(document.createProcessingInstruction("xml", data), document.firstChild());
        expectSame(document, std::string("declaration ") + data);
    }
    QDomDocument late = xml("<a objectId='5'><b objectId='6'/></a>");
    late.documentElement().insertBefore(late.createProcessingInstruction("xml", "version=\"1.0\""),
                                        late.documentElement().firstChild());
    expectSame(late, "declaration inside");
}

TEST(MaxObjectId, TheGreatestIdIsSearchedForOnce) {
    QDomDocument document = xml("<a objectId='5'/>");
    Archive::Internal::ArchiveEditor archive(document);
    EXPECT_EQ(archive.nextId(), 6);
    archive.setObjectId(document.documentElement(), 50);
    EXPECT_EQ(archive.nextId(), 7);
    archive.startIds();
    EXPECT_EQ(archive.nextId(), 51);
}

TEST(MaxObjectIdOfTree, TextBesideTheDocumentElementEndsTheScan) {
    for (const QString text : {"x", " ", "", "\n", "]]>", "\t \n"}) {
        QDomDocument before = sample();
        before.insertBefore(before.createTextNode(text), before.documentElement());
        expectSame(before, "before: " + text.toStdString());
        QDomDocument behind = sample();
        behind.appendChild(behind.createTextNode(text));
        expectSame(behind, "behind: " + text.toStdString());
    }
    QDomDocument alone;
    alone.appendChild(alone.createTextNode("x"));
    expectSame(alone, "alone");
}

TEST(MaxObjectIdOfTree, DocumentTypes) {
    for (const char* type :
         {"a", "a SYSTEM 'x.dtd'", "a SYSTEM 'x\"y'", "a PUBLIC 'p' 's'", "a PUBLIC \"it's\" 'x\"y'", "b",
          "a []", "a [<!ENTITY e 'x'>]", "a [<!ENTITY e 'x\"y'>]", "a [<!ENTITY e \"x'y\">]",
          "a [<!ENTITY e SYSTEM 'x\"y'>]", "a [<!NOTATION n SYSTEM 'x\"y'>]",
          "a [<!NOTATION n PUBLIC 'p'><!ENTITY e SYSTEM 's' NDATA n>]", "a [<!ELEMENT a ANY>]",
          "a [<!ATTLIST b objectId CDATA '90'>]", "a [<!ENTITY e '&#38;#60;'>]", "a [<!ENTITY e '%'>]"}) {
        QDomDocument document;
        if (document.setContent("<!DOCTYPE " + QByteArray(type) + "><a objectId='5'><b objectId='6'/></a>"))
            expectSame(document, type);
    }
    for (const QString name : {"a", "1", "a b", "x:y", "a>", "-"}) {
        for (const QString id : {"", "x", "x\"y", "x'y", "x'\"y", "x\ny"}) {
            QDomDocument document(QDomImplementation().createDocumentType(name, id, id));
            QDomElement root = document.createElement("a");
            root.setAttribute("objectId", "5");
            document.appendChild(root);
            expectSame(document, (name + " | " + id).toStdString());
        }
    }
}

TEST(MaxObjectIdOfTree, LongNamesEndTheScan) {
    for (const int length : {100, 1000, 4000, 4090, 4094, 4095, 4096, 4097, 4098, 5000, 70000}) {
        const QString name(length, 'n');
        QDomDocument attribute = sample();
        attribute.documentElement().setAttribute(name, "1");
        expectSame(attribute, "attribute of " + std::to_string(length));
        QDomDocument element = sample();
        QDomElement added = element.createElement(name);
        added.setAttribute("objectId", "50");
        element.documentElement().insertBefore(added, element.documentElement().firstChild());
        expectSame(element, "element of " + std::to_string(length));
    }
}

TEST(MaxObjectIdOfTree, LongTextsDoNotEndTheScan) {
    QDomDocument document = sample();
    document.documentElement().setAttribute("n",
                                            QString(200000, 'x') + QString::fromUtf8("\xf0\x9f\x8e\xac"));
    for (int shift = 0; shift < 4; ++shift) { // a character that is split at the end of a buffer
        QString text(shift, 'x');
        for (int i = 0; i < 40000; ++i)
            text += QString::fromUtf8("\xf0\x9f\x8e\xac");
        document.documentElement().insertBefore(document.createTextNode(text),
                                                document.documentElement().firstChild());
        QDomElement last = document.createElement("c");
        last.setAttribute("n", text);
        last.setAttribute("objectId", 10 + shift);
        document.documentElement().appendChild(last);
        expectSame(document, "shift " + std::to_string(shift));
        EXPECT_EQ(Archive::Internal::ArchiveEditor(document).greatestId(), 10 + shift);
    }
    for (int i = 0; i < 2000; ++i)
        document.documentElement().setAttribute("n" + QString::number(i), "1");
    expectSame(document, "many attributes");
}

TEST(MaxObjectIdOfTree, Namespaces) {
    const char* const texts[] = {
        "<a objectId='5'><b objectId='6'/></a>",
        "<a objectId='5'><x:b xmlns:x='urn:x' x:objectId='60' objectId='6'/><c objectId='7'/></a>",
        "<a xmlns='urn:a' objectId='5'><b objectId='6'><c xmlns='' objectId='7'/></b></a>",
        "<x:a xmlns:x='urn:x' objectId='5'><x:b objectId='6'/></x:a>",
    };
    for (const char* text : texts) {
        expectSame(xml(text), text);
        expectSame(xml(text, true), std::string("processed: ") + text);
    }
    for (const QString& uri :
         {QString(), QString(""), QString("urn:x"), QString("a\"b"), QString(QChar(1))}) {
        for (const QString name : {"objectId", "x:objectId", "n", "x:n"}) {
            QDomDocument attribute = sample();
            attribute.documentElement().firstChildElement().setAttributeNS(uri, name, "40");
            expectSame(attribute, "attribute " + name.toStdString() + " of " + uri.toStdString());
            QDomDocument element = sample();
            QDomElement added = element.createElementNS(uri, name);
            added.setAttribute("objectId", "40");
            element.documentElement().insertBefore(added, element.documentElement().firstChild());
            expectSame(element, "element " + name.toStdString() + " of " + uri.toStdString());
        }
    }
}

TEST(MaxObjectIdOfTree, NumbersAsTextsWriteThem) {
    for (const char* id : {"9",
                           "+9",
                           " 9",
                           "9 ",
                           "&#9;9",
                           "9&#10;",
                           "&#xA0;9",
                           "9&#x2003;",
                           "0x9",
                           "9e1",
                           "9.0",
                           "1,009",
                           "1 009",
                           "-9",
                           "",
                           "009",
                           "&#x665;",
                           "&#xFF19;",
                           "9223372036854775807",
                           "+9223372036854775807",
                           "9223372036854775808",
                           "-9223372036854775809",
                           "99999999999999999999",
                           "9l",
                           "9&#0;"}) {
        QDomDocument document;
        if (!document.setContent("<a objectId='5'><b objectId='" + QByteArray(id) + "'/></a>"))
            continue;
        expectSame(document, id);
    }
}

/// A tree of nodes of all kinds, most of them plain, with texts that a file can't contain.
class RandomTree {
public:
    explicit RandomTree(unsigned seed) : m_random(seed) {}

    QDomDocument make() {
        if (one(6))
            m_document.setContent(
                pick({"<?xml version='1.0'?><a/>", "<?xml version='1.0' encoding='UTF-8'?><a/>",
                      "<?xml version='1.0' encoding='ISO-8859-1'?><a/>", "<!DOCTYPE a [<!ENTITY e 'x'>]><a/>",
                      "<!--c--><a/>"}));
        else
            m_document.appendChild(element());
        QDomElement root = m_document.documentElement();
        decorate(root);
        for (int i = 0; i < 12; ++i)
            addSomewhere();
        return m_document;
    }

private:
    bool one(unsigned in) { return m_random() % in == 0; }

    QString pick(std::initializer_list<const char*> texts) {
        return QString::fromUtf8(texts.begin()[m_random() % texts.size()]);
    }

    QString name() {
        if (!one(40))
            return pick({"a", "b", "Item", "RootObject", "_x", "x-1", "x.y", "a\xc3\xb6", "z9"});
        return pick(
            {"x:y", ":a", "a:", "xmlns", "xmlns:x", "xml:space", "xmlfoo", "1a", "a b", "-a", "", "a=\"1\""});
    }

    QString text() {
        if (!one(40))
            return pick(
                {"", "x", "a b", "<&>\"'", "]]>", "\n", "\t\r\n", "\xc3\xa4", "\xf0\x9f\x8e\xac", "--"});
        static constexpr ushort units[] = {0, 1, 8, 0x1F, 0x7F, 0x85, 0xD800, 0xDFFF, 0xFFFD, 0xFFFE, 0xFFFF};
        return QString("x") + QChar(units[m_random() % std::size(units)]) + "y";
    }

    QDomElement element() {
        QDomElement e = m_document.createElement("a");
        e.setTagName(name());
        decorate(e);
        return e;
    }

    void decorate(QDomElement& e) {
        if (!one(3))
            e.setAttribute("objectId", one(20) ? text() : QString::number(m_random() % 1000));
        if (one(2))
            e.setAttribute(name(), text());
    }

    QDomNode node() {
        switch (m_random() % 60) {
        case 0:
            return m_document.createComment(text());
        case 1:
            return m_document.createProcessingInstruction(name(), text());
        case 2:
            return m_document.createCDATASection(text());
        case 3:
            return m_document.createEntityReference(name());
        case 4:
            return m_document.createProcessingInstruction("xml", "version=\"1.0\"");
        default:
            return one(4) ? static_cast<QDomNode>(m_document.createTextNode(text())) : element();
        }
    }

    void addSomewhere() {
        QDomNode parent = m_document;
        if (!one(60)) {
            parent = m_document.documentElement();
            while (one(2) && !parent.firstChildElement().isNull())
                parent = one(2) ? parent.firstChildElement() : parent.lastChildElement();
        }
        if (one(2))
            parent.appendChild(node());
        else
            parent.insertBefore(node(), parent.firstChild());
    }

    std::mt19937 m_random;
    QDomDocument m_document;
};

TEST(MaxObjectIdOfTree, AgreesOnRandomTrees) {
    for (unsigned seed = 0; seed < 3000 && !HasFailure(); ++seed)
        expectSame(RandomTree(seed).make(), "seed " + std::to_string(seed));
}

} // namespace
