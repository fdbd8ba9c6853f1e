#include "Stored/V21/SvgImage.h"
#include "Stored/V21/Internal/Markup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDomDocument>
#include <QHashFunctions>
#include <QTextStream>

#include <set>

using namespace Stored::V21;

namespace {

QDomElement rootOf(const QString& text) {
    QDomDocument dom;
    EXPECT_TRUE(dom.setContent(text, false)) << text.toStdString();
    return dom.documentElement();
}

QString attributeOfResult(const SvgImage& image, const QString& name) {
    return rootOf(image.toString()).attribute(name, "(none)");
}

QString livePaint(const SvgImage& image, const QString& name) {
    return image.document()->dom().documentElement().attribute(name, "(none)");
}

SvgImage imageOf(const QString& attributes) {
    return SvgImage("<svg " + attributes + "/>");
}

TEST(SvgImage, WithoutStyleIsUnset) {
    const SvgImage image("<svg/>");
    EXPECT_EQ(image.text(), "<svg/>");
    EXPECT_FALSE(image.fill().isValid());
    EXPECT_FALSE(image.stroke().isValid());
    EXPECT_EQ(image.fillOpacity(), -1);
    EXPECT_EQ(image.strokeOpacity(), -1);
    EXPECT_EQ(image.strokeWidth(), -1);
    EXPECT_EQ(image.toString(), "<svg/>\n");
}

TEST(SvgImage, CollectsTheAttributesThatMayChange) {
    const SvgImage image("<svg/>");
    std::vector<QString> names;
    for (const auto& [name, attributes] : image.document()->adjustable())
        names.push_back(name);
    EXPECT_THAT(names, testing::ElementsAre("fill", "fill-opacity", "posX", "posY", "stroke",
                                            "stroke-opacity", "stroke-width"));
}

TEST(SvgImage, IsAValue) {
    SvgImage image("<svg fill='red'/>");
    SvgImage copy = image;
    copy.setFillColor(Qt::blue);
    EXPECT_EQ(image.fill(), QColor(Qt::red));
    EXPECT_EQ(copy.fill(), QColor(Qt::blue));
    EXPECT_EQ(image.document(), copy.document());
}

// Stroke width.

TEST(SvgStrokeWidth, UpToFourIsWrittenBack) {
    EXPECT_EQ(imageOf("stroke-width='3'").strokeWidth(), 3);
    for (const char* width : {"0", "3", "4"})
        EXPECT_EQ(attributeOfResult(imageOf(QString("stroke-width='%1'").arg(width)), "stroke-width"), width);
    EXPECT_EQ(attributeOfResult(imageOf("stroke-width=' 3 '"), "stroke-width"), "3");
}

TEST(SvgStrokeWidth, FiveAndMoreAreNotWritten) {
    EXPECT_EQ(imageOf("stroke-width='7'").strokeWidth(), 7);
    EXPECT_EQ(attributeOfResult(imageOf("stroke-width='7'"), "stroke-width"), "7");
    EXPECT_EQ(attributeOfResult(imageOf("stroke-width=' 05 '"), "stroke-width"), " 05 ");
}

TEST(SvgStrokeWidth, BelowZeroIsNotWritten) {
    EXPECT_EQ(imageOf("stroke-width='-2'").strokeWidth(), -2);
    EXPECT_EQ(attributeOfResult(imageOf("stroke-width=' -2'"), "stroke-width"), " -2");
    EXPECT_EQ(attributeOfResult(imageOf("stroke-width=' -1'"), "stroke-width"), " -1");
}

TEST(SvgStrokeWidth, WhatIsNoIntegerIsZero) {
    for (const char* width : {"2px", "1.5", "inherit", "99999999999"}) {
        const SvgImage image = imageOf(QString("stroke-width='%1'").arg(width));
        EXPECT_EQ(image.strokeWidth(), 0) << width;
        EXPECT_EQ(attributeOfResult(image, "stroke-width"), "0") << width;
    }
}

TEST(SvgStrokeWidth, EmptyOrMissingIsUnset) {
    EXPECT_EQ(imageOf("stroke-width=''").strokeWidth(), -1);
    EXPECT_EQ(attributeOfResult(imageOf("stroke-width=''"), "stroke-width"), "");
    EXPECT_EQ(attributeOfResult(imageOf(""), "stroke-width"), "(none)");
}

TEST(SvgStrokeWidth, IsSetOnAllElementsOfTheLiveDocument) {
    const SvgImage image("<svg stroke-width='7'><g stroke-width='2'/></svg>");
    EXPECT_EQ(image.document()->dom().documentElement().firstChildElement().attribute("stroke-width"), "7");
    EXPECT_EQ(rootOf(image.toString()).firstChildElement().attribute("stroke-width"), "2");
}

TEST(SvgStrokeWidth, OfMinusOneMeansUnsetAndIsNotWritten) {
    const SvgImage image("<svg stroke-width='-1'><g stroke-width='9'/></svg>");
    EXPECT_EQ(image.document()->dom().documentElement().firstChildElement().attribute("stroke-width"), "9");
}

// Opacity.

TEST(SvgOpacity, OfTheRootIsSetOnAllElementsOfTheLiveDocument) {
    const SvgImage image("<svg fill-opacity='0.5' stroke-opacity='0.2'><g fill-opacity='1' "
                         "stroke-opacity='1'/></svg>");
    const QDomElement live = image.document()->dom().documentElement().firstChildElement();
    EXPECT_EQ(live.attribute("fill-opacity"), "0.5");
    EXPECT_EQ(live.attribute("stroke-opacity"), "0.2");
    const QDomElement result = rootOf(image.toString()).firstChildElement();
    EXPECT_EQ(result.attribute("fill-opacity"), "1");
    EXPECT_EQ(result.attribute("stroke-opacity"), "1");
}

TEST(SvgOpacity, IsTruncatedWhenReadAndHasTwoDecimalsWhenWritten) {
    const SvgImage image = imageOf("fill-opacity='0.5' stroke-opacity='0.25'");
    EXPECT_EQ(image.fillOpacity(), 127);
    EXPECT_EQ(image.strokeOpacity(), 63);
    EXPECT_EQ(attributeOfResult(image, "fill-opacity"), "0.50");
    EXPECT_EQ(attributeOfResult(image, "stroke-opacity"), "0.25");
}

TEST(SvgOpacity, HasTwoSignificantDigitsInTheLiveDocument) {
    const SvgImage image = imageOf("fill-opacity='0.5' stroke-opacity='0.051'");
    EXPECT_EQ(livePaint(image, "fill-opacity"), "0.5");
    EXPECT_EQ(image.strokeOpacity(), 13);
    EXPECT_EQ(livePaint(image, "stroke-opacity"), "0.051"); // 13/255
    EXPECT_EQ(attributeOfResult(image, "stroke-opacity"), "0.05");
    EXPECT_EQ(livePaint(imageOf("fill-opacity='1'"), "fill-opacity"), "1");
    EXPECT_EQ(attributeOfResult(imageOf("fill-opacity='1'"), "fill-opacity"), "1.00");
}

TEST(SvgOpacity, IsClamped) {
    for (const char* text : {"-1", "-0.5", "0", "-inf", "nan"}) {
        const SvgImage image = imageOf(QString("fill-opacity='%1'").arg(text));
        EXPECT_EQ(image.fillOpacity(), 0) << text;
        EXPECT_EQ(attributeOfResult(image, "fill-opacity"), "0.00") << text;
    }
    for (const char* text : {"1", "2", "1e300", "inf"})
        EXPECT_EQ(imageOf(QString("stroke-opacity='%1'").arg(text)).strokeOpacity(), 255) << text;
}

TEST(SvgOpacity, ThatTruncatesToMinusOneWasRead) {
    EXPECT_EQ(imageOf("fill-opacity='-0.004'").fillOpacity(), 0); // -1.02 is cut to -1
}

TEST(SvgOpacity, WhatIsNoNumberIsZero) {
    EXPECT_EQ(imageOf("fill-opacity='half'").fillOpacity(), 0);
    EXPECT_EQ(imageOf("fill-opacity='50%'").fillOpacity(), 0);
}

TEST(SvgOpacity, EmptyOrMissingIsUnset) {
    const SvgImage image = imageOf("fill-opacity=''");
    EXPECT_EQ(image.fillOpacity(), -1);
    EXPECT_EQ(attributeOfResult(image, "fill-opacity"), "");
    EXPECT_EQ(attributeOfResult(image, "stroke-opacity"), "(none)");
}

// Colours.

TEST(SvgPaint, OfTheRootIsNormalised) {
    const SvgImage image = imageOf("fill='red' stroke='#0f0'");
    EXPECT_EQ(image.fill(), QColor(255, 0, 0));
    EXPECT_EQ(image.stroke(), QColor(0, 255, 0));
    EXPECT_EQ(attributeOfResult(image, "fill"), "#ff0000");
    EXPECT_EQ(attributeOfResult(image, "stroke"), "#00ff00");
}

TEST(SvgPaint, LosesItsAlpha) {
    const SvgImage image = imageOf("fill='#80112233' stroke='transparent'");
    EXPECT_EQ(image.fill(), QColor(0x11, 0x22, 0x33, 255));
    EXPECT_EQ(attributeOfResult(image, "fill"), "#112233");
    EXPECT_EQ(attributeOfResult(image, "stroke"), "#000000");
}

TEST(SvgPaint, ThatIsNoColourStays) {
    for (const char* fill : {"rgb(1,2,3)", "rgba(255,0,0,1)", "#12", "nocolour", "", "url(#g)", "none"}) {
        const SvgImage image = imageOf(QString("fill=\"%1\"").arg(fill));
        EXPECT_FALSE(image.fill().isValid()) << fill;
        EXPECT_EQ(attributeOfResult(image, "fill"), fill);
    }
}

TEST(SvgPaint, ANewColourReplacesWhatIsAbsentOrAColour) {
    for (const char* attributes : {"", "fill=''", "fill='blue'", "fill='rgba(1,2,3,1)'", "fill='nocolour'",
                                   "fill='None'", "fill='#ff00'"}) {
        SvgImage image = imageOf(attributes);
        image.setFillColor(QColor(1, 2, 3));
        EXPECT_EQ(attributeOfResult(image, "fill"), "#010203") << attributes;
        EXPECT_EQ(attributeOfResult(image, "stroke"), "(none)");
    }
}

TEST(SvgPaint, ANewColourDoesNotReplaceAReference) {
    for (const char* paint : {"none", "currentColor", "inherit", "url(#g)", "urlaub"}) {
        SvgImage image = imageOf(QString("fill='%1' stroke='%1'").arg(paint));
        image.setFillColor(Qt::red);
        image.setStrokeColor(Qt::red);
        EXPECT_EQ(image.fill(), QColor(Qt::red));
        EXPECT_EQ(attributeOfResult(image, "fill"), paint);
        EXPECT_EQ(attributeOfResult(image, "stroke"), paint);
    }
}

TEST(SvgPaint, ANewColourIsOpaque) {
    SvgImage image("<svg/>");
    image.setFillColor(QColor(1, 2, 3, 4));
    image.setStrokeColor(QColor(5, 6, 7, 0));
    EXPECT_EQ(image.fill(), QColor(1, 2, 3));
    EXPECT_EQ(image.stroke(), QColor(5, 6, 7));
    EXPECT_EQ(attributeOfResult(image, "stroke"), "#050607");
}

TEST(SvgPaint, IsSetInTheLiveDocumentAndOnlyOnTheRootInTheText) {
    SvgImage image(
        "<svg fill='red'><g fill='blue' stroke='blue'/><clipPath><g fill='blue'/></clipPath></svg>");
    image.setFillColor(QColor("#123456"));
    image.setStrokeColor(QColor("#654321"));
    const QDomElement live = image.document()->dom().documentElement();
    EXPECT_EQ(live.attribute("fill"), "#123456");
    EXPECT_EQ(live.attribute("stroke", "(none)"), "(none)"); // only attributes that are there
    EXPECT_EQ(live.firstChildElement().attribute("fill"), "#123456");
    EXPECT_EQ(live.firstChildElement().attribute("stroke"), "#654321");
    EXPECT_EQ(live.lastChildElement().firstChildElement().attribute("fill"), "blue");
    const QDomElement result = rootOf(image.toString());
    EXPECT_EQ(result.attribute("fill"), "#123456");
    EXPECT_EQ(result.attribute("stroke"), "#654321");
    EXPECT_EQ(result.firstChildElement().attribute("fill"), "blue");
}

TEST(SvgPaint, OfTheRootIsSetInTheLiveDocumentFromTheStart) {
    const SvgImage image("<svg fill='red' stroke='lime'><g fill='blue' stroke='blue'/><linearGradient><stop "
                         "stop-color='blue'/></linearGradient></svg>");
    const QDomElement live = image.document()->dom().documentElement();
    EXPECT_EQ(live.firstChildElement().attribute("fill"), "#ff0000");
    EXPECT_EQ(live.firstChildElement().attribute("stroke"), "#00ff00");
    EXPECT_EQ(live.lastChildElement().firstChildElement().attribute("stop-color"), "#ff0000");
    EXPECT_EQ(rootOf(image.toString()).firstChildElement().attribute("fill"), "blue");
}

TEST(SvgPaint, AFillChangesTheGradientsAndAStrokeDoesNot) {
    SvgImage image("<svg><linearGradient><stop stop-color='#000000'/></linearGradient></svg>");
    const auto stopColor = [&] {
        return image.document()->dom().elementsByTagName("stop").item(0).toElement().attribute("stop-color");
    };
    image.setStrokeColor(QColor("#111111"));
    EXPECT_EQ(stopColor(), "#000000");
    image.setFillColor(QColor("#222222"));
    EXPECT_EQ(stopColor(), "#222222");
    EXPECT_TRUE(image.toString().contains("#000000"));
}

TEST(SvgPaint, TheSameColourAgainChangesNothing) {
    SvgImage image("<svg><g fill='blue'/></svg>");
    image.setFillColor(QColor("#222222"));
    const QByteArray content = image.document()->content();
    image.document()->setAttributeValue("fill", "pink", "");
    image.setFillColor(QColor(0x22, 0x22, 0x22, 7));
    EXPECT_EQ(image.document()->dom().documentElement().firstChildElement().attribute("fill"), "pink");
    image.setFillColor(QColor("#333333"));
    EXPECT_NE(image.document()->content(), content);
}

TEST(SvgPaint, TheSameStrokeAgainChangesNothing) {
    SvgImage image("<svg><g stroke='blue'/></svg>");
    image.setStrokeColor(QColor("#222222"));
    image.document()->setAttributeValue("stroke", "pink", "");
    image.setStrokeColor(QColor(0x22, 0x22, 0x22, 7));
    EXPECT_EQ(image.document()->dom().documentElement().firstChildElement().attribute("stroke"), "pink");
}

TEST(SvgPaint, AnInvalidColourIsNeverWritten) {
    SvgImage image("<svg fill='red'/>");
    image.setFillColor(QColor());
    EXPECT_FALSE(image.fill().isValid());
    EXPECT_EQ(attributeOfResult(image, "fill"), "red");
    EXPECT_EQ(livePaint(image, "fill"), "#000000");
}

// The result text.

TEST(SvgImageText, TheRewriteOfRgbaStaysInTheLiveDocument) {
    SvgImage image(R"~(<svg><g fill="rgba(255,0,0,0.5)"/></svg>)~");
    EXPECT_EQ(image.document()->dom().documentElement().firstChildElement().attribute("fill"), "#ff00");
    EXPECT_EQ(image.toString(), "<svg>\n <g fill=\"rgba(255,0,0,0.5)\"/>\n</svg>\n");
}

TEST(SvgImageText, ResolvedTimingStaysInTheLiveDocument) {
    const SvgImage image("<svg><animate begin='a.end+1s'/></svg>");
    EXPECT_TRUE(image.document()->content().contains("1000ms"));
    EXPECT_EQ(image.toString(), "<svg>\n <animate begin=\"a.end+1s\"/>\n</svg>\n");
}

TEST(SvgImageText, TheFirstSvgMayBeAtAnyDepth) {
    SvgImage image("<doc fill='blue'><a><svg fill='red'/></a><svg fill='lime'/></doc>");
    EXPECT_EQ(image.fill(), QColor(255, 0, 0));
    image.setStrokeColor(QColor("#123456"));
    EXPECT_EQ(image.toString(),
              "<doc fill=\"blue\">\n <a>\n  <svg fill=\"#ff0000\" stroke=\"#123456\"/>\n </a>\n"
              " <svg fill=\"lime\"/>\n</doc>\n");
}

TEST(SvgImageText, WithoutSvgElementIsOnlyNormalised) {
    SvgImage image("<doc   fill='blue'><a></a></doc>");
    EXPECT_FALSE(image.fill().isValid());
    image.setFillColor(Qt::red);
    EXPECT_EQ(image.toString(), "<doc fill=\"blue\">\n <a/>\n</doc>\n");
}

TEST(SvgImageText, APrefixedSvgIsAnotherElement) {
    SvgImage image("<s:svg xmlns:s='http://www.w3.org/2000/svg'/>");
    image.setFillColor(Qt::red);
    EXPECT_EQ(attributeOfResult(image, "fill"), "(none)");
}

TEST(SvgImageText, UnparsableTextIsEmpty) {
    for (const char* text : {"", " ", "no xml", "{\\rtf1 text}", "<", "<svg", "\x01\x02"}) {
        SvgImage image(QString::fromUtf8(text));
        image.setFillColor(Qt::red);
        image.setStrokeColor(Qt::red);
        EXPECT_EQ(image.toString(), "") << text;
    }
}

TEST(SvgImageText, OfABrokenTextThePartThatTheParserReadIsUsed) {
    SvgImage image("<svg fill='red'><g/><rect></svg>");
    EXPECT_EQ(image.fill(), QColor(255, 0, 0));
    EXPECT_EQ(image.toString(), "<svg fill=\"#ff0000\">\n <g/>\n <rect/>\n</svg>\n");
}

TEST(SvgImageText, KeepsDeclarationCommentsAndText) {
    const SvgImage image(
        "<?xml version='1.0' encoding='UTF-8'?><!-- <a b='2' a='1'/> --><svg b='2' a='1'>x &lt; y"
        "<![CDATA[<z b='2' a='1'>]]><?pi <a b='2' a='1'> ?></svg>");
    EXPECT_EQ(image.toString(),
              "<?xml version='1.0' encoding='UTF-8'?>\n<!-- <a b='2' a='1'/> -->\n"
              "<svg a=\"1\" b=\"2\">x &lt; y<![CDATA[<z b='2' a='1'>]]><?pi <a b='2' a='1'> ?>\n"
              "</svg>\n");
}

TEST(SvgImageText, ResolvesTheEntitiesOfItsDocumentType) {
    const SvgImage image("<!DOCTYPE svg [<!ENTITY ns 'http://www.w3.org/2000/svg'>]><svg xmlns='&ns;'/>");
    EXPECT_EQ(attributeOfResult(image, "xmlns"), "http://www.w3.org/2000/svg");
}

// Adjustable points.

TEST(SvgImagePoints, GetTheirPositionsFromTheLiveDocument) {
    SvgImage image(
        "<svg><adjustablePoint id='a' posX='1' posY='2'/><g><adjustablePoint id='b' posX='3' posY='4'/>"
        "</g></svg>");
    image.document()->setAttributeValue("posX", "30", "b");
    EXPECT_EQ(image.toString(), "<svg>\n <adjustablePoint id=\"a\" posX=\"1\" posY=\"2\"/>\n <g>\n"
                                "  <adjustablePoint id=\"b\" posX=\"30\" posY=\"4\"/>\n </g>\n</svg>\n");
}

TEST(SvgImagePoints, GetAnEmptyCoordinateIfTheLiveOneHasNone) {
    const SvgImage image("<svg><adjustablePoint id='a' posY='2'/></svg>");
    EXPECT_EQ(image.toString(), "<svg>\n <adjustablePoint id=\"a\" posX=\"\" posY=\"2\"/>\n</svg>\n");
}

TEST(SvgImagePoints, AreCopiedWithoutAnSvgElementToo) {
    const SvgImage image("<doc><adjustablePoint/></doc>");
    EXPECT_EQ(image.toString(), "<doc>\n <adjustablePoint posX=\"\" posY=\"\"/>\n</doc>\n");
}

TEST(SvgImagePoints, ADeclaredEncodingIsThatOfTheLiveDocument) {
    const SvgImage image(QString::fromUtf8("<?xml version='1.0' encoding='ISO-8859-1'?><svg><adjustablePoint "
                                           "posX='\xc3\xa9' label='\xc3\xa9'/></svg>"));
    const QDomElement point = rootOf(image.toString()).firstChildElement();
    EXPECT_EQ(point.attribute("label"), QString::fromUtf8("\xc3\xa9"));
    EXPECT_EQ(point.attribute("posX"), QString::fromUtf8("\xc3\x83\xc2\xa9"));
}

TEST(SvgImagePoints, StayUnchangedIfTheLiveDocumentHasNone) {
    // In the declared encoding the text is not XML, so the live document is empty.
    const SvgImage image("<?xml version='1.0' encoding='UTF-16'?><svg><adjustablePoint posX='1'/></svg>");
    EXPECT_TRUE(image.document()->dom().documentElement().isNull());
    EXPECT_EQ(image.toString(), "<?xml version='1.0' encoding='UTF-16'?>\n"
                                "<svg>\n <adjustablePoint posX=\"1\"/>\n</svg>\n");
}

// Writing.

/// No element has more than one attribute, so that the order of Qt's hash has no influence.
const char* const texts[] = {
    "",
    "<svg/>",
    "<svg></svg>",
    "<svg>\n <g a='1'/>\n</svg>",
    "<svg>text<g/>text<g><i/></g>text</svg>",
    "<svg><g/>text<g><i/>text</g></svg>",
    "<svg> <g> </g>x <i/> </svg>",
    "<svg>&lt;&gt;&amp;\"'&quot;&apos;]]&gt;]]&gt;</svg>",
    "<svg a='&lt;&gt;&amp;&quot;&apos;]]>\"'/>",
    "<svg>a\rb\r\nc\td&#13;e&#10;f</svg>",
    "<svg a='a\rb\r\nc\td&#13;e&#10;f&#9;'/>",
    "<svg><![CDATA[]]><![CDATA[<a b='c'>&amp;]]><g/><![CDATA[x]]></svg>",
    "<!-- a --><svg><!-- b --><g><!--c--></g>text<!-- d -->text<!----></svg><!-- e -->",
    "<?p?><svg><?p data?><g><?p more data ?></g>text<?q?></svg><?r s?>",
    "<?xml version='1.0'?><svg>\xc3\xa9 \xe4\xb8\xad \xf0\x9f\x8e\xac</svg>",
    "<?xml version='1.0' encoding='ISO-8859-1'?><svg a='\xc3\xa9'>\xe4\xb8\xad \xf0\x9f\x8e\xac</svg>",
    "<?xml version='1.0' encoding = \"US-ASCII\" ?><svg a='\xc3\xa9'>\xc3\xa9\xf0\x9f\x8e\xac</svg>",
    "<?xml version='1.0' encoding='bogus'?><svg a='\xc3\xa9'>\xe4\xb8\xad \xf0\x9f\x8e\xac</svg>",
    "<!DOCTYPE svg><svg/>",
    "<?xml version='1.0'?><!-- before --><!DOCTYPE svg PUBLIC 'a\"b' 'c'><!-- behind --><svg/>",
    "<!DOCTYPE svg SYSTEM \"it's\" [<!ENTITY e 'v'>]><svg a='&e;'>&e;&unknown;</svg>",
    "<!DOCTYPE svg [<!ENTITY e PUBLIC 'p' 's' NDATA n>]><svg/>",
    "<!DOCTYPE svg [<!NOTATION n PUBLIC 'p'>]><svg/>",
    "<?xml version='1.0'?><!DOCTYPE svg [<!ENTITY e SYSTEM 's'>]>",
    "<svg><g>broken",
    "<a:b c:d='e'/>",
};

TEST(SvgWriting, IsTheSameAsQtsExceptForTheOrder) {
    for (const char* text : texts) {
        QDomDocument dom;
        dom.setContent(QString::fromUtf8(text), false);
        EXPECT_EQ(Internal::toText(dom), dom.toString(1)) << text;
        QByteArray saved;
        QTextStream stream(&saved);
        stream.setCodec("UTF-8");
        dom.save(stream, 1, QDomNode::EncodingFromTextStream);
        stream.flush();
        EXPECT_EQ(Internal::toUtf8(dom), saved) << text;
    }
}

TEST(SvgWriting, ACommentThatEndsInADashEndsWhereItShould) {
    QDomDocument dom;
    dom.appendChild(dom.createElement("svg")).appendChild(dom.createComment("x-"));
    EXPECT_EQ(Internal::toText(dom), dom.toString(1));
    EXPECT_EQ(Internal::toText(dom), "<svg>\n <!--x- -->\n</svg>\n");
}

TEST(SvgWriting, ManyAttributesAreWrittenLikeFew) {
    const auto element = [](int attributes, const QString& more) {
        QString text = "<svg";
        for (int number = 0; number < attributes; ++number)
            text += QString(" a%1=\"&lt;&quot;&#xa;>' %1\"").arg(number, 4, 10, QChar('0'));
        return text + more;
    };
    for (const int count : {1, 200, 201, 300}) {
        const QString end = "><g/>\n</svg>\n";
        QDomDocument dom;
        ASSERT_TRUE(dom.setContent(element(count, end), false));
        EXPECT_EQ(Internal::toText(dom), element(count, ">\n <g/>\n</svg>\n")) << count;
    }
}

// The order of attributes.

class SvgOrder : public testing::Test {
protected:
    void TearDown() override { qSetGlobalQHashSeed(0); }

