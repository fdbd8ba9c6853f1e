// The step changes the tree if that gives the same result as changing its text: the results are compared.

#include "Adaptors/Project/V44_StringPtrToStringAdaptor.h"
#include "support/Compare.h"
#include "support/Documents.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

namespace {

/// The change as the format defines it, on the text.
void changeText(QDomDocument& document) {
    QString text = document.toString(1);
    text.replace(QRegularExpression("type\\s*=\\s*\"StringPtr\""), "type=\"String\"");
    document.setContent(text);
}

class StringPtrText : public testing::TestWithParam<const char*> {};

TEST_P(StringPtrText, IsTheSameAsOnTheText) {
    QDomDocument expected = Tests::xml(GetParam());
    QDomDocument document = Tests::xml(GetParam());
    changeText(expected);
    Project::V44_StringPtrToStringAdaptor().adapt(document);
    EXPECT_EQ(Tests::difference(expected, document), "");
    EXPECT_EQ(expected.toString(1).size(), document.toString(1).size());
}

INSTANTIATE_TEST_SUITE_P(
    Documents, StringPtrText,
    testing::Values(
        "<Archive><a type=\"StringPtr\" value=\"x\" isNull=\"0\"/></Archive>",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Archive><a type=\"StringPtr\"/></Archive>",
        "<?xml version='1.0'?><Archive><a type='StringPtr'/></Archive>",
        "<?xml version='1.0' standalone='yes'?><Archive><a type='StringPtr'/></Archive>",
        "<Archive><a mytype=\"StringPtr\" type=\"StringPtr \" typed=\"StringPtr\" "
        "Type=\"StringPtr\"/></Archive>",
        "<Archive><a value=\"type=&quot;StringPtr&quot;\" type=\"string\"/></Archive>",
        "<Archive><a type=\"StringPtr\" value=\"&lt;&amp;&gt;'&quot;\"/><b type=\"StringPtr\"><c "
        "type=\"StringPtr\"/></b></Archive>",
        "<Archive><a type=\"StringPtr\" value=\"\xC3\xA9\xE2\x82\xAC\xE4\xB8\xAD\"/></Archive>",
        "<?xml version='1.0' encoding='UTF-8'?><Archive><a type=\"StringPtr\" "
        "value=\"\xC3\xA9\xE2\x82\xAC\"/></Archive>",
        "<Archive><a type=\"StringPtr\" value=\"\xF0\x9F\x98\x80\"/></Archive>",
        "<Archive><a type=\"StringPtr\" value=\"a&#10;b&#9;c&#13;d\"/></Archive>",
        "<Archive><a type=\"StringPtr\" value=\"&#13;&#10;&#13;&#13;&#10;&#10;&#9;&#9;\"/></Archive>",
        "<Archive><a type=\"StringPtr\" value=\"&#9;\"/><b type=\"StringPtr\" "
        "value=\"x&#10;\"/></Archive>",
        "<Archive><a type=\"StringPtr\" value=\"  two  blanks  \"/></Archive>",
        "<Archive><a>type=\"StringPtr\"</a><b type=\"StringPtr\"/></Archive>",
        "<Archive><!-- type=\"StringPtr\" --><b type=\"StringPtr\"/></Archive>",
        "<!-- first --><Archive><b type=\"StringPtr\"/></Archive>",
        "<Archive><x:b x:type=\"StringPtr\"/></Archive>",
        "<Archive xmlns=\"urn:a\"><b type=\"StringPtr\"/></Archive>"));

TEST(StringPtrText, LosesWhatTheTextCantRepresent) {
    const auto make = [] {
        QDomDocument document = Tests::xml("<Archive><a type=\"StringPtr\"/></Archive>");
        document.documentElement().setAttribute("note", QString(QChar(0x1)));
        return document;
    };
    QDomDocument expected = make();
    QDomDocument document = make();
    changeText(expected);
    Project::V44_StringPtrToStringAdaptor().adapt(document);
    EXPECT_EQ(expected.toString(1), document.toString(1));
}

TEST(StringPtrText, NamespaceOfAnElementBecomesAnAttribute) {
    const auto make = [] {
        QDomDocument document = Tests::xml("<Archive/>");
        QDomElement e = document.createElementNS("urn:a", "b");
        e.setAttribute("type", "StringPtr");
        document.documentElement().appendChild(e);
        return document;
    };
    QDomDocument expected = make();
    QDomDocument document = make();
    changeText(expected);
    Project::V44_StringPtrToStringAdaptor().adapt(document);
    EXPECT_EQ(Tests::difference(expected, document), "");
}

} // namespace
