// The step to version 40, where case files are not enough: a deeply nested question text, and many quizzes.

#include "Adaptors/Project/V40_RemoveQuizFromOverlayAdaptor.h"
#include "support/Documents.h"
#include "support/Log.h"

#include <gtest/gtest.h>

#include <QDomDocument>

namespace {

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

QDomDocument archive(const QString& objects) {
    return Tests::archive("<RootObject type='Predeclarator'><predeclarations/></RootObject>" +
                          objects.toStdString());
}

TEST(V40RemoveQuizFromOverlay, TextThatIsNestedVeryDeeplyHasNoQuestion) {
    constexpr int depth = 200'000;
    const QString text = QStringLiteral("<Archive><RootObject type='Quiz::Question'/>") +
                         QStringLiteral("<a>").repeated(depth) + QStringLiteral("</a>").repeated(depth) +
                         QStringLiteral("</Archive>");
    QDomDocument document = archive(quizClip(2, 3, text));
    const Tests::Log log;
    Project::V40_RemoveQuizFromOverlayAdaptor().adapt(document);
    EXPECT_EQ(log.lines(), std::vector<std::string>{"ERROR Quiz question not found"});
}

TEST(V40RemoveQuizFromOverlay, EachOfManyClipsGetsItsQuiz) {
    constexpr int clips = 3'000;
    QString objects;
    for (int i = 0; i < clips; ++i)
        objects += quizClip(2 * i + 2, 2 * i + 3, QStringLiteral("<RootObject type='Quiz::Question'/>"));
    QDomDocument document = archive(objects);
    Project::V40_RemoveQuizFromOverlayAdaptor().adapt(document);
    const QDomElement records =
        document.documentElement().firstChildElement().firstChildElement(QStringLiteral("predeclarations"));
    EXPECT_EQ(records.attribute(QStringLiteral("size")).toInt(), 2 * clips);
    EXPECT_EQ(document.elementsByTagName(QStringLiteral("questions")).length(), clips);
}

TEST(V40RemoveQuizFromOverlay, IdsAfterATextErrorInTheChangedFieldDoNotCount) {
    // XML forbids the vertical tab. A tree can contain it, and the scan for the greatest id stops there.
    QDomDocument document = archive(quizClip(3, 7, QStringLiteral("<RootObject type='Quiz::Question'/>")) +
                                    QStringLiteral("<RootObject type='Timeline::Track' objectId='50'/>"));
    document.elementsByTagName(QStringLiteral("overlay"))
        .item(0)
        .toElement()
        .setAttribute(QStringLiteral("value"), QStringLiteral("7\v"));
    Project::V40_RemoveQuizFromOverlayAdaptor().adapt(document);
    const QDomElement questions = document.elementsByTagName(QStringLiteral("questions")).item(0).toElement();
    EXPECT_EQ(questions.parentNode().toElement().attribute(QStringLiteral("objectId")), QStringLiteral("4"));
    EXPECT_EQ(questions.firstChildElement().firstChildElement().attribute(QStringLiteral("objectId")),
              QStringLiteral("5"));
}

} // namespace
