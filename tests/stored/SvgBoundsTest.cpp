// Unusual but harmless drawings, which no bound may refuse. SvgHostileTest.cpp has their harmful
// counterparts.

#include "Stored/V21/Internal/PointReferences.h"
#include "Stored/V21/SvgImage.h"
#include "support/Log.h"
#include "support/Svg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QThread>

#include <random>

using namespace Stored::V21;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Tests::leaf;

namespace {

/// The result text of a drawing; fails if anything is logged.
QString taken(const QString& text) {
    const Tests::Log log;
    QString result = SvgImage(text).toString();
    EXPECT_THAT(log.lines(), IsEmpty());
    return result;
}

// Entities.

TEST(SvgBounds, AnEntityWithEscapesMayBeUsedOften) {
    EXPECT_EQ(taken("<!DOCTYPE svg [<!ENTITY e \"A &amp; B\">]><svg>" +
                    QString("<text>&e;</text>").repeated(66) + "</svg>"),
              "<!DOCTYPE svg>\n<svg>\n" + QString(" <text>A &amp; B</text>\n").repeated(66) + "</svg>\n");
}

TEST(SvgBounds, AnEntityThatNamesAnotherMayBeUsedOften) {
    EXPECT_EQ(taken("<!DOCTYPE svg [<!ENTITY a \"#ff0000\"><!ENTITY st0 \"fill:&a;\">]><svg>" +
                    QString("<g style=\"&st0;\"/>").repeated(66) + "</svg>"),
              "<!DOCTYPE svg>\n<svg>\n" + QString(" <g style=\"fill:#ff0000\"/>\n").repeated(66) +
                  "</svg>\n");
}

TEST(SvgBounds, AnEntityMayNameOneThatIsDeclaredLater) {
    EXPECT_EQ(taken("<!DOCTYPE svg [<!ENTITY st0 \"fill:&a;\"><!ENTITY a \"red\">]><svg>" +
                    QString("<g style=\"&st0;\"/>").repeated(1000) + "</svg>"),
              "<!DOCTYPE svg>\n<svg>\n" + QString(" <g style=\"fill:red\"/>\n").repeated(1000) + "</svg>\n");
}

TEST(SvgBounds, AnEntityMayNameOthersByCharactersThatAreEscaped) {
    // "&#38;" becomes "&" when the entity is declared.
    EXPECT_EQ(taken("<!DOCTYPE svg [<!ENTITY a \"red\"><!ENTITY b \"&#38;a;\">]><svg>" +
                    QString("<g id=\"&b;\"/>").repeated(100) + "</svg>"),
              "<!DOCTYPE svg>\n<svg>\n" + QString(" <g id=\"red\"/>\n").repeated(100) + "</svg>\n");
}

TEST(SvgBounds, EntitiesMayBeNested) {
    // Each of 900 entities names the previous one, so the last one expands to the text of the first.
    QString text = "<!DOCTYPE svg [<!ENTITY e0 'x'>";
    for (int number = 1; number < 900; ++number)
        text += QString("<!ENTITY e%1 '&e%2;'>").arg(number).arg(number - 1);
    EXPECT_EQ(taken(text + "]><svg>" + QString("<g id='&e899;'/>").repeated(50) + "</svg>"),
              "<!DOCTYPE svg>\n<svg>\n" + QString(" <g id=\"x\"/>\n").repeated(50) + "</svg>\n");
}

TEST(SvgBounds, ALongEntityMayBeUsedMoreThanOnce) {
    // An image in a drawing, as a megabyte of text.
    const QString image = "data:image/png;base64," + QString(1'000'000, 'A');
    EXPECT_EQ(taken("<!DOCTYPE svg [<!ENTITY i '" + image +
                    "'>]><svg><image xlink:href='&i;'/><image "
                    "xlink:href='&i;'/></svg>"),
              "<!DOCTYPE svg>\n<svg>\n" + (" <image xlink:href=\"" + image + "\"/>\n").repeated(2) +
                  "</svg>\n");
}

TEST(SvgBounds, ParameterEntitiesMayBeUnused) {
    EXPECT_EQ(taken("<!DOCTYPE svg [<!ENTITY % p \"ignored\"><!ENTITY e \"v\">]><svg a=\"&e;\"/>"),
              "<!DOCTYPE svg>\n<svg a=\"v\"/>\n");
    // Qt keeps the declaration of an entity in an external file.
    EXPECT_TRUE(taken("<!DOCTYPE svg [<!ENTITY % p SYSTEM \"p.ent\"><!ENTITY e \"v\">]><svg a=\"&e;\"/>")
                    .endsWith("]>\n<svg a=\"v\"/>\n"));
}

TEST(SvgBounds, ParameterEntitiesAreFilledIntoEntities) {
    EXPECT_EQ(taken("<!DOCTYPE svg [<!ENTITY % p 'x'><!ENTITY a '%p;%p;'>]><svg>&a;</svg>"),
              "<!DOCTYPE svg>\n<svg>xx</svg>\n");
    EXPECT_EQ(
        taken("<!DOCTYPE svg [<!ENTITY % p 'x'><!ENTITY % q '(%p;)'><!ENTITY a '%q;%q;'>]><svg>&a;</svg>"),
        "<!DOCTYPE svg>\n<svg>(x)(x)</svg>\n");
}

TEST(SvgBounds, ParameterEntitiesMayContainDeclarations) {
    EXPECT_EQ(taken("<!DOCTYPE svg [<!ENTITY % d \"<!ENTITY e 'v'>\"> %d; ]><svg a=\"&e;\"/>"),
              "<!DOCTYPE svg>\n<svg a=\"v\"/>\n");
    EXPECT_EQ(taken("<!DOCTYPE svg [<!ENTITY % d \"&#60;!ENTITY e 'v'><!ELEMENT svg (a|(b,c)*)>\"> %d; "
                    "]><svg a=\"&e;\"/>"),
              "<!DOCTYPE svg>\n<svg a=\"v\"/>\n");
    // One declares another, which declares an entity: "&#37;" becomes "%" when it is declared.
    EXPECT_EQ(taken("<!DOCTYPE svg [<!ENTITY % p \"<!ENTITY e 'v'>\"><!ENTITY % q '&#37;p;'> %q; ]><svg "
                    "a=\"&e;\"/>"),
              "<!DOCTYPE svg>\n<svg a=\"v\"/>\n");
}

TEST(SvgBounds, PercentSignsAreNoReferences) {
    EXPECT_EQ(taken("<!DOCTYPE svg [<!ENTITY % p \"ignored\">]><svg width=\"50%\"><text>% p;</text></svg>"),
              "<!DOCTYPE svg>\n<svg width=\"50%\">\n <text>% p;</text>\n</svg>\n");
}

int durationOf(const QString& documentType, const QString& attributes = "dur='1s'") {
    return SvgDocument("<!DOCTYPE svg [" + documentType +
                       "]><svg><animateColor attributeName='fill' from='red' to='blue' begin='0s' " +
                       attributes + "/></svg>")
        .durationMs();
}

TEST(SvgBounds, EntitiesMayContainTheTiming) {
    EXPECT_EQ(durationOf("<!ENTITY d '2s'>", "dur='&d;'"), 2000);
    EXPECT_EQ(durationOf("<!ENTITY d '&two;s'><!ENTITY two '2'>", "dur='&d;'"), 2000);
}

TEST(SvgBounds, AHarmlessDocumentTypeDoesNotChangeTheTiming) {
    EXPECT_EQ(durationOf("<!ENTITY % p 'ignored'>"), 1000);
    EXPECT_EQ(durationOf("<!ENTITY a '&b;'><!ENTITY b '&a;'>"), 1000); // a cycle that is not used
    EXPECT_EQ(durationOf("<!ATTLIST svg a CDATA 'a &amp; b &#38; c'><!ENTITY e 'v'>"), 1000);
    QString chain = "<!ENTITY e0 'x'>";
    for (int number = 1; number < 900; ++number)
        chain += QString("<!ENTITY e%1 '&e%2;'>").arg(number).arg(number - 1);
    EXPECT_EQ(durationOf(chain), 1000);
}

// Depth.

TEST(SvgBounds, AThousandLevels) {
    // In a thread with less stack than the default of any system.
    class Thread : public QThread {
    public:
        void run() override {
            const int depth = 1000;
            QString expected;
            for (int level = 0; level < depth; ++level)
                expected += QString(level, ' ') + (level == 0          ? "<svg>\n"
                                                   : level + 1 < depth ? "<g>\n"
                                                                       : "<g/>\n");
            for (int level = depth - 2; level >= 0; --level)
                expected += QString(level, ' ') + (level == 0 ? "</svg>\n" : "</g>\n");
            EXPECT_EQ(taken("<svg>" + QString("<g>").repeated(depth - 1) +
                            QString("</g>").repeated(depth - 1) + "</svg>"),
                      expected);
            EXPECT_EQ(taken("<!DOCTYPE svg [<!ELEMENT svg " + QString("(").repeated(depth) + "b" +
                            QString(")").repeated(depth) + ">]><svg/>"),
                      "<!DOCTYPE svg>\n<svg/>\n");
        }
    } thread;
    thread.setStackSize(512 * 1024);
    thread.start();
    thread.wait();
}

TEST(SvgBounds, PositionsAtGreatDepth) {
    // The path leads through first children only, except at every hundredth level.
    QString text = "<svg>";
    QList<int> path;
    QString key;
    for (int level = 1; level < 900; ++level) {
        text += level % 100 == 0 ? QString("<b/>").repeated(12) + "<g>" : "<g>";
        path.append(level % 100 == 0 ? 12 : 0);
        key += QString::number(path.back());
    }
    const SvgImage image(text + "<rect fill='red'/>" + QString("</g>").repeated(899) + "</svg>");
    const auto& fills = image.document()->adjustable().at("fill");
    ASSERT_THAT(fills, SizeIs(1));
    path.append(0);
    EXPECT_EQ(fills[0]->element.path, path);
    EXPECT_EQ(fills[0]->element.pathKey, key + "0");
}

// Adjustable points.

QString pointed(int points) {
    QString text = "<svg>";
    for (int number = 0; number < points; ++number)
        text += QString("<adjustablePoint id='p%1q' posX='%1' posY='7'/><line><animate attributeName='x' "
                        "values='p%1q.posX;p%1q.posY'/></line>")
                    .arg(number);
    return text;
}

void expectFilledIn(const SvgDocument& document, int points) {
    ASSERT_THAT(document.animations(), SizeIs(points));
    for (int number = 0; number < points; ++number) {
        const auto* point =
            leaf<AnimatableAttributeAdjustablePoint>(document.animations()[static_cast<std::size_t>(number)]);
        ASSERT_TRUE(point);
        const auto* inner = leaf<AnimatableAttributeFloat>(point->inner);
        ASSERT_TRUE(inner) << number;
        EXPECT_THAT(inner->values, ElementsAre(number, 7));
    }
}

TEST(SvgBounds, ThousandsOfPointsInAMegabyte) {
    for (const int points : {150, 300, 5000}) {
        const Tests::Log log;
        const SvgDocument document(pointed(points) + "<desc>" + QString(500'000, 'x') + "</desc></svg>");
        expectFilledIn(document, points);
        EXPECT_THAT(log.lines(), IsEmpty()) << points;
    }
}

TEST(SvgBounds, SomePointsMayNameOthers) {
    // The position of one names the next one, and so on for 100 more.
    QString text = pointed(1000);
    for (int number = 0; number < 100; ++number)
        text.replace(QString("posX='%1'").arg(number), QString("posX='p%1q.posX'").arg(number + 100));
    const Tests::Log log;
    const SvgDocument document(text + "<desc>" + QString(500'000, 'x') + "</desc></svg>");
    EXPECT_THAT(log.lines(), IsEmpty());
    ASSERT_THAT(document.animations(), SizeIs(1000));
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations()[3]);
    EXPECT_THAT(leaf<AnimatableAttributeFloat>(point->inner)->values, ElementsAre(103, 7));
}

TEST(SvgBounds, PointsThatAreNotNamedAreHarmless) {
    // 20,000 points, none of which is named.
    QString text = "<svg>";
    for (int number = 0; number < 20000; ++number)
        text += QString("<adjustablePoint id='a%1' posX='%1' posY='1'/>").arg(number);
    const Tests::Log log;
    const SvgDocument document(text + "<line><animate attributeName='x1' values='b.posX;2'/></line></svg>");
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    ASSERT_TRUE(point);
    EXPECT_THAT(leaf<AnimatableAttributeFloatList>(point->inner)->valueCount, 0);
    EXPECT_THAT(log.lines(), IsEmpty());
}

/// Replaces point after point, X before Y, each in the result of the previous ones.
QByteArray replacedOneByOne(QByteArray text, const std::vector<Internal::Point>& points) {
    for (const Internal::Point& point : points) {
        text.replace(point.id + ".posX", point.x);
        text.replace(point.id + ".posY", point.y);
    }
    return text;
}

TEST(SvgPointReferences, AreReplacedAsIfOneByOne) {
    const std::vector<QByteArray> many = {"a",  "b",  "X",      "Y",      ".",     "p",    "po",
                                          "os", "sX", ".pos",   ".posX",  ".posY", "posX", " ",
                                          "1",  "ba", "a.posX", "b.posY", ""};
    const std::vector<QByteArray> few = {"a", "b", ".posX", ".posY"};
    std::mt19937 random(1); // the same numbers on every run
    const auto make = [&](const std::vector<QByteArray>& pieces, int least, int most) {
        QByteArray made;
        const int count = least + static_cast<int>(random() % static_cast<unsigned>(most - least + 1));
        for (int number = 0; number < count; ++number)
            made += pieces[random() % pieces.size()];
        return made;
    };
    int changed = 0;
    int nested = 0;
    for (int round = 0; round < 200'000; ++round) {
        const std::vector<QByteArray>& pieces = round % 2 == 0 ? many : few;
        std::vector<Internal::Point> points;
        for (unsigned number = 0; number < 1 + random() % 4; ++number) {
            const QByteArray id = make(pieces, 1, 3);
            points.push_back({id.isEmpty() ? "a" : id, make(pieces, 0, 2), make(pieces, 0, 2)});
        }
        const QByteArray text = make(pieces, 0, 12);
        const QByteArray expected = replacedOneByOne(text, points);
        const std::optional<QByteArray> filledIn = Internal::withPointsFilledIn(text, points);
        ASSERT_TRUE(filledIn);
        ASSERT_EQ(*filledIn, expected) << "round " << round << ": " << text.constData();
        changed += expected != text;
        // If the order of the points matters, one has inserted a reference that another one replaced.
        nested += replacedOneByOne(text, {points.rbegin(), points.rend()}) != expected;
    }
    EXPECT_GT(changed, 10'000);
    EXPECT_GT(nested, 1'000);
}

TEST(SvgPointReferences, MayBeCreatedByInsertedValues) {
    const auto filledIn = [](const QByteArray& text, const QByteArray& valueOfA) {
        return Internal::withPointsFilledIn(text, {{"a", valueOfA, "1"}, {"b", "7", "8"}})
            .value_or("nothing");
    };
    EXPECT_EQ(filledIn("b.poa.posXsX", ""), "7");
    EXPECT_EQ(filledIn("b.pa.posXsX", "o"), "7");
    EXPECT_EQ(filledIn("b.poa.posX", "sX"), "7");
    EXPECT_EQ(filledIn("a.posXsY", "b.po"), "8");
    EXPECT_EQ(filledIn("a.posXposX", "b."), "7");
    EXPECT_EQ(filledIn("a.posX.posY", "b"), "8");
    EXPECT_EQ(filledIn("a.posX", "b.posX b.posY a.posX"), "7 8 a.posX"); // "a" was replaced before
}

TEST(SvgPointReferences, MayMakeATextLargerWithinBounds) {
    const auto doubledPerPoint = [](int count) {
        std::vector<Internal::Point> points;
        for (int number = 0; number < count; ++number) {
            const QByteArray next = "a" + QByteArray::number(number + 1) + ".posX";
            points.push_back({"a" + QByteArray::number(number), next + next, "1"});
        }
        return Internal::withPointsFilledIn("a0.posX", points);
    };
    const std::optional<QByteArray> filledIn = doubledPerPoint(16);
    ASSERT_TRUE(filledIn);
    EXPECT_EQ(*filledIn, QByteArray("a16.posX").repeated(65536));
    EXPECT_FALSE(doubledPerPoint(20)); // a million names
}

TEST(SvgPointReferences, AreComparedInBoundedTime) {
    const QByteArray endings = QByteArray(".posX").repeated(100'000);
    EXPECT_FALSE(Internal::withPointsFilledIn(endings, {{"b" + endings, "1", "1"}}));
    EXPECT_EQ(Internal::withPointsFilledIn("a.posX" + endings, {{"a", "1", "1"}, {"c", "1", "1"}}),
              "1" + endings);
}

} // namespace
