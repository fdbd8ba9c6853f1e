#include "Stored/V21/SvgDocument.h"
#include "Stored/V21/Internal/Markup.h"
#include "support/Log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSvgRenderer>

using namespace Stored::V21;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

QDomElement liveElement(const SvgDocument& document, const QString& id) {
    QDomNode node = document.dom().documentElement();
    while (!node.isNull() && node.toElement().attribute("id") != id) {
        QDomNode next = node.firstChild();
        for (; next.isNull() && !node.isNull(); node = node.parentNode())
            next = node.nextSibling();
        node = next;
    }
    return node.toElement();
}

QString live(const SvgDocument& document, const QString& id, const QString& attribute) {
    return liveElement(document, id).attribute(attribute, "(none)");
}

template <class Leaf>
const Leaf* leaf(const std::shared_ptr<AnimatableAttribute>& attribute) {
    return dynamic_cast<const Leaf*>(attribute.get());
}

std::vector<QString> namesOf(const SvgDocument& document, const QString& attribute) {
    std::vector<QString> ids;
    for (const auto& adjustable : document.adjustable().at(attribute))
        ids.push_back(adjustable->id);
    return ids;
}

// The rgba rewrite.

QByteArray rewritten(const QString& attributes) {
    return SvgDocument("<svg " + attributes + "/>").content();
}

