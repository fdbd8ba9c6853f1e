// Reading an SVG text as a document: colours, durations, encoding; and saving it.

#include "Stored/V21/SvgDocument.h"
#include "Stored/V21/Internal/Markup.h"
#include "support/Svg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSvgRenderer>

using namespace Stored::V21;
using testing::IsEmpty;
using testing::SizeIs;
using Tests::live;

namespace {

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

TEST(SvgRgba, OneCloseAfterAnotherIsSkipped) {
    // The first becomes 12 characters shorter, so the search skips 12 characters.
    EXPECT_EQ(rewritten(R"~(a="rgba(255,255,255,1)" b="rgba(255,255,255,1)")~"),
              R"~(<svg a="#ffffff" b="rgba(255,255,255,1)"/>)~");
}

TEST(SvgRgba, OneJustFarEnoughAfterIsReplaced) {
    // From the ")" of the first to the quotation mark of the second there must be at least 12 characters.
    EXPECT_EQ(rewritten(R"~(a="rgba(255,255,255,1)" bbbbbbbb="rgba(255,255,255,1)")~"),
              R"~(<svg a="#ffffff" bbbbbbbb="#ffffff"/>)~");
    EXPECT_EQ(rewritten(R"~(a="rgba(255,255,255,1)" bbbbbbb="rgba(255,255,255,1)")~"),
              R"~(<svg a="#ffffff" bbbbbbb="rgba(255,255,255,1)"/>)~");
}

TEST(SvgRgba, SingleQuotesAreNotSearchedFor) {
    EXPECT_EQ(rewritten("fill='rgba(255,255,255,1)'"), "<svg fill='rgba(255,255,255,1)'/>");
}

TEST(SvgRgba, WithoutEndNothingChanges) {
    EXPECT_EQ(rewritten(R"~(fill="rgba(255,255,255,1) ")~"), R"~(<svg fill="rgba(255,255,255,1) "/>)~");
    EXPECT_EQ(SvgDocument("\"rgba(").content(), "\"rgba(");
}

TEST(SvgRgba, TheEndMayBeInAnotherAttribute) {
    EXPECT_EQ(rewritten(R"~(a="rgba(1,2" b="3,4,5)")~"), R"~(<svg a="#104"/>)~");
}

TEST(SvgRgba, TheNearestEndCounts) {
    EXPECT_EQ(rewritten(R"~(a="rgba()" b=",,,)")~"), R"~(<svg a="rgba()" b=",,,)"/>)~");
}

TEST(SvgRgba, IsDoneInTextsThatAreNoXml) {
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

// Reading and saving.

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

TEST(SvgDocument, UsesTheDurationFromQtSvg) {
    EXPECT_EQ(
        SvgDocument("<svg><rect><animateTransform attributeName='transform' type='rotate' from='0' to='9' "
                    "begin='1s' dur='7s'/></rect></svg>")
            .durationMs(),
        8000);
    EXPECT_EQ(SvgDocument("<svg><rect><animateColor attributeName='fill' from='red' to='blue' begin='500ms' "
                          "dur='1.5s'/></rect></svg>")
                  .durationMs(),
              2000);
    // Qt SVG ignores this animation, and without `animate` the model does, too.
    EXPECT_EQ(SvgDocument("<svg><rect><animateMotion begin='0' dur='9s'/></rect></svg>").durationMs(), 0);
}

TEST(SvgDocument, UsesTheGreaterOfTheTwoDurations) {
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
        QXmlStreamReader reader(text.toUtf8()); // a new reader: it is read up to the first </svg> only
        renderer.load(&reader);
        const int expected = renderer.isValid() ? renderer.animationDuration() : 0;
        EXPECT_EQ(SvgDocument(text).durationMs(), expected) << pattern;
        // The duration of `animate` shows whether parsing gave a document.
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
    // The tag must follow a character that is not part of a word.
    EXPECT_FALSE(SvgDocument("<svg>word<animate/></svg>").animated());
    EXPECT_TRUE(SvgDocument("<svg>word <animate/></svg>").animated());
    EXPECT_TRUE(SvgDocument("<svg><!-- <animate> --></svg>").animated());
    // The original text is used, not the one after replacing rgba().
    EXPECT_TRUE(SvgDocument("<svg><!-- \"rgba(1,2,3, <animate )\" --></svg>").animated());
}

TEST(SvgDocument, EqualsSignsInACommentAreNoAttributes) {
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
    // The rest uses what the DOM parser read.
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

TEST(SvgDocument, SavingKeepsTheEndOfALongerText) {
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
    // Text after the root is an error, but the root is kept.
    EXPECT_THAT(document.animations(), SizeIs(1));
    EXPECT_EQ(document.animations()[0]->beginMs, 3000);
}

TEST(SvgDocument, SavingAShorterTextIsTheWholeContent) {
    const SvgDocument document("<svg><animate id='a' begin='b.end'/></svg>");
    EXPECT_EQ(document.content(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                  "<svg>\n <animate begin=\"0ms\" id=\"a\"/>\n</svg>\n");
}

} // namespace