    /// The different texts that a function gives under many seeds of Qt's hash.
    template <class Function>
    static std::set<QString> resultsOf(Function function) {
        std::set<QString> results;
        for (int run = 0; run < 60; ++run) {
            qSetGlobalQHashSeed(-1); // a new random one
            results.insert(function());
        }
        return results;
    }
};

const QString manyAttributes =
    "<!DOCTYPE svg [<!NOTATION gif SYSTEM 'g>\"'><!NOTATION png PUBLIC 'p' 'q'><!ENTITY l1 SYSTEM 'a' NDATA "
    "gif>"
    "<!ENTITY l2 SYSTEM 'b>]' NDATA png><!ENTITY l3 PUBLIC 'c' 'd' NDATA png>]>"
    "<svg z='1' y=\"a 'quoted' > = / \" x='\"' w='&#10;' fill='red' v-1='' xml:space='preserve' a='&lt;b "
    "c=1>'>"
    "<g b='1' a='2' d='3' c='4' e='5'>text = \"1\" &gt; <i b='1' a='2' c='3'/></g></svg>";

TEST_F(SvgOrder, IsThatOfQtsHashInQtsOwnText) {
    const auto results = resultsOf([] {
        QDomDocument dom;
        dom.setContent(manyAttributes, false);
        return dom.toString(1);
    });
    EXPECT_GT(results.size(), 1U);
}

TEST_F(SvgOrder, IsThatOfTheNamesInTheResult) {
    const auto results = resultsOf([] { return SvgImage(manyAttributes).toString(); });
    EXPECT_EQ(results.size(), 1U);
    EXPECT_EQ(
        *results.begin(),
        "<!DOCTYPE svg [\n"
        "<!ENTITY l1 SYSTEM 'a' NDATA gif>\n"
        "<!ENTITY l2 SYSTEM 'b>]' NDATA png>\n"
        "<!ENTITY l3 PUBLIC 'c' 'd' NDATA png>\n"
        "<!NOTATION gif SYSTEM 'g>\"'>\n"
        "<!NOTATION png PUBLIC 'p' 'q'>\n"
        "]>\n"
        "<svg a=\"&lt;b c=1>\" fill=\"#ff0000\" v-1=\"\" w=\"&#xa;\" x=\"&quot;\" xml:space=\"preserve\" "
        "y=\"a 'quoted' > = / \" z=\"1\">\n"
        " <g a=\"2\" b=\"1\" c=\"4\" d=\"3\" e=\"5\">text = \"1\" > <i a=\"2\" b=\"1\" c=\"3\"/>\n"
        " </g>\n"
        "</svg>\n");
}

TEST_F(SvgOrder, IsThatOfTheNamesInTheLiveDocument) {
    const auto results =
        resultsOf([] { return QString::fromUtf8(SvgImage(manyAttributes).document()->content()); });
    EXPECT_EQ(results.size(), 1U);
}

TEST(SvgOrderOfNothing, IsNothing) {
    EXPECT_EQ(Internal::toText(QDomDocument()), "");
}

} // namespace
