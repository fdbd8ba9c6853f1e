// Parsing of XML text that is stored in a document, with a limit of its depth.

#include "Archive/Internal/XmlText.h"

#include <gtest/gtest.h>

#include <QDomDocument>
#include <QStringList>

namespace {

QString nested(int depth) {
    return QStringLiteral("<a>").repeated(depth) + QStringLiteral("</a>").repeated(depth);
}

TEST(XmlText, NestingIsBounded) {
    QDomDocument document;
    Archive::Internal::parseXml(document, nested(1000));
    EXPECT_FALSE(document.documentElement().isNull());
    Archive::Internal::parseXml(document, nested(1001));
    EXPECT_TRUE(document.documentElement().isNull());
    Archive::Internal::parseXml(document, QStringLiteral("<a>") + QStringLiteral("<b></b>").repeated(2000) +
                                              QStringLiteral("</a>"));
    EXPECT_FALSE(document.documentElement().isNull());
}

TEST(XmlText, OfABrokenTextThePartBeforeTheErrorIsKept) {
    const auto childrenOf = [](const char* text) {
        QDomDocument document;
        Archive::Internal::parseXml(document, QStringLiteral("<old/>"));
        Archive::Internal::parseXml(document, QString::fromLatin1(text));
        QStringList children;
        for (QDomElement e = document.documentElement().firstChildElement(); !e.isNull();
             e = e.nextSiblingElement())
            children.append(e.tagName());
        return document.documentElement().tagName() + ':' + children.join(',');
    };
    EXPECT_EQ(childrenOf("<a><b/><c/></a>").toStdString(), "a:b,c");
    EXPECT_EQ(childrenOf("<a><b/><c/>").toStdString(), "a:b,c");
    EXPECT_EQ(childrenOf("<a><b/></c></a>").toStdString(), "a:b");
    EXPECT_EQ(childrenOf("<a><b/></a>text").toStdString(), "a:b");
    EXPECT_EQ(childrenOf("<a>&<b/></a>").toStdString(), "a:");
    EXPECT_EQ(childrenOf("text").toStdString(), ":");
    EXPECT_EQ(childrenOf("").toStdString(), ":");
}

} // namespace
