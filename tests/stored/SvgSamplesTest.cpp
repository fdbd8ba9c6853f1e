// Reads the drawings of tests/stored/svg/ into the model and writes them.

#include "Stored/V21/SvgImage.h"
#include "support/Compare.h"
#include "support/Documents.h"
#include "support/Files.h"
#include "support/Log.h"
#include "support/Paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDomDocument>
#include <QHashFunctions>
#include <QSvgRenderer>

using namespace Stored::V21;
using testing::ElementsAre;

namespace fs = std::filesystem;

namespace {

const fs::path folder = Tests::drawingsFolder();

/// The contents of the drawings, counted by hand.
struct Sample {
    const char* name;
    int durationMs;
    int conclusionMs;
    std::size_t animations;
    std::size_t fills; ///< those that may be changed; likewise strokes
    std::size_t strokes;
    std::size_t stops;
    std::size_t uses;
    std::size_t points;
};

// clang-format off
constexpr Sample samples[] = {
    // name                        duration conclusion animations fills strokes stops uses points
    {"animated-chain",                 5000,    0,         4,         1,    0,      0,    0,   0},
    {"animated-colour",                5000,    0,         1,         2,    1,      0,    0,   0},
    {"animated-opacity",               4000,    0,         3,         1,    0,      0,    0,   0},
    {"animated-transform",             6000,    0,         1,         1,    2,      0,    0,   0},
    {"basic-shapes",                   0,       0,         0,         4,    3,      0,    0,   0},
    {"callout-arrow",                  1500,    0,         3,         1,    2,      0,    0,   2},
    {"clip-path",                      0,       0,         0,         2,    1,      0,    0,   0},
    {"document-type-with-entities",    0,       0,         0,         2,    1,      0,    0,   0},
    {"editor-metadata",                0,       0,         0,         1,    0,      0,    0,   0},
    {"embedded-image",                 2500,    0,         0,         0,    0,      0,    0,   0},
    {"filter-mask-pattern",            0,       0,         0,         2,    0,      2,    0,   0},
    {"linear-gradient",                0,       0,         0,         1,    1,      4,    0,   0},
    {"lower-third-with-conclusion",    10000,   2000,      2,         1,    0,      0,    0,   0},
    {"many-languages",                 0,       0,         0,         3,    0,      0,    0,   0},
    {"nested-groups",                  0,       0,         0,         4,    2,      0,    0,   0},
    {"path-morph",                     4000,    0,         2,         2,    0,      0,    0,   0},
    {"radial-gradient-retained",       0,       0,         0,         0,    1,      2,    0,   0},
    {"retained-parts",                 0,       0,         0,         1,    2,      0,    0,   0},
    {"style-sheet",                    0,       0,         0,         1,    0,      0,    0,   0},
    {"symbol-and-use",                 0,       0,         0,         2,    0,      0,    3,   0},
    {"title-text",                     0,       0,         0,         3,    0,      0,    0,   0},
    {"visibility-in-defs",             0,       0,         0,         1,    0,      0,    4,   0},
};
// clang-format on

QString textOf(const std::string& name) {
    return QString::fromStdString(Tests::readFile(folder / (name + ".svg")));
}

/// Removes the parts that the model may change, so that the rest can be compared.
QDomDocument withoutStyle(QDomDocument dom) {
    QDomElement root = dom.documentElement();
    for (const char* name : {"fill", "stroke", "stroke-width", "fill-opacity", "stroke-opacity"})
        root.removeAttribute(name);
    const QDomNodeList points = dom.elementsByTagName("adjustablePoint");
    for (int number = 0; number < points.length(); ++number) {
        QDomElement point = points.item(number).toElement();
        for (const char* name : {"posX", "posY"}) {
            if (!point.hasAttribute(name))
                point.setAttribute(name, "");
        }
    }
    return dom;
}

bool standsForAnother(const QString& paint) {
    return paint == "none" || paint == "currentColor" || paint == "inherit" || paint.startsWith("url");
}

class SvgSample : public testing::TestWithParam<Sample> {
protected:
    QString text() const { return textOf(GetParam().name); }
};

TEST_P(SvgSample, HasTheCountedContents) {
    const Tests::Log log;
    const SvgImage image(text());
    const SvgDocument& document = *image.document();
    const Sample& sample = GetParam();
    EXPECT_EQ(document.durationMs(), sample.durationMs);
    EXPECT_EQ(document.conclusionMs(), sample.conclusionMs);
    EXPECT_EQ(document.animations().size(), sample.animations);
    EXPECT_EQ(document.animated(), sample.animations > 0);
    EXPECT_EQ(document.adjustable().at("fill").size(), sample.fills);
    EXPECT_EQ(document.adjustable().at("stroke").size(), sample.strokes);
    EXPECT_EQ(document.gradientStops().size(), sample.stops);
    std::size_t uses = 0;
    for (const auto& [id, elements] : document.useElements())
        uses += elements.size();
    EXPECT_EQ(uses, sample.uses);
    EXPECT_EQ(document.adjustablePoints().size(), sample.points);
    EXPECT_THAT(log.lines(), testing::IsEmpty());
}

TEST_P(SvgSample, LastsAtLeastAsLongAsQtSvgSays) {
    QSvgRenderer renderer;
    renderer.setFramesPerSecond(0);
    ASSERT_TRUE(renderer.load(text().toUtf8()));
    const SvgDocument document(text());
    int expected = renderer.animationDuration();
    for (const auto& animation : document.animations())
        expected = std::max(expected, animation->endMs);
    EXPECT_EQ(document.durationMs(), expected);
}

TEST_P(SvgSample, PositionsResolveToTheElements) {
    const SvgImage image(text());
    const QDomElement root = image.document()->dom().documentElement();
    const auto check = [&](const SvgElement& place) {
        const QDomNode node = place.resolve(root);
        ASSERT_TRUE(node.isElement());
        const SvgElement expected(node, root);
        EXPECT_EQ(place.path, expected.path);
        EXPECT_EQ(place.pathKey, expected.pathKey);
        EXPECT_EQ(place.id, expected.id);
        EXPECT_EQ(place.underVisibility, expected.underVisibility);
        EXPECT_EQ(place.underDefs, expected.underDefs);
    };
    for (const auto& [name, attributes] : image.document()->adjustable()) {
        for (const auto& attribute : attributes) {
            check(attribute->element);
            EXPECT_TRUE(attribute->element.resolve(root).toElement().hasAttribute(name));
        }
    }
    for (const auto& [stop, offsets] : image.document()->gradientStops()) {
        check(stop->element);
        EXPECT_EQ(stop->element.resolve(root).nodeName(), "stop");
        EXPECT_EQ(offsets.size(), 3U);
    }
    for (const auto& [id, elements] : image.document()->useElements()) {
        for (const auto& element : elements) {
            check(*element);
            EXPECT_EQ(element->resolve(root).toElement().attribute("xlink:href"), "#" + id);
        }
    }
    for (const auto& animation : image.document()->animations())
        check(animation->element);
}

TEST_P(SvgSample, ChangesOnlyInItsStyle) {
    SvgImage image(text());
    image.setFillColor(QColor("#fedcba"));
    image.setStrokeColor(QColor("#abcdef"));
    const QDomDocument before = Tests::xml(text().toStdString());
    const QDomDocument after = Tests::xml(image.toString().toStdString());
    for (const auto& [name, color] : {std::pair("fill", "#fedcba"), std::pair("stroke", "#abcdef")}) {
        const QString old = before.documentElement().attribute(name, "(none)");
        const bool isKept = standsForAnother(old) || before.documentElement().tagName() != "svg";
        EXPECT_EQ(after.documentElement().attribute(name, "(none)"), isKept ? old : color) << name;
    }
    EXPECT_EQ(Tests::difference(withoutStyle(before), withoutStyle(after)), "");
}

TEST_P(SvgSample, IsTheSameAfterASecondPass) {
    const QString once = SvgImage(text()).toString();
    EXPECT_EQ(SvgImage(once).toString(), once);
}

TEST_P(SvgSample, IsRecolouredInTheLiveDocument) {
    SvgImage image(text());
    image.setFillColor(QColor("#fedcba"));
    image.setStrokeColor(QColor("#abcdef"));
    const QDomElement root = image.document()->dom().documentElement();
    for (const auto& [name, color] : {std::pair("fill", "#fedcba"), std::pair("stroke", "#abcdef")}) {
        for (const auto& attribute : image.document()->adjustable().at(name))
            EXPECT_EQ(attribute->element.resolve(root).toElement().attribute(name), color);
    }
    for (const auto& [stop, offsets] : image.document()->gradientStops())
        EXPECT_TRUE(QColor(stop->element.resolve(root).toElement().attribute("stop-color")).isValid());
    // The text that was saved last is at the start of the buffer.
    if (GetParam().strokes > 0 || GetParam().fills > 0) {
        EXPECT_TRUE(image.document()->content().startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"));
    }
}

TEST_P(SvgSample, IsTheSameOnEveryRun) {
    const QString result = SvgImage(text()).toString();
    const QByteArray content = SvgImage(text()).document()->content();
    for (int run = 0; run < 10; ++run) {
        qSetGlobalQHashSeed(-1);
        const SvgImage image(text());
        EXPECT_EQ(image.toString(), result);
        EXPECT_EQ(image.document()->content(), content);
    }
    qSetGlobalQHashSeed(0);
}

INSTANTIATE_TEST_SUITE_P(Samples, SvgSample, testing::ValuesIn(samples), [](const auto& param) {
    std::string name = param.param.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

TEST(SvgSamples, AreAllListed) {
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator(folder))
        found.push_back(entry.path().stem().string());
    std::sort(found.begin(), found.end());
    std::vector<std::string> listed;
    for (const Sample& sample : samples)
        listed.push_back(sample.name);
    EXPECT_EQ(found, listed);
}

template <class Leaf>
const Leaf& animation(const SvgImage& image, std::size_t number) {
    return dynamic_cast<const Leaf&>(*image.document()->animations().at(number));
}

template <class Leaf>
const Leaf& inner(const SvgImage& image, std::size_t number) {
    return dynamic_cast<const Leaf&>(*animation<AnimatableAttributeAdjustablePoint>(image, number).inner);
}

TEST(SvgSamples, CalloutArrowFollowsItsPoints) {
    SvgImage image(textOf("callout-arrow"));
    EXPECT_THAT(inner<AnimatableAttributeFloat>(image, 0).values, ElementsAre(40.5, 320));
    EXPECT_THAT(inner<AnimatableAttributeFloat>(image, 1).values, ElementsAre(260, 80));
    const auto& path = inner<AnimatableAttributeFloatList>(image, 2);
    ASSERT_EQ(path.values.size(), 2);
    EXPECT_THAT(path.values[0], ElementsAre(40.5, 260, 0, 0));
    EXPECT_THAT(path.values[1], ElementsAre(320, 80, 1, 1));

    image.document()->setAttributeValue("posX", "111", "tip");
    EXPECT_THAT(inner<AnimatableAttributeFloat>(image, 0).values, ElementsAre(40.5, 111));
    const QDomDocument result = Tests::xml(image.toString().toStdString());
    const QDomNodeList points = result.elementsByTagName("adjustablePoint");
    EXPECT_EQ(points.item(0).toElement().attribute("posX"), "111");
    EXPECT_EQ(points.item(0).toElement().attribute("posY"), "80");
    EXPECT_EQ(points.item(1).toElement().attribute("posX"), "40.5");
    EXPECT_EQ(points.item(2).toElement().attribute("posY", "(none)"), "");
}

TEST(SvgSamples, AnimatedChainHasAbsoluteTimes) {
    const SvgImage image(textOf("animated-chain"));
    std::vector<std::pair<int, int>> times;
    for (const auto& each : image.document()->animations())
        times.emplace_back(each->beginMs, each->endMs);
    EXPECT_THAT(times, ElementsAre(std::pair(1000, 3000), std::pair(3500, 4500), std::pair(4500, 5000),
                                   std::pair(750, 1000)));
}

TEST(SvgSamples, AnimatedColourHasColoursAndOneSkippedStroke) {
    const SvgImage image(textOf("animated-colour"));
    EXPECT_THAT(animation<AnimatableAttributeColor>(image, 0).values,
                ElementsAre(QColor(255, 0, 0), QColor(0, 255, 0), QColor(0, 0, 255)));
    EXPECT_EQ(image.document()->adjustable().at("fill")[0]->value, "#102030");
    EXPECT_EQ(image.document()->adjustable().at("fill")[1]->value, "#ff00");
    EXPECT_EQ(image.document()->adjustable().at("stroke")[0]->value, "rgba( 170 , 187 , 204 , 1 )");
    EXPECT_FALSE(image.fill().isValid()); // the text itself still has rgba(16,32,48,1)
}

TEST(SvgSamples, AnimatedOpacityHasItsTiming) {
    const SvgImage image(textOf("animated-opacity"));
    const auto& opacity = animation<AnimatableAttributeFloat>(image, 0);
    EXPECT_THAT(opacity.values, ElementsAre(0, 1));
    EXPECT_TRUE(opacity.freeze);
    const auto& width = animation<AnimatableAttributeFloat>(image, 1);
    EXPECT_EQ(width.repeatCount, 3);
    EXPECT_FALSE(width.interpolated);
    EXPECT_FALSE(width.freeze);
    const auto& visibility = animation<AnimatableAttributeText>(image, 2);
    EXPECT_EQ(visibility.repeatCount, -1);
    EXPECT_EQ(visibility.values, QStringList({"hidden", "visible"}));
}

TEST(SvgSamples, PathMorphHasNumberLists) {
    const SvgImage image(textOf("path-morph"));
    const auto& path = animation<AnimatableAttributeFloatList>(image, 0);
    ASSERT_EQ(path.valueCount, 3);
    EXPECT_THAT(path.values[1], ElementsAre(10, 5, 20, 5, 25, 25));
    EXPECT_THAT(path.separators, ElementsAre("M", " ", " L", " ", " L", " ", " Z"));
    EXPECT_FALSE(path.startsWithNumber);
    const auto& points = animation<AnimatableAttributeFloatList>(image, 1);
    EXPECT_TRUE(points.startsWithNumber);
    EXPECT_EQ(points.valueCount, 0); // three points and two
}

TEST(SvgSamples, VisibilityIsCarriedToTheUses) {
    const SvgImage image(textOf("visibility-in-defs"));
    const QDomNodeList uses = image.document()->dom().elementsByTagName("use");
    EXPECT_EQ(uses.item(0).toElement().attribute("visibility"), "visible");
    EXPECT_EQ(uses.item(1).toElement().attribute("visibility"), "hidden");
    EXPECT_FALSE(uses.item(2).toElement().hasAttribute("visibility"));
    EXPECT_FALSE(uses.item(3).toElement().hasAttribute("visibility"));
}

TEST(SvgSamples, LinearGradientKeepsItsShades) {
    SvgImage image(textOf("linear-gradient"));
    image.setFillColor(QColor("#304050"));
    const QDomNodeList stops = image.document()->dom().elementsByTagName("stop");
    // +20 +40 +60 and +bf +7f +3f in hexadecimal, the stop before each being the measure
    EXPECT_EQ(stops.item(0).toElement().attribute("stop-color"), "#304050");
    EXPECT_EQ(stops.item(1).toElement().attribute("stop-color"), "#5080b0");
    EXPECT_EQ(stops.item(2).toElement().attribute("stop-color"), "#efbf8f");
    EXPECT_EQ(stops.item(4).toElement().attribute("stop-color"), "#304050");
}

} // namespace
