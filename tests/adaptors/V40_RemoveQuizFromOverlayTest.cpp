// What the case files can't show of the step to version 40: a question text that nests very deeply, and many
// quizzes.

#include "Adaptors/Project/V40_RemoveQuizFromOverlayAdaptor.h"
#include "Archive/Internal/XmlText.h"
#include "support/Log.h"

#include <gtest/gtest.h>

#include <QDomDocument>

namespace {

QString nested(int depth) {
    return QStringLiteral("<a>").repeated(depth) + QStringLiteral("</a>").repeated(depth);
}

/// A clip and its quiz preset of one question.
QString quizClip(int clipId, int presetId, const QString& text) {
    return QStringLiteral(
               "<RootObject type='Timeline::Clip' objectId='%1'><type value='32'/><overlay value='%2'/>"
               "</RootObject><RootObject type='Overlay::Preset' objectId='%2'><type value='4'/>"
               "<items><Item><Data type='Overlay::Item'><text value=\"%3\"/></Data></Item></items>"
               "</RootObject>")
        .arg(clipId)
        .arg(presetId)
        .arg(text.toHtmlEscaped());
}

QString archive(const QString& objects) {
    return QStringLiteral("<Archive><RootObject type='Predeclarator'><predeclarations/></RootObject>") +
           objects + QStringLiteral("</Archive>");
}

TEST(V40RemoveQuizFromOverlay, TextThatNestsVeryDeeplyHasNoQuestion) {
    const QString text = QStringLiteral("<Archive><RootObject type='Quiz::Question'/>") + nested(200'000) +
                         QStringLiteral("</Archive>");
    QDomDocument document;
    ASSERT_TRUE(document.setContent(archive(quizClip(2, 3, text))));
    const Tests::Log log;
    Project::V40_RemoveQuizFromOverlayAdaptor().adapt(document);
    EXPECT_EQ(log.lines(), std::vector<std::string>{"ERROR Quiz question not found"});
}

TEST(V40RemoveQuizFromOverlay, EachOfManyClipsGetsItsQuiz) {
    constexpr int clips = 3'000;
    QString objects;
    for (int i = 0; i < clips; ++i)
        objects += quizClip(2 * i + 2, 2 * i + 3, QStringLiteral("<RootObject type='Quiz::Question'/>"));
    QDomDocument document;
    ASSERT_TRUE(document.setContent(archive(objects)));
    Project::V40_RemoveQuizFromOverlayAdaptor().adapt(document);
    const QDomElement records =
        document.documentElement().firstChildElement().firstChildElement(QStringLiteral("predeclarations"));
    EXPECT_EQ(records.attribute(QStringLiteral("size")).toInt(), 2 * clips);
    EXPECT_EQ(document.elementsByTagName(QStringLiteral("questions")).length(), clips);
}

TEST(XmlText, NestingIsBounded) {
    QDomDocument document;
    EXPECT_TRUE(Archive::Internal::parseXml(document, nested(1000)));
    EXPECT_FALSE(document.documentElement().isNull());
    EXPECT_FALSE(Archive::Internal::parseXml(document, nested(1001)));
    EXPECT_TRUE(document.documentElement().isNull());
    EXPECT_TRUE(Archive::Internal::parseXml(
        document, QStringLiteral("<a>") + QStringLiteral("<b></b>").repeated(2000) + QStringLiteral("</a>")));
}

TEST(XmlText, WhatIsNoXmlGivesAnEmptyDocument) {
    QDomDocument document;
    for (const char* text : {"", "text", "<a>", "<a></b>"}) {
        EXPECT_FALSE(Archive::Internal::parseXml(document, QString::fromLatin1(text))) << text;
        EXPECT_TRUE(document.firstChild().isNull()) << text;
    }
}

} // namespace