TEST(SvgRgba, IsReplacedByHexadecimalWithoutLeadingZeros) {
    EXPECT_EQ(rewritten(R"~(fill="rgba(255,0,0,0.5)")~"), R"~(<svg fill="#ff00"/>)~");
    EXPECT_EQ(rewritten(R"~(fill="rgba(0,0,255,1)")~"), R"~(<svg fill="#00ff"/>)~");
    EXPECT_EQ(rewritten(R"~(fill="rgba(18,52,86,1)")~"), R"~(<svg fill="#123456"/>)~");
}

TEST(SvgRgba, PartsAreTrimmed) {
    EXPECT_EQ(rewritten(R"~(fill="rgba( 16 , 32 ,255, 1 )")~"), R"~(<svg fill="#1020ff"/>)~");
}

TEST(SvgRgba, WhatIsNoUnsignedNumberIsZero) {
    EXPECT_EQ(rewritten(R"~(fill="rgba(x,300,-1,1)")~"), R"~(<svg fill="#012c0"/>)~");
    EXPECT_EQ(rewritten(R"~(fill="rgba(4294967296,1.5,,1)")~"), R"~(<svg fill="#000"/>)~");
}

TEST(SvgRgba, ThreePartsStopTheRewriteForGood) {
    EXPECT_EQ(rewritten(R"~(a="rgba(255,255,255,1)"             b="rgba(1,2,3)" c="rgba(255,255,255,1)")~"),
              R"~(<svg a="#ffffff"             b="rgba(1,2,3)" c="rgba(255,255,255,1)"/>)~");
}

TEST(SvgRgba, FivePartsStopTheRewrite) {
    EXPECT_EQ(rewritten(R"~(b="rgba(1,2,3,4,5)" c="rgba(255,255,255,1)")~"),
              R"~(<svg b="rgba(1,2,3,4,5)" c="rgba(255,255,255,1)"/>)~");
}

TEST(SvgRgba, OneCloseBehindAnotherIsSteppedOver) {
    // The first gets 12 characters shorter, and the search goes on 12 characters further than it should.
    EXPECT_EQ(rewritten(R"~(a="rgba(255,255,255,1)" b="rgba(255,255,255,1)")~"),
              R"~(<svg a="#ffffff" b="rgba(255,255,255,1)"/>)~");
}

TEST(SvgRgba, OneJustFarEnoughBehindIsReplaced) {
    // From the ")" of the first to the quotation mark of the second it takes 12 characters, and not one less.
    EXPECT_EQ(rewritten(R"~(a="rgba(255,255,255,1)" bbbbbbbb="rgba(255,255,255,1)")~"),
              R"~(<svg a="#ffffff" bbbbbbbb="#ffffff"/>)~");
    EXPECT_EQ(rewritten(R"~(a="rgba(255,255,255,1)" bbbbbbb="rgba(255,255,255,1)")~"),
              R"~(<svg a="#ffffff" bbbbbbb="rgba(255,255,255,1)"/>)~");
}

TEST(SvgRgba, SingleQuotesAreNotLookedFor) {
    EXPECT_EQ(rewritten("fill='rgba(255,255,255,1)'"), "<svg fill='rgba(255,255,255,1)'/>");
}

TEST(SvgRgba, WithoutEndNothingChanges) {
    EXPECT_EQ(rewritten(R"~(fill="rgba(255,255,255,1) ")~"), R"~(<svg fill="rgba(255,255,255,1) "/>)~");
    EXPECT_EQ(SvgDocument("\"rgba(").content(), "\"rgba(");
}

TEST(SvgRgba, TheEndMayStandInAnotherAttribute) {
    EXPECT_EQ(rewritten(R"~(a="rgba(1,2" b="3,4,5)")~"), R"~(<svg a="#104"/>)~");
}

TEST(SvgRgba, TheNearestEndCounts) {
    EXPECT_EQ(rewritten(R"~(a="rgba()" b=",,,)")~"), R"~(<svg a="rgba()" b=",,,)"/>)~");
}

TEST(SvgRgba, HappensInTextsThatAreNoXml) {
    EXPECT_EQ(SvgDocument("junk \"rgba(16,16,16,1)\"").content(), "junk \"#101010\"");
}

TEST(SvgRgba, ManyAreReplacedInOnePass) {
    QString text = "<svg>";
    QByteArray expected = "<svg>";
    for (int i = 0; i < 20000; ++i) {
        text += R"~(<g fill="rgba(170,187,204,1)" opacity="1"/>)~";
        expected += R"~(<g fill="#aabbcc" opacity="1"/>)~";
    }
    EXPECT_EQ(SvgDocument(text + "</svg>").content(), expected + "</svg>");
}

// Construction.

TEST(SvgDocument, OfAPlainDrawingHasNothing) {
    const SvgDocument document("<svg><rect/></svg>");
    EXPECT_EQ(document.content(), "<svg><rect/></svg>");
    EXPECT_EQ(document.durationMs(), 0);
    EXPECT_EQ(document.conclusionMs(), 0);
    EXPECT_FALSE(document.animated());
    EXPECT_THAT(document.animations(), IsEmpty());
    EXPECT_THAT(document.adjustable(), IsEmpty());
    EXPECT_THAT(document.useElements(), IsEmpty());
    EXPECT_THAT(document.gradientStops(), IsEmpty());
    EXPECT_THAT(document.adjustablePoints(), IsEmpty());
    EXPECT_EQ(document.dom().documentElement().tagName(), "svg");
}

TEST(SvgDocument, IsLeftOpenOnItsContent) {
    SvgDocument document("<svg><adjustablePoint id='p' posX='1' posY='2'/></svg>");
    EXPECT_TRUE(document.isOpen());
    EXPECT_TRUE(document.isReadable());
    EXPECT_TRUE(document.isWritable());
    EXPECT_EQ(&document.buffer(), &document.content());
    document.collectAdjustableAttributes({"posX"});
    document.setAttributeValue("posX", "5", "");
    EXPECT_TRUE(document.isOpen());
    EXPECT_EQ(&document.buffer(), &document.content());
    EXPECT_EQ(document.reader().device(), &document);
}

TEST(SvgDocument, TakesTheDurationThatQtSvgReports) {
    EXPECT_EQ(
        SvgDocument("<svg><rect><animateTransform attributeName='transform' type='rotate' from='0' to='9' "
                    "begin='1s' dur='7s'/></rect></svg>")
            .durationMs(),
        8000);
    EXPECT_EQ(SvgDocument("<svg><rect><animateColor attributeName='fill' from='red' to='blue' begin='500ms' "
                          "dur='1.5s'/></rect></svg>")
                  .durationMs(),
              2000);
    // A plain animation is nothing to Qt SVG, and none of ours without `animate`.
    EXPECT_EQ(SvgDocument("<svg><rect><animateMotion begin='0' dur='9s'/></rect></svg>").durationMs(), 0);
}

TEST(SvgDocument, TakesTheGreaterOfTheTwoDurations) {
    const QString text =
        "<svg><rect><animateTransform attributeName='transform' type='rotate' from='0' to='9' "
        "dur='3s'/><animate attributeName='x' from='0' to='1' begin='1s' dur='%1'/></rect></svg>";
    EXPECT_EQ(SvgDocument(text.arg("1s")).durationMs(), 3000);
    EXPECT_EQ(SvgDocument(text.arg("4s")).durationMs(), 5000);
    EXPECT_EQ(SvgDocument(text.arg("-9s")).durationMs(), 3000);
}

TEST(SvgDocument, GivesTheDurationThatTheRendererGivesForTheWholeText) {
    const char* animation =
        "<animateTransform attributeName='transform' type='rotate' values='0;10' begin='1s' "
        "dur='7s'/>";
    const char* texts[] = {
        "<svg>%1</svg>",
        "<svg><rect>%1</rect></svg>",
        "<svg><path d='M0 0'>%1</path></svg>",
        "<svg><unknown><other>%1</other></unknown></svg>",
        "<svg><defs><symbol><clipPath><mask>%1</mask></clipPath></symbol></defs></svg>",
        "<svg><text>word<tspan>%1</tspan></text></svg>",
        "<svg><linearGradient><stop>%1</stop></linearGradient></svg>",
        "<svg><style>rect{fill:red}</style><rect>%1</rect></svg>",
        "<svg><animate>%1</animate></svg>",
        "<svg/>%1",
        "<svg><svg/>%1</svg>",
        "<svg><svg></svg>%1</svg>",
        "<svg><g><svg></svg></g><unclosed",
        "<svg>%1</svg><<<",
        "<svg>%1",
        "<svg>%1</g></svg>",
        "<g>%1</g>",
        "<a:svg>%1</a:svg>",
        "<svg><a:b>%1</a:b></svg>",
        "<svg xmlns:a='u'><a:animateTransform attributeName='transform' type='rotate' values='0;1' "
        "dur='3s'/></svg>",
        "<svg x='1' x='2'>%1</svg>",
        "<svg>&foo;%1</svg>",
        "<!DOCTYPE svg SYSTEM 'x.dtd'><svg>&foo;%1</svg>",
        "<!DOCTYPE svg [<!ENTITY d '9s'>]><svg><animateTransform type='rotate' values='0;1' "
        "dur='&d;'/></svg>",
        "<!DOCTYPE svg [<!ATTLIST animateTransform dur CDATA '9s'>]><svg><animateTransform type='rotate' "
        "values='0;1'/></svg>",
        "<svg><animateTransform type='rotate' from='0' to='1' begin='1s' dur='3s' repeatCount='4'/></svg>",
        "<svg><animateTransform type='rotate' from='0' to='1' begin='1s' dur='indefinite'/></svg>",
        "<svg><animateTransform type='bogus' from='0' to='1' begin='1s' dur='3s'/></svg>",
        "<svg><animateTransform type='rotate' begin='1s' dur='3s'/></svg>",
        "<svg><animateTransform type='rotate' values='1;2' begin='a.end' dur='3s'/></svg>",
        "<svg><animateColor from='currentColor' to='inherit' begin='500ms' dur='1.5s'/></svg>",
        "<svg><animateColor values='red;blue' begin='500' dur='1.5'/></svg>",
        "<svg><set attributeName='fill' to='red' begin='9s' dur='20s'/></svg>",
        "<?xml version='1.0' encoding='bogus'?><svg>%1</svg>",
        "<?xml version='1.0' encoding='UTF-16'?><svg>%1</svg>",
        "<?xml version='1.0' encoding='ISO-8859-1'?><svg>%1</svg>",
        "<?xml version='1.1'?><svg>%1</svg>",
        " <?xml version='1.0'?><svg>%1</svg>",
        "\n<!-- c --><svg>%1</svg>",
        "\xef\xbb\xbf<svg>%1</svg>",
        "",
        "no xml",
    };
    for (const char* pattern : texts) {
        const QString text = QString::fromUtf8(pattern).replace("%1", animation);
        QSvgRenderer renderer;
        renderer.setFramesPerSecond(0);
        QXmlStreamReader reader(text.toUtf8()); // a reader of our own is read up to the first </svg> only
        renderer.load(&reader);
        const int expected = renderer.isValid() ? renderer.animationDuration() : 0;
        EXPECT_EQ(SvgDocument(text).durationMs(), expected) << pattern;
        // With an `animate` of a second the document shows whether the parse gave a document at all.
        QString marked = text;
        marked.replace("<svg", "<?mark <animate ?><svg");
        if (marked.startsWith("<?mark")) {
            EXPECT_EQ(SvgDocument(marked).animated(), renderer.isValid()) << pattern;
        }
    }
}

TEST(SvgDocument, IsAnimatedByAnAnimateTagInTheText) {
    EXPECT_TRUE(SvgDocument("<svg><animate/></svg>").animated());
    EXPECT_TRUE(SvgDocument("<svg><animate attributeName='x'/></svg>").animated());
    EXPECT_FALSE(SvgDocument("<svg><animateMotion/></svg>").animated());
    EXPECT_FALSE(SvgDocument("<svg><g animate=''/></svg>").animated());
    // The mark must stand behind a character that is no part of a word.
    EXPECT_FALSE(SvgDocument("<svg>word<animate/></svg>").animated());
    EXPECT_TRUE(SvgDocument("<svg>word <animate/></svg>").animated());
    EXPECT_TRUE(SvgDocument("<svg><!-- <animate> --></svg>").animated());
    // The text as it came counts, not what the rewrite of rgba() leaves of it.
    EXPECT_TRUE(SvgDocument("<svg><!-- \"rgba(1,2,3, <animate )\" --></svg>").animated());
}

TEST(SvgDocument, SignsInACommentAreNoAttributes) {
    const SvgDocument document("<svg><!-- " + QString("=").repeated(3000) + QString(" a = b").repeated(2000) +
                               " --><animate attributeName='x' from='1' to='2' dur='2s'/></svg>");
    EXPECT_TRUE(document.animated());
    EXPECT_EQ(document.durationMs(), 2000);
}

TEST(SvgDocument, WithoutAQtSvgDocumentHasNoAnimationData) {
    const SvgDocument document(
        "<svg><defs><g id='a' visibility='visible'/></defs><use id='u' xlink:href='#a'/>"
        "<adjustablePoint id='p' posX='1' posY='2'/>"
        "<animate id='CONCLUSION' attributeName='x' begin='1s' dur='2s'/>");
    EXPECT_FALSE(document.animated());
    EXPECT_EQ(document.durationMs(), 0);
    EXPECT_THAT(document.animations(), IsEmpty());
    EXPECT_THAT(document.adjustablePoints(), IsEmpty());
    // The rest runs on what the DOM parser kept.
    EXPECT_THAT(document.useElements(), SizeIs(1));
    EXPECT_EQ(document.conclusionMs(), -1000);
    EXPECT_EQ(live(document, "u", "visibility"), "visible");
}

TEST(SvgDocument, ADeclaredEncodingCountsForTheLiveDocument) {
    const SvgDocument document(QString::fromUtf8("<?xml version='1.0' encoding='ISO-8859-1'?>"
                                                 "<svg><g id='g' label='\xc3\xa9'/></svg>"));
    EXPECT_EQ(live(document, "g", "label"), QString::fromUtf8("\xc3\x83\xc2\xa9"));
}

TEST(SvgDocument, DecodesAsTheDomParserDoesFromADevice) {
    const char* texts[] = {
        "<svg a='\xc3\xa9'/>",
        "<?xml version='1.0' encoding='UTF-8'?><svg a='\xc3\xa9'/>",
        "<?xml version='1.0' encoding='ISO-8859-1'?><svg a='\xc3\xa9'/>",
        "<?xml version='1.0' encoding = \"windows-1251\" ?><svg a='\xc3\xa9'/>",
        "<?xml version='1.0' encoding='UTF-16'?><svg a='\xc3\xa9'/>",
        "<?xml version='1.0' encoding='bogus'?><svg a='\xc3\xa9'/>",
        "<?xml version='1.0' standalone='yes'?><svg a='\xc3\xa9'/>",
        "\xef\xbb\xbf<svg a='\xc3\xa9'/>",
        " <?xml version='1.0' encoding='ISO-8859-1'?><svg a='\xc3\xa9'/>",
        "<!-- encoding='ISO-8859-1' --><svg a='\xc3\xa9'/>",
        "<svg a='\xc3\xa9'/><g/>",
        "<svg a='\xe9\xff'/>",
        "",
    };
    for (const char* text : texts) {
        QByteArray bytes(text);
        QBuffer device(&bytes);
        device.open(QIODevice::ReadOnly);
        QDomDocument expected;
        expected.setContent(&device, false);
        QDomDocument actual;
        EXPECT_TRUE(Internal::parse(actual, Internal::decoded(bytes)));
        EXPECT_EQ(actual.toString(1), expected.toString(1)) << text;
    }
}

// Conditional timing.

QString beginOf(const QString& animations, const QString& id) {
    return live(SvgDocument("<svg>" + animations + "</svg>"), id, "begin");
}

const QString a = "<animate id='a' begin='1s' dur='2s'/>";

TEST(SvgConditionalTiming, EndWithOffset) {
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='a.end-500ms'/>", "x"), "2500ms");
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='a.end+1'/>", "x"), "4000ms");
    EXPECT_EQ(beginOf(a + "<animate id='x' begin=' a.end '/>", "x"), "3000ms");
}

TEST(SvgConditionalTiming, BeginWithOffset) {
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='a.begin + 250ms'/>", "x"), "1250ms");
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='a.begin'/>", "x"), "1000ms");
}

TEST(SvgConditionalTiming, AMissingReferenceIsZero) {
    EXPECT_EQ(beginOf("<animate id='x' begin='missing.begin+1s'/>", "x"), "1000ms");
    EXPECT_EQ(beginOf("<animate id='x' begin='missing.end-1s'/>", "x"), "-1000ms");
}

TEST(SvgConditionalTiming, AReferenceMayStandFurtherDownAndReferOnwards) {
    const QString animations =
        "<animate id='x' begin='y.end+1s' dur='1s'/><animate id='y' begin='z.end' dur='1s'/>"
        "<animate id='z' begin='500ms' dur='250ms'/>";
    EXPECT_EQ(beginOf(animations, "y"), "750ms");
    EXPECT_EQ(beginOf(animations, "x"), "2750ms");
}

TEST(SvgConditionalTiming, AllThreeTagsTakePart) {
    const QString animations =
        "<animate attributeName='k'/><animateColor id='c' begin='t.end' dur='1s'/>"
        "<animateTransform id='t' begin='1s' dur='3s'/><animateMotion id='m' begin='c.end'/>"
        "<animate id='x' begin='c.begin'/><animate id='n' begin='m.end'/>";
    EXPECT_EQ(beginOf(animations, "c"), "4000ms");
    EXPECT_EQ(beginOf(animations, "x"), "4000ms");
    EXPECT_EQ(beginOf(animations, "m"), "c.end");
    EXPECT_EQ(beginOf(animations, "n"), "0ms"); // a motion is not found by its id
}

TEST(SvgConditionalTiming, TheFirstOfAnIdWinsInTheOrderOfTheTags) {
    // All `animate` elements come before all `animateColor` elements, wherever they stand.
    EXPECT_EQ(beginOf("<animateColor id='d' begin='9s'/><animate id='d' begin='1s'/>"
                      "<animate id='d' begin='5s'/><animate id='x' begin='d.begin'/>",
                      "x"),
              "1000ms");
    // So do all `animateColor` elements before all `animateTransform` elements.
    EXPECT_EQ(beginOf("<animate id='x' begin='d.begin'/><animateTransform id='d' begin='9s'/>"
                      "<animateColor id='d' begin='2s'/>",
                      "x"),
              "2000ms");
}

TEST(SvgConditionalTiming, ASignInTheIdDecides) {
    // The first "-" stands in the id, and "1.end-500ms" is no time.
    EXPECT_EQ(beginOf("<animate id='a-1' begin='1s' dur='2s'/><animate id='x' begin='a-1.end-500ms'/>", "x"),
              "3000ms");
    EXPECT_EQ(beginOf("<animate id='a+b' begin='1s' dur='2s'/><animate id='x' begin='a+b.end-500ms'/>", "x"),
              "3000ms");
    // A "+" anywhere goes before a "-".
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='a.end-500ms+1s'/>", "x"), "4000ms");
    EXPECT_EQ(beginOf("<animate id='a-1' begin='1s' dur='2s'/><animate id='x' begin='a-1.end+500ms'/>", "x"),
              "3500ms");
}

TEST(SvgConditionalTiming, BeginIsLookedForBeforeEnd) {
    EXPECT_EQ(beginOf("<animate id='a.end' begin='4s'/><animate id='x' begin='a.end.begin'/>", "x"),
              "4000ms");
}

TEST(SvgConditionalTiming, TheFirstOccurrenceEndsTheId) {
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='a.end.end'/>", "x"), "3000ms");
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='a.ending'/>", "x"), "3000ms");
}

TEST(SvgConditionalTiming, AnEmptyIdIsNoReference) {
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='.end+1s'/>", "x"), ".end+1s");
}

TEST(SvgConditionalTiming, AnEventIsATimeThatCanNotBeRead) {
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='click'/>", "x"), "click");
}

TEST(SvgConditionalTiming, MinusOneMillisecondOnlyLooksUnresolved) {
    EXPECT_EQ(beginOf("<animate id='x' begin='-1ms' dur='1s'/><animate id='y' begin='x.end'/>", "x"), "-1ms");
    EXPECT_EQ(beginOf("<animate id='x' begin='-1ms' dur='1s'/><animate id='y' begin='x.end'/>", "y"),
              "999ms");
}

TEST(SvgConditionalTiming, ACircleIsReportedOnceAndReadsAsMissing) {
    const Tests::Log log;
    const SvgDocument document(
        "<svg><animate id='a' begin='b.end' dur='1s'/><animate id='b' begin='a.end+1s' "
        "dur='2s'/></svg>");
    EXPECT_THAT(log.lines(), ElementsAre("ERROR conditional timing refers to itself"));
    EXPECT_EQ(live(document, "b", "begin"), "1000ms"); // its "a.end" is missing
    EXPECT_EQ(live(document, "a", "begin"), "3000ms");
}

TEST(SvgConditionalTiming, AReferenceToItselfReadsAsMissing) {
    const Tests::Log log;
    const SvgDocument document("<svg><animate id='a' begin='a.end+2s' dur='1s'/></svg>");
    EXPECT_THAT(log.lines(), ElementsAre("ERROR conditional timing refers to itself"));
    EXPECT_EQ(live(document, "a", "begin"), "2000ms");
}

TEST(SvgConditionalTiming, EachCircleIsReported) {
    const Tests::Log log;
    const SvgDocument document("<svg><animate id='a' begin='a.end'/><animate id='b' begin='c.end'/>"
                               "<animate id='c' begin='d.end'/><animate id='d' begin='b.end'/>"
                               "<animate id='e' begin='b.end'/></svg>");
    EXPECT_THAT(log.lines(), SizeIs(2));
}

TEST(SvgConditionalTiming, ALongChainNeedsNoStack) {
    QString text = "<svg>";
    for (int i = 0; i < 50000; ++i)
        text += QString("<animate id='a%1' begin='a%2.end' dur='1ms'/>").arg(i).arg(i + 1);
    const SvgDocument document(text + "</svg>");
    EXPECT_EQ(document.dom().documentElement().firstChildElement().attribute("begin"), "49999ms");
}

TEST(SvgConditionalTiming, ALongTextIsReadOnceNotForEachReference) {
    const QString text = "<svg><animate id='a' begin='" + QString(300000, ' ') + "1s' dur='" +
                         QString(300000, ' ') + "2s'/>" +
                         QString("<animate begin='a.end'/>").repeated(30000) + "</svg>";
    const SvgDocument document(text);
    EXPECT_EQ(document.dom().documentElement().lastChildElement().attribute("begin"), "3000ms");
}

TEST(SvgConditionalTiming, ABeginTooGreatIsZero) {
    EXPECT_EQ(beginOf("<animate id='a' begin='1e999s' dur='2s'/><animate id='x' begin='a.end+1e999s'/>", "x"),
              "2000ms");
}

TEST(SvgConditionalTiming, SumsWrap) {
    EXPECT_EQ(beginOf("<animate id='a' begin='2147483647ms' dur='2147483647ms'/>"
                      "<animate id='x' begin='a.end+2147483647ms'/>",
                      "x"),
              "2147483645ms");
}

TEST(SvgConditionalTiming, WithoutReferencesTheTextStaysAsItCame) {
    const QString text = "<svg  ><animate   id='a' begin='1s'/></svg>";
    EXPECT_EQ(SvgDocument(text).content(), text.toUtf8());
}

TEST(SvgDocument, SavingLeavesTheEndOfALongerTextBehind) {
    const QByteArray text =
        "<svg>" + QByteArray(300, ' ') +
        "<animate id='a' dur='2s' begin='1s'/><animate attributeName='x' begin='a.end'/></svg>";
    const QByteArray saved = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                             "<svg>\n"
                             " <animate begin=\"1s\" dur=\"2s\" id=\"a\"/>\n"
                             " <animate attributeName=\"x\" begin=\"3000ms\"/>\n"
                             "</svg>\n";
    const SvgDocument document(QString::fromUtf8(text));
    EXPECT_EQ(document.content(), saved + text.mid(saved.size()));
    // What stands behind the root is an error that leaves the root alone.
    EXPECT_THAT(document.animations(), SizeIs(1));
    EXPECT_EQ(document.animations()[0]->beginMs, 3000);
}

TEST(SvgDocument, SavingAShorterTextIsTheWholeContent) {
    const SvgDocument document("<svg><animate id='a' begin='b.end'/></svg>");
    EXPECT_EQ(document.content(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                  "<svg>\n <animate begin=\"0ms\" id=\"a\"/>\n</svg>\n");
}

// Animations.

std::vector<std::shared_ptr<AnimatableAttribute>> animationsOf(const QString& attributes) {
    return SvgDocument("<svg><g/><rect x='5'><animate " + attributes + "/></rect></svg>").animations();
}

TEST(SvgAnimations, AddressTheAnimatedElement) {
    const auto animations = animationsOf("attributeName='x' from='1' to='2'");
    ASSERT_THAT(animations, SizeIs(1));
    EXPECT_THAT(animations[0]->element.path, ElementsAre(1));
    EXPECT_EQ(animations[0]->name, "x");
    EXPECT_EQ(animations[0]->value, "5");
    EXPECT_EQ(animations[0]->id, "");
}

TEST(SvgAnimations, WithoutAttributeNameAreSkipped) {
    EXPECT_THAT(animationsOf("from='1' to='2' dur='9s'"), IsEmpty());
    EXPECT_THAT(animationsOf("attributeName='' from='1' to='2'"), IsEmpty());
    EXPECT_EQ(SvgDocument("<svg><animate from='1' to='2' dur='9s'/></svg>").durationMs(), 0);
}

TEST(SvgAnimations, OfTheOtherTagsAreNotParsed) {
    EXPECT_THAT(SvgDocument("<svg><animate/><animateColor attributeName='fill' to='red'/><animateTransform "
                            "attributeName='transform'/><animateMotion attributeName='x'/></svg>")
                    .animations(),
                IsEmpty());
}

TEST(SvgAnimations, StandInDocumentOrder) {
    const SvgDocument document(
        "<svg><g><animate attributeName='one'/></g><animate attributeName='two'/></svg>");
    ASSERT_THAT(document.animations(), SizeIs(2));
    EXPECT_EQ(document.animations()[0]->name, "one");
    EXPECT_EQ(document.animations()[1]->name, "two");
    EXPECT_THAT(document.animations()[1]->element.path, IsEmpty()); // the root itself is animated
}

TEST(SvgAnimations, Timing) {
    const auto animation = animationsOf("attributeName='x' begin='500ms' dur=' 2s '")[0];
    EXPECT_EQ(animation->beginMs, 500);
    EXPECT_EQ(animation->endMs, 2500);
    EXPECT_EQ(animationsOf("attributeName='x'")[0]->endMs, 0);
}

TEST(SvgAnimations, RepeatCount) {
    EXPECT_EQ(animationsOf("attributeName='x' repeatCount='3'")[0]->repeatCount, 3);
    EXPECT_EQ(animationsOf("attributeName='x' repeatCount='indefinite'")[0]->repeatCount, -1);
    EXPECT_EQ(animationsOf("attributeName='x' repeatCount='1.5'")[0]->repeatCount, -1);
    EXPECT_EQ(animationsOf("attributeName='x'")[0]->repeatCount, 1);
    EXPECT_EQ(animationsOf("attributeName='x' repeatCount=''")[0]->repeatCount, 1);
}

TEST(SvgAnimations, FreezeAndCalcMode) {
    EXPECT_TRUE(animationsOf("attributeName='x' fill='freeze'")[0]->freeze);
    EXPECT_FALSE(animationsOf("attributeName='x' fill='remove'")[0]->freeze);
    EXPECT_FALSE(animationsOf("attributeName='x'")[0]->freeze);
    EXPECT_FALSE(animationsOf("attributeName='x' calcMode='discrete'")[0]->interpolated);
    EXPECT_TRUE(animationsOf("attributeName='x' calcMode='linear'")[0]->interpolated);
    EXPECT_TRUE(animationsOf("attributeName='x'")[0]->interpolated);
}

TEST(SvgAnimations, ValuesGoBeforeFromAndTo) {
    const auto animation = animationsOf("attributeName='x' values='1;2;;3' from='8' to='9'")[0];
    ASSERT_TRUE(leaf<AnimatableAttributeFloat>(animation));
    EXPECT_THAT(leaf<AnimatableAttributeFloat>(animation)->values,
                ElementsAre(1, 2, 0, 3)); // empty parts are kept
    EXPECT_EQ(animation->valueCount, 4);
    const auto fromTo = animationsOf("attributeName='x' values='' from='8' to='9'")[0];
    EXPECT_THAT(leaf<AnimatableAttributeFloat>(fromTo)->values, ElementsAre(8, 9));
}

TEST(SvgAnimations, TheFirstKeyValueDecidesTheClass) {
    EXPECT_TRUE(leaf<AnimatableAttributeColor>(animationsOf("attributeName='x' values=' red ;1'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeColor>(animationsOf("attributeName='x' values=' #123 ;1'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeFloat>(animationsOf("attributeName='x' values=' 1e3 ;red'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeText>(animationsOf("attributeName='x' values='hidden;visible'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeText>(animationsOf("attributeName='x' values=';1'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeText>(animationsOf("attributeName='x'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeText>(
        animationsOf(QString::fromUtf8("attributeName='x' values='\xc3\xa9t\xc3\xa9;1'"))[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeFloatList>(animationsOf("attributeName='x' values='1e999;2'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeFloatList>(animationsOf("attributeName='x' values='1 2;3 4'")[0]));
    EXPECT_TRUE(
        leaf<AnimatableAttributeFloatList>(animationsOf("attributeName='x' values='no-letter;a'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeFloatList>(animationsOf("attributeName='x' values='#xyz;1'")[0]));
}

TEST(SvgAnimations, AnyKeyValueMayNameAPoint) {
    for (const char* values : {"red;p.posX", "1;2;posY", "a posX b\nc;1"}) {
        const auto animation = animationsOf(QString("attributeName='x' values='%1'").arg(values))[0];
        const auto* point = leaf<AnimatableAttributeAdjustablePoint>(animation);
        ASSERT_TRUE(point) << values;
        EXPECT_FALSE(point->inner); // there are no adjustable points
        EXPECT_THAT(point->animateElement.path, ElementsAre(1, 0));
        EXPECT_EQ(point->valueCount, 0);
    }
    EXPECT_TRUE(leaf<AnimatableAttributeText>(animationsOf("attributeName='x' values='posx;posZ'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeAdjustablePoint>(
        animationsOf("attributeName='x' from='red' to='p.posY'")[0]));
    // With `values` the others do not count.
    EXPECT_TRUE(leaf<AnimatableAttributeColor>(
        animationsOf("attributeName='x' values='red' from='p.posX' to='p.posY'")[0]));
}

TEST(SvgAnimations, AnAnimationThatIsTheRootHasNoElement) {
    // The step runs for what Qt SVG takes, so the root is an `svg`; an `animate` always has a parent element.
    const SvgDocument document("<animate attributeName='x' to='1'/>");
    EXPECT_THAT(document.animations(), IsEmpty());
}

// Adjustable points.

TEST(SvgAdjustablePoints, NeedIdAndBothCoordinates) {
    const SvgDocument document(
        "<svg><adjustablePoint id='a' posX='1' posY='2'/><adjustablePoint posX='1' posY='2'/>"
        "<adjustablePoint id='b' posX='' posY='2'/><adjustablePoint id='c' posX='1'/>"
        "<g><adjustablePoint id='d' posX='x' posY='y'/></g></svg>");
    ASSERT_THAT(document.adjustablePoints(), SizeIs(2));
    EXPECT_EQ(document.adjustablePoints()[0]->id, "a");
    EXPECT_THAT(document.adjustablePoints()[1]->path, ElementsAre(4, 0));
}

const QString pointed = "<svg><adjustablePoint id='p' posX='10' posY='20'/>"
                        "<line><animate attributeName='x1' values='p.posX;p.posY' begin='1s' dur='2s' "
                        "repeatCount='2' calcMode='discrete' fill='freeze'/></line></svg>";

TEST(SvgAdjustablePoints, AreFilledInWhereAnimationsNameThem) {
    const SvgDocument document(pointed);
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    ASSERT_TRUE(point);
    const auto* inner = leaf<AnimatableAttributeFloat>(point->inner);
    ASSERT_TRUE(inner);
    EXPECT_THAT(inner->values, ElementsAre(10, 20));
    EXPECT_EQ(inner->beginMs, 1000);
    EXPECT_EQ(inner->endMs, 3000);
    EXPECT_EQ(inner->repeatCount, 2);
    EXPECT_TRUE(inner->freeze);
    EXPECT_FALSE(inner->interpolated);
    EXPECT_THAT(inner->element.path, ElementsAre(1));
    // The live document itself still names them.
    EXPECT_EQ(document.content(), pointed.toUtf8());
    EXPECT_EQ(document.dom().elementsByTagName("animate").item(0).toElement().attribute("values"),
              "p.posX;p.posY");
}

TEST(SvgAdjustablePoints, AreFilledIntoNumberLists) {
    const SvgDocument document(
        "<svg><adjustablePoint id='p' posX='10' posY='20'/><path><animate attributeName='d' "
        "values='M p.posX p.posY;M 1 2'/></path></svg>");
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    const auto* inner = leaf<AnimatableAttributeFloatList>(point->inner);
    ASSERT_TRUE(inner);
    ASSERT_EQ(inner->values.size(), 2);
    EXPECT_THAT(inner->values[0], ElementsAre(10, 20));
}

TEST(SvgAdjustablePoints, AreFilledInOneAfterTheOther) {
    // "a.posX" becomes "b.posX", and the next point finds it.
    const SvgDocument document(
        "<svg><adjustablePoint id='a' posX='b.posX' posY='1'/><adjustablePoint id='b' posX='7' "
        "posY='1'/><line><animate attributeName='x1' values='a.posX;2'/></line></svg>");
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    EXPECT_THAT(leaf<AnimatableAttributeFloat>(point->inner)->values, ElementsAre(7, 2));
}

TEST(SvgAdjustablePoints, AreFilledInWhereverTheirNamesOccur) {
    // "ba.posX" holds "a.posX", and "a" comes first.
    const SvgDocument document(
        "<svg><adjustablePoint id='a' posX='10' posY='20'/><adjustablePoint id='ba' posX='7' posY='8'/>"
        "<path><animate attributeName='d' values='M ba.posX ba.posY;M 1 2'/></path></svg>");
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    const auto* inner = leaf<AnimatableAttributeFloatList>(point->inner);
    ASSERT_TRUE(inner);
    EXPECT_THAT(inner->separators, ElementsAre("M b", " b"));
    ASSERT_EQ(inner->values.size(), 2);
    EXPECT_THAT(inner->values[0], ElementsAre(10, 20));
}

TEST(SvgAdjustablePoints, MayHaveNamesAndPlacesInAnyScript) {
    SvgDocument document(QString::fromUtf8(
        "<svg><adjustablePoint id='\xc3\xa9' posX='10' posY='\xe4\xb8\xad 5'/><path>"
        "<animate attributeName='d' values='M \xc3\xa9.posX \xc3\xa9.posY'/></path></svg>"));
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    const auto* inner = leaf<AnimatableAttributeFloatList>(point->inner);
    ASSERT_TRUE(inner);
    EXPECT_THAT(inner->separators, ElementsAre("M ", QString::fromUtf8(" \xe4\xb8\xad ")));
}

TEST(SvgAdjustablePoints, OneCoordinateMayBeNamedAlone) {
    for (const char* name : {"posX", "posY"}) {
        const SvgDocument document(
            QString("<svg><adjustablePoint id='p' posX='3' posY='3'/><line><animate attributeName='x' "
                    "values='p.%1;q.%1'/></line></svg>")
                .arg(name));
        const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
        ASSERT_TRUE(leaf<AnimatableAttributeFloat>(point->inner)) << name;
        EXPECT_THAT(leaf<AnimatableAttributeFloat>(point->inner)->values, ElementsAre(3, 0)) << name;
    }
}

TEST(SvgAdjustablePoints, AChangeIsSeenByTheAnimations) {
    SvgDocument document(pointed);
    document.collectAdjustableAttributes({"posX", "posY"});
    document.setAttributeValue("posX", "33", "p");
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    EXPECT_THAT(leaf<AnimatableAttributeFloat>(point->inner)->values, ElementsAre(33, 20));
    EXPECT_EQ(live(document, "p", "posX"), "33");
    document.setAttributeValue("posY", "44", "p");
    EXPECT_THAT(leaf<AnimatableAttributeFloat>(point->inner)->values, ElementsAre(33, 44));
}

TEST(SvgAdjustablePoints, AreRefreshedWheneverTheNameHasAnEntry) {
    // No element has the attribute, so that nothing is set; the animations are read again all the same.
    SvgDocument document("<svg><line><animate attributeName='x1' values='1;p.posX'/></line></svg>");
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    document.setAttributeValue("posX", "5", "");
    EXPECT_FALSE(point->inner); // no entry yet
    document.collectAdjustableAttributes({"posX", "fill"});
    document.setAttributeValue("fill", "red", "");
    EXPECT_FALSE(point->inner); // another name
    document.setAttributeValue("posX", "5", "");
    ASSERT_TRUE(leaf<AnimatableAttributeFloat>(point->inner));
    EXPECT_THAT(leaf<AnimatableAttributeFloat>(point->inner)->values, ElementsAre(1, 0));
}

TEST(SvgAdjustablePoints, OneThatBreaksTheCopyLeavesTheDocumentAlone) {
    const SvgDocument document("<svg><adjustablePoint id='p' posX='&lt;&quot;' posY='1'/><line><animate "
                               "attributeName='x1' values='p.posX;p.posY'/></line></svg>");
    EXPECT_EQ(document.dom().documentElement().childNodes().length(), 2);
    EXPECT_TRUE(leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0))->inner);
}

TEST(SvgAdjustablePoints, OneThatBreaksTheCopyBeforeTheAnimationLeavesItNoPlace) {
    const SvgDocument document("<svg><adjustablePoint id='p' posX='&lt;&quot;' posY='1'/><g title='p.posX'/>"
                               "<line><animate attributeName='x1' values='p.posX;p.posY'/></line></svg>");
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    EXPECT_THAT(point->element.path, ElementsAre(2));
    const auto* inner = leaf<AnimatableAttributeFloatList>(point->inner);
    ASSERT_TRUE(inner);
    EXPECT_THAT(inner->element.path, IsEmpty());
    EXPECT_EQ(inner->name, "x1");
}

TEST(SvgAdjustablePoints, CollectingNeedsTheTagInTheTextAsGiven) {
    EXPECT_THAT(SvgDocument("<svg>word<adjustablePoint id='a' posX='1' posY='2'/></svg>").adjustablePoints(),
                IsEmpty());
}

// `use` elements, visibility, the closing part.

TEST(SvgUse, IsListedByTheIdThatItRefersTo) {
    const SvgDocument document(
        "<svg><use id='1' xlink:href='#a'/><use xlink:href='b.svg#b'/><use href='#c'/>"
        "<use xlink:href=''/><g><use id='2' xlink:href='#a'/></g><use xlink:href='#'/></svg>");
    EXPECT_THAT(document.useElements(), SizeIs(2));
    ASSERT_THAT(document.useElements().at("a"), SizeIs(2));
    EXPECT_EQ(document.useElements().at("a")[0]->id, "1");
    EXPECT_EQ(document.useElements().at("a")[1]->id, "2");
    EXPECT_THAT(document.useElements().at(""), SizeIs(1));
}

TEST(SvgVisibility, IsCarriedFromDefsToUse) {
    const SvgDocument document(
        "<svg><defs><g><path id='a' visibility='visible'/></g><path id='b' "
        "visibility='collapse'/><path id='c'/></defs><use id='ua' xlink:href='#a'/>"
        "<use id='ub' visibility='visible' xlink:href='#b'/><use id='uc' xlink:href='#c'/>"
        "</svg>");
    EXPECT_EQ(live(document, "ua", "visibility"), "visible");
    EXPECT_EQ(live(document, "ub", "visibility"), "hidden");
    EXPECT_EQ(live(document, "uc", "visibility"), "(none)");
    EXPECT_TRUE(document.content().startsWith("<?xml"));
}

TEST(SvgVisibility, OutsideDefsIsNotCarried) {
    const QString text = "<svg><path id='a' visibility='visible'/><use id='u' xlink:href='#a'/></svg>";
    const SvgDocument document(text);
    EXPECT_EQ(live(document, "u", "visibility"), "(none)");
    EXPECT_EQ(document.content(), text.toUtf8());
}

TEST(SvgVisibility, BesideDefsIsNotCarried) {
    const SvgDocument document("<svg><g id='a' visibility='visible'/><defs><g/></defs><g id='b' "
                               "visibility='visible'/><use id='ua' xlink:href='#a'/>"
                               "<use id='ub' xlink:href='#b'/></svg>");
    EXPECT_EQ(live(document, "ua", "visibility"), "(none)");
    EXPECT_EQ(live(document, "ub", "visibility"), "(none)");
}

TEST(SvgVisibility, UnderAnotherVisibilityIsNotSet) {
    const SvgDocument document("<svg><defs><path id='a' visibility='visible'/></defs><g visibility='hidden'>"
                               "<use id='u' xlink:href='#a'/></g></svg>");
    EXPECT_EQ(live(document, "u", "visibility"), "(none)");
    EXPECT_TRUE(document.content().startsWith("<?xml")); // it counts as a hit
}

TEST(SvgVisibility, TheDefsElementItselfCounts) {
    const SvgDocument document("<svg><defs id='d' visibility='visible'/><use id='u' xlink:href='#d'/></svg>");
    EXPECT_EQ(live(document, "u", "visibility"), "visible");
}

TEST(SvgVisibility, OfTwoElementsOfAnIdTheLastWins) {
    const SvgDocument document(
        "<svg><defs><a id='a' visibility='visible'/><b id='a' visibility='hidden'/></defs>"
        "<use id='u' xlink:href='#a'/></svg>");
    EXPECT_EQ(live(document, "u", "visibility"), "hidden");
}

TEST(SvgVisibility, TakenOverByAUseInDefsGoesOnFromThere) {
    // First "u" takes over from "a"; then, being an element in the defs itself, it hands on to "v".
    const SvgDocument document(
        "<svg><defs><path id='a' visibility='visible'/><use id='u' xlink:href='#a'/></defs>"
        "<use id='v' xlink:href='#u'/></svg>");
    EXPECT_EQ(live(document, "u", "visibility"), "visible");
    EXPECT_EQ(live(document, "v", "visibility"), "visible");
}

TEST(SvgVisibility, InTheOtherOrderTheUseHasNothingYet) {
    const SvgDocument document(
        "<svg><defs><use id='u' xlink:href='#a'/><path id='a' visibility='visible'/></defs>"
        "<use id='v' xlink:href='#u'/></svg>");
    EXPECT_EQ(live(document, "u", "visibility"), "visible");
    EXPECT_EQ(live(document, "v", "visibility"), "(none)");
}

TEST(SvgVisibility, InnerDefsAreGoneThroughAgain) {
    // As above, but the inner defs come once more, when "u" has its visibility.
    const SvgDocument document(
        "<svg><defs><defs><use id='u' xlink:href='#a'/><path id='a' visibility='visible'/>"
        "</defs></defs><use id='v' xlink:href='#u'/></svg>");
    EXPECT_EQ(live(document, "v", "visibility"), "visible");
}

TEST(SvgVisibility, UsesThatReferToEachOtherComeToAnEnd) {
    const SvgDocument document("<svg><defs><use id='a' visibility='visible' xlink:href='#b'/>"
                               "<use id='b' visibility='hidden' xlink:href='#a'/>"
                               "<use id='c' visibility='collapse' xlink:href='#c'/></defs></svg>");
    // "a" makes "b" visible, which then makes "a" visible; "c" hides itself.
    EXPECT_EQ(live(document, "a", "visibility"), "visible");
    EXPECT_EQ(live(document, "b", "visibility"), "visible");
    EXPECT_EQ(live(document, "c", "visibility"), "hidden");
}

int conclusionOf(const QString& animations) {
    return SvgDocument("<svg><animate attributeName='k' dur='10s'/>" + animations + "</svg>").conclusionMs();
}

TEST(SvgConclusion, IsWhatIsLeftBehindItsBegin) {
    EXPECT_EQ(conclusionOf("<animate id='CONCLUSION' begin='7s'/>"), 3000);
    EXPECT_EQ(conclusionOf("<animateTransform id='CONCLUSION' begin='7.5s'/>"), 2500);
    EXPECT_EQ(conclusionOf("<animate id='conclusion' begin='7s'/>"), 0);
    EXPECT_EQ(conclusionOf("<g id='CONCLUSION' begin='7s'/>"), 0);
    EXPECT_EQ(conclusionOf(""), 0);
}

TEST(SvgConclusion, ABeginOfZeroIsPassedOver) {
    EXPECT_EQ(conclusionOf("<animate id='CONCLUSION' begin='0s'/><animate id='CONCLUSION' begin='6s'/>"),
              4000);
    EXPECT_EQ(conclusionOf("<animate id='CONCLUSION' begin='-3s'/>"), 0);
}

TEST(SvgConclusion, TheFirstOfATagEndsTheSearchForTheTag) {
    // It begins with the end, which leaves 0, so that the next tag is searched, and not the second `animate`.
    EXPECT_EQ(conclusionOf("<animate id='CONCLUSION' begin='10s'/><animate id='CONCLUSION' begin='6s'/>"
                           "<animateMotion id='CONCLUSION' begin='9s'/>"),
              1000);
}

TEST(SvgConclusion, TheTagsHaveAnOrder) {
    EXPECT_EQ(conclusionOf(
                  "<animateTransform id='CONCLUSION' begin='1s'/><animateColor id='CONCLUSION' begin='2s'/>"
                  "<animateMotion id='CONCLUSION' begin='3s'/>"),
              7000);
    EXPECT_EQ(conclusionOf("<animateTransform id='CONCLUSION' begin='1s'/><animateColor id='CONCLUSION' "
                           "begin='2s'/>"),
              8000);
}

TEST(SvgConclusion, SeesTheResolvedTiming) {
    EXPECT_EQ(conclusionOf("<animate id='m' begin='1s' dur='1s'/><animate id='CONCLUSION' begin='m.end'/>"),
              8000);
}

// Adjustable attributes.

TEST(SvgAdjustable, ListsTheRootAndAllBelowInDocumentOrder) {
    SvgDocument document(
        "<svg id='s' fill='red'><g id='g' fill=''><a id='a' fill='#123'/></g><b id='b' fill='blue' "
        "stroke='red'/></svg>");
    document.collectAdjustableAttributes({"fill", "stroke", "posX"});
    EXPECT_THAT(namesOf(document, "fill"), ElementsAre("s", "g", "a", "b"));
    EXPECT_THAT(namesOf(document, "stroke"), ElementsAre("b"));
    EXPECT_THAT(namesOf(document, "posX"), IsEmpty()); // an entry all the same
    EXPECT_EQ(document.adjustable().at("fill")[2]->value, "#123");
    EXPECT_EQ(document.adjustable().at("fill")[2]->name, "fill");
    EXPECT_THAT(document.adjustable().at("fill")[2]->element.path, ElementsAre(0, 0));
}

TEST(SvgAdjustable, CollectingAgainStartsAnew) {
    SvgDocument document("<svg fill='red'/>");
    document.collectAdjustableAttributes({"fill", "fill"});
    EXPECT_THAT(document.adjustable().at("fill"), SizeIs(1));
    document.collectAdjustableAttributes({"stroke"});
    EXPECT_THAT(document.adjustable(), SizeIs(1));
}

TEST(SvgAdjustable, RetainInTheIdKeepsThatAttribute) {
    SvgDocument document("<svg><a id='xretainfill' fill='red' stroke='red'/><a id='RetainStroke' fill='red' "
                         "stroke='red'/><a id='retain' fill='red'/><a id='retain-fill' fill='red'/>"
                         "<a id='retainfill-opacity' fill='red' fill-opacity='1'/></svg>");
    document.collectAdjustableAttributes({"fill", "stroke", "fill-opacity"});
    EXPECT_THAT(namesOf(document, "fill"), ElementsAre("RetainStroke", "retain", "retain-fill"));
    EXPECT_THAT(namesOf(document, "stroke"), ElementsAre("xretainfill"));
    EXPECT_THAT(namesOf(document, "fill-opacity"), IsEmpty());
}

TEST(SvgAdjustable, TheFillOfAnAnimationIsNoPaint) {
    SvgDocument document(
        "<svg><animate id='1' fill='freeze' stroke='red'/><animateMotion fill='freeze'/>"
        "<animateColor fill='freeze'/><animateTransform fill='freeze'/><set id='2' fill='freeze'/>"
        "</svg>");
    document.collectAdjustableAttributes({"fill", "stroke"});
    EXPECT_THAT(namesOf(document, "fill"), ElementsAre("2"));
    EXPECT_THAT(namesOf(document, "stroke"), ElementsAre("1"));
}

TEST(SvgAdjustable, PaintsThatStandForAnotherAreKept) {
    SvgDocument document(
        "<svg><a fill='none'/><a fill='currentColor'/><a fill='inherit'/><a fill='url(#g)'/>"
        "<a id='1' fill='None'/><a id='2' fill=' url(#g)'/><a id='3' fill-opacity='inherit'/>"
        "<a stroke='urlaub'/></svg>");
    document.collectAdjustableAttributes({"fill", "fill-opacity", "stroke"});
    EXPECT_THAT(namesOf(document, "fill"), ElementsAre("1", "2"));
    EXPECT_THAT(namesOf(document, "fill-opacity"), ElementsAre("3"));
    EXPECT_THAT(namesOf(document, "stroke"), IsEmpty());
}

TEST(SvgAdjustable, ClipPathsKeepTheirStyleAndDefsDoNot) {
    SvgDocument document(
        "<svg><clipPath id='c' fill='red'><g><a id='1' fill='red' stroke='red' stroke-opacity='1' "
        "fill-opacity='1' stroke-width='1' posX='1' posY='1'/></g></clipPath>"
        "<defs><a id='2' fill='red'/></defs></svg>");
    document.collectAdjustableAttributes(
        {"fill", "stroke", "stroke-opacity", "fill-opacity", "stroke-width", "posX", "posY"});
    EXPECT_THAT(namesOf(document, "fill"), ElementsAre("c", "2"));
    for (const char* name : {"stroke", "stroke-opacity", "fill-opacity", "stroke-width"})
        EXPECT_THAT(namesOf(document, name), IsEmpty()) << name;
    EXPECT_THAT(namesOf(document, "posX"), ElementsAre("1"));
    EXPECT_THAT(namesOf(document, "posY"), ElementsAre("1"));
}

TEST(SvgAdjustable, SettingGoesToAllOrToOneId) {
    SvgDocument document(
        "<svg id='s' fill='red'><a id='x' fill='red'/><b id='x' fill='red'/><c fill='red'/></svg>");
    document.collectAdjustableAttributes({"fill"});
    document.setAttributeValue("fill", "blue", "x");
    EXPECT_EQ(live(document, "s", "fill"), "red");
    EXPECT_EQ(document.content(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                  "<svg fill=\"red\" id=\"s\">\n"
                                  " <a fill=\"blue\" id=\"x\"/>\n"
                                  " <b fill=\"blue\" id=\"x\"/>\n"
                                  " <c fill=\"red\"/>\n"
                                  "</svg>\n");
    document.setAttributeValue("fill", "lime", "");
    EXPECT_EQ(live(document, "s", "fill"), "lime");
    EXPECT_EQ(document.dom().documentElement().lastChildElement().attribute("fill"), "lime");
    EXPECT_EQ(document.content().count("lime"), 4);
    // The entry keeps what it found.
    EXPECT_EQ(document.adjustable().at("fill")[0]->value, "red");
}

TEST(SvgAdjustable, SettingWithoutAHitSavesNothing) {
    const QString text = "<svg   fill='red'/>";
    SvgDocument document(text);
    document.setAttributeValue("fill", "blue", ""); // not collected
    document.collectAdjustableAttributes({"fill", "stroke"});
    document.setAttributeValue("fill", "blue", "nobody");
    document.setAttributeValue("stroke", "blue", "");
    document.setAttributeValue("width", "1", "");
    EXPECT_EQ(document.content(), text.toUtf8());
}

// Gradients.

TEST(SvgGradients, EachStopKnowsItsDifferenceToTheOneBefore) {
    SvgDocument document("<svg><linearGradient id='g'><stop stop-color='#102030'/><stop/><g><stop "
                         "stop-color='#203010'/></g><stop stop-color='#213111'/></linearGradient></svg>");
    document.collectGradientStops();
    std::map<QString, std::vector<int>> offsets;
    for (const auto& [stop, difference] : document.gradientStops()) {
        EXPECT_EQ(stop->name, "stop-color");
        EXPECT_EQ(stop->id, "g");
        offsets[stop->value] = difference;
    }
    EXPECT_THAT(offsets, SizeIs(3));
    EXPECT_THAT(offsets["#102030"], ElementsAre(0, 0, 0));
    EXPECT_THAT(offsets["#203010"], ElementsAre(16, 16, -32));
    EXPECT_THAT(offsets["#213111"], ElementsAre(1, 1, 1)); // not (17, 17, -31)
}

TEST(SvgGradients, EachGradientStartsAnewAndAnInvalidColourDoesToo) {
    SvgDocument document(
        "<svg><linearGradient><stop stop-color='#101010'/></linearGradient><linearGradient>"
        "<stop stop-color='#202020'/><stop stop-color='currentColor'/><stop stop-color='#303030'/>"
        "</linearGradient></svg>");
    document.collectGradientStops();
    std::map<QString, std::vector<int>> offsets;
    for (const auto& [stop, difference] : document.gradientStops())
        offsets[stop->value] = difference;
    EXPECT_THAT(offsets["#202020"], ElementsAre(0, 0, 0));
    EXPECT_THAT(offsets["currentColor"], ElementsAre(-32, -32, -32)); // an invalid colour is black
    EXPECT_THAT(offsets["#303030"], ElementsAre(0, 0, 0));
}

TEST(SvgGradients, RetainInTheIdAndRadialOnesAreLeftAlone) {
    SvgDocument document("<svg><linearGradient id='gRETAINx'><stop stop-color='red'/></linearGradient>"
                         "<radialGradient><stop stop-color='red'/></radialGradient></svg>");
    document.collectGradientStops();
    EXPECT_THAT(document.gradientStops(), IsEmpty());
    const QByteArray before = document.content();
    document.applyColorToGradients(Qt::blue);
    EXPECT_EQ(document.content(), before);
}

TEST(SvgGradients, TakeAColourWithTheirDifferences) {
    SvgDocument document(
        "<svg><linearGradient><stop id='1' stop-color='#102030'/><stop id='2' stop-color='#203010'/>"
        "<stop id='3' stop-color='#ffffff'/></linearGradient></svg>");
    document.collectGradientStops();
    document.applyColorToGradients(QColor(0x80, 0xf8, 0x10, 0x40));
    EXPECT_EQ(live(document, "1", "stop-color"), "#80f810");
    EXPECT_EQ(live(document, "2", "stop-color"), "#90ff00"); // f8 + 10 and 10 - 20 are clamped
    EXPECT_EQ(live(document, "3", "stop-color"), "#ffffff");
    EXPECT_TRUE(document.content().contains("#90ff00"));
}

TEST(SvgGradients, CollectingAgainStartsAnew) {
    SvgDocument document("<svg><linearGradient><stop stop-color='red'/></linearGradient></svg>");
    document.collectGradientStops();
    document.collectGradientStops();
    EXPECT_THAT(document.gradientStops(), SizeIs(1));
}

TEST(SvgGradients, AStopInTwoGradientsTakesThatOfTheInnerOne) {
    // The outer gradient sees the stop behind another, with a difference; the inner one sees it first.
    SvgDocument document("<svg><linearGradient><stop stop-color='#000000'/><linearGradient><stop id='i' "
                         "stop-color='#010101'/></linearGradient></linearGradient></svg>");
    document.collectGradientStops();
    EXPECT_THAT(document.gradientStops(), SizeIs(3));
    document.applyColorToGradients(QColor("#202020"));
    EXPECT_EQ(live(document, "i", "stop-color"), "#202020");
}

} // namespace
