// Presets may come from hostile files: the model must finish in a short time for any SVG text.

#include "Stored/V21/SvgImage.h"
#include "support/Log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSvgRenderer>
#include <QTemporaryDir>

#include <sys/resource.h>
#include <sys/stat.h>

#include <cstdlib>

using namespace Stored::V21;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr char refused[] = "ERROR SVG text nests too deeply or expands too far";

/// Reads a text, changes it and gives the result.
QString roundTrip(const QString& text) {
    SvgImage image(text);
    image.setFillColor(QColor("#123456"));
    image.setStrokeColor(QColor("#654321"));
    image.document()->setAttributeValue("posX", "7", QString());
    return image.toString();
}

void expectRefused(const QString& text) {
    const Tests::Log log;
    EXPECT_EQ(roundTrip(text), "");
    EXPECT_THAT(log.lines(), ElementsAre(refused));
}

void expectTaken(const QString& text) {
    const Tests::Log log;
    EXPECT_NE(roundTrip(text), "");
    EXPECT_THAT(log.lines(), IsEmpty());
}

QString nested(int depth, const QString& inner = QString()) {
    return "<svg>" + QString("<g>").repeated(depth - 1) + inner + QString("</g>").repeated(depth - 1) +
           "</svg>";
}

TEST(SvgHostile, DepthIsBounded) {
    expectTaken(nested(1000));
    expectRefused(nested(1001));
    expectRefused(nested(300000));
    expectRefused(QString("<svg>").repeated(300000));
}

TEST(SvgHostile, HiddenDepthIsFound) {
    const QString deep = QString("<g>").repeated(100000);
    expectRefused("<svg><!-- " + QString("</g>").repeated(100000) + " -->" + deep);
    expectRefused("<!DOCTYPE svg [<!-- ' -->]><svg>" + deep + "'");
    expectRefused("<!DOCTYPE svg [<!ENTITY open '<g>'>]><svg>" + QString("&open;").repeated(50000) +
                  "</svg>");
    expectRefused("<?xml version='1.0' encoding='ISO-8859-1'?><svg>" + deep);
}

TEST(SvgHostile, DepthsAddUp) {
    // Each element's position is a list as long as its depth.
    expectRefused(nested(200, QString("<g fill='red'/>").repeated(100000)));
    expectTaken(nested(20, QString("<g fill='red'/>").repeated(2000)));
}

TEST(SvgHostile, DepthOnlyInTheDeclaredEncodingLeavesNoLiveDocument) {
    // Decoded as EBCDIC the words are elements; in the given text they are words.
    QByteArray bytes("<?xml version='1.0' encoding='IBM037'?>");
    for (const char c : QByteArray("<s>") + QByteArray("<g>").repeated(5000)) {
        switch (c) {
        case '<':
            bytes += 'L';
            break;
        case '>':
            bytes += 'n';
            break;
        case 's':
            bytes += "\xc2\xa2";
            break; // "B" and "s"
        default:
            bytes += "\xc2\x87";
            break; // "B" and "g"
        }
    }
    const SvgImage image(QString::fromUtf8(bytes));
    EXPECT_EQ(image.document()->durationMs(), 0);
    image.toString();
}

TEST(SvgHostile, ContentModelsOfElementsAreBounded) {
    const QString model = "<!DOCTYPE svg [<!ELEMENT svg %1b%2>]><svg/>";
    expectTaken(model.arg(QString("(").repeated(1000), QString(")").repeated(1000)));
    expectRefused(model.arg(QString("(").repeated(1001), QString(")").repeated(1001)));
    expectRefused(model.arg(QString("(").repeated(200000), QString(")").repeated(200000)));
    expectRefused("<!DOCTYPE svg [<!ELEMENT svg " + QString("(").repeated(200000));
}

TEST(SvgHostile, EntityBombs) {
    const QString kilo(4000, 'x');
    const QString many = QString("&a;").repeated(5000);
    expectRefused("<!DOCTYPE svg [<!ENTITY a '" + kilo + "'>]><svg a='" + many + "'/>");
    expectRefused("<!DOCTYPE svg [<!ENTITY a '" + kilo + "'>]><svg>" + many + "</svg>");
    expectRefused("<!DOCTYPE svg [<!ENTITY a '" + kilo.repeated(100) +
                  "'>]><svg>&a;&a;&a;&a;&a;&a;&a;&a;</svg>");
    expectRefused("<!DOCTYPE svg [<!ENTITY a '" + kilo + "'><!ATTLIST svg b CDATA '" + many + "'>]><svg/>");
    expectRefused("<!DOCTYPE svg [<!ENTITY a '" + kilo + "'><!ENTITY b '&#38;a;'>]><svg>" +
                  QString("&b;").repeated(5000) + "</svg>");
    expectRefused("<!DOCTYPE svg [<!ENTITY % d \"&#60;!ENTITY a '" + kilo + "'>\"> %d; ]><svg>" + many +
                  "</svg>");
    expectRefused("<!DOCTYPE svg [<!ENTITY % a '" + kilo + "'><!ENTITY b '" +
                  QString("%a;").repeated(100000) + "'>]><svg>&b;</svg>");
}

TEST(SvgHostile, ExpansionIsBoundedByTheText) {
    const auto used = [](int times) {
        return "<!DOCTYPE svg [<!ENTITY a '" + QString(1000, 'x') + "'>]><svg>" +
               QString("&a;").repeated(times) + "</svg>";
    };
    const auto expandsTooFar = [&](int times) { return 1000 * times > 256 * 1024 + 4 * used(times).size(); };
    int times = 1;
    while (!expandsTooFar(times + 1))
        ++times;
    expectTaken(used(times));
    expectRefused(used(times + 1));
}

/// The length of the animation of a drawing whose root has that attribute.
int durationWith(const QString& head, const QString& attribute) {
    return SvgDocument(head + "<svg a='" + attribute +
                       "'><animateColor attributeName='fill' from='red' to='blue' dur='1s'/></svg>")
        .durationMs();
}

TEST(SvgHostile, EntitiesThatExpandToAnEmptyText) {
    // The result is empty, but only after 3^30 replacements.
    QString entities = "<!ENTITY a0 ''>";
    for (int level = 1; level <= 30; ++level)
        entities += QString("<!ENTITY a%1 '%2'>").arg(level).arg(QString("&a%1;").arg(level - 1).repeated(3));
    expectRefused("<!DOCTYPE svg [" + entities + "]><svg a='&a30;'/>");
    expectRefused("<!DOCTYPE svg [" + entities + "]><svg>&a30;</svg>");
    const QString type = "<!DOCTYPE svg [" + entities + "]>";
    for (const char* encoding : {"UTF-8", "ISO-8859-1"})
        EXPECT_EQ(durationWith(QString("<?xml version='1.0' encoding='%1'?>").arg(encoding) + type, "&a30;"),
                  0);
    EXPECT_EQ(durationWith(type, "&a30;"), 0);
    EXPECT_EQ(durationWith(type, "&a1;"), 1000);
    EXPECT_EQ(durationWith("<?xml version='1.0' encoding='UTF-8'?>" + type, "&a1;"), 1000);
}

TEST(SvgHostile, AParameterEntityDoesNotHideAnotherOfItsName) {
    const QString entity = "<!ENTITY k '" + QString(4000, 'x') + "'>";
    const QString parameter = "<!ENTITY % k ''>";
    for (const QString& entities : {entity + parameter, parameter + entity}) {
        const QString head = "<!DOCTYPE svg [" + entities + "]>";
        EXPECT_EQ(durationWith(head, QString("&k;").repeated(10)), 1000);
        EXPECT_EQ(durationWith(head, QString("&k;").repeated(100)), 0);
    }
}

TEST(SvgHostile, AnEncodingDoesNotHideWhereTheContentBegins) {
    // The declaration is read as UTF-8, the rest far after it as UTF-16.
    const auto duration = [](int level) {
        QString entities = "<!ENTITY a0 ''>";
        for (int number = 1; number <= level; ++number)
            entities += QString("<!ENTITY a%1 '&a%2;&a%2;&a%2;'>").arg(number).arg(number - 1);
        const QString rest = QString(2000, ' ') + "<!DOCTYPE svg [" + entities +
                             QString("]><svg a='&a%1;'>").arg(level) +
                             "<animateColor attributeName='fill' from='red' to='blue' dur='1s'/></svg>";
        QString text = "<?xml version='1.0'" + QString(9000, ' ') + "encoding='UTF-16'?>";
        if (text.size() % 2 != 0)
            text.insert(text.indexOf(' '), ' ');
        for (const QChar c : rest) {
            text += c;
            text += QChar(0);
        }
        return SvgDocument(text).durationMs();
    };
    EXPECT_EQ(duration(1), 1000);
    EXPECT_EQ(duration(12), 0); // half a million replacements
}

TEST(SvgHostile, EntitiesThatQtDoesNotCheck) {
    // Qt's own limit does not apply to the last entity, to those that name later ones, and to sums that
    // overflow.
    const QString kilo(4000, 'x');
    const QString often = QString("&b;").repeated(1000);
    expectRefused("<!DOCTYPE svg [<!ENTITY a '" + kilo + "'><!ENTITY b '" + QString("&a;").repeated(1000) +
                  "'>]><svg>" + often + "</svg>");
    expectRefused("<!DOCTYPE svg [<!ENTITY b '" + QString("&a;").repeated(1000) +
                  "'><!ENTITY c 'x'><!ENTITY a '" + kilo + "'>]><svg a='" + often + "'/>");
    expectRefused("<!DOCTYPE svg [<!ENTITY a '" + QString(65536, 'x') + "'><!ENTITY b '" +
                  QString("&a;").repeated(65536) + "'><!ENTITY c 'x'>]><svg>&b;</svg>");
}

TEST(SvgHostile, AnEntityInItselfIsNotCopiedWithoutEnd) {
    // Qt allows references nested as deep as there are entities, and copies the value for each.
    QString text = "<!DOCTYPE svg [";
    for (int number = 0; number < 900; ++number)
        text += QString("<!ENTITY e%1 ''>").arg(number);
    expectRefused(text + "<!ENTITY a '&a;" + QString(300'000, '"') + "'>]><svg a='&a;'/>");
}

TEST(SvgHostile, EntitiesThatTakeLongToCompare) {
    // Qt searches each value for all names, and moves the rest of the value after each hit.
    QString many;
    QString longNames;
    for (int number = 0; number < 900; ++number) {
        many += QString("<!ENTITY e%1 'x'>").arg(number);
        longNames += QString("<!ENTITY e%1%2 'x'>").arg(number).arg(QString(5000, 'n'));
    }
    expectRefused("<!DOCTYPE svg [" + many + "<!ENTITY a '" + QString(5'000'000, 'x') +
                  "'><!ENTITY b ''>]><svg/>");
    expectRefused("<!DOCTYPE svg [" + longNames + "]><svg/>");
    expectRefused("<!DOCTYPE svg [<!ENTITY a ''><!ENTITY b '" + QString("&a;").repeated(300'000) +
                  "'><!ENTITY c ''>]><svg/>");
}

TEST(SvgHostile, ParameterEntities) {
    const QString comment = "<!-- " + QString(4000, 'x') + " -->";
    // Between declarations, many times.
    expectRefused("<!DOCTYPE svg [<!ENTITY % p '" + comment + "'>" + QString("%p;\n").repeated(5000) +
                  "]><svg/>");
    // In each other.
    expectRefused("<!DOCTYPE svg [<!ENTITY % p '" + comment + "'><!ENTITY % q '" +
                  QString("&#37;p;").repeated(1000) + "'>" + QString("%q;").repeated(1000) + "]><svg/>");
    expectRefused("<!DOCTYPE svg [<!ENTITY % p ''><!ENTITY % q '" + QString("&#37;p;").repeated(10'000) +
                  "'>" + QString("%q;").repeated(10'000) + "]><svg/>");
    // In values, before and after characters that make it a reference.
    expectRefused("<!DOCTYPE svg [<!ENTITY % p '" + QString(4000, 'x') + "'><!ENTITY % q '" +
                  QString("%p;").repeated(20) + "'><!ENTITY a '" + QString("%q;").repeated(1000) +
                  "'>]><svg>&a;</svg>");
    // Many entities at once.
    QString entities;
    for (int number = 0; number < 2000; ++number)
        entities += QString("<!ENTITY e%1 ''>").arg(number);
    expectRefused("<!DOCTYPE svg [<!ENTITY % p \"" + entities + "\"> %p; ]><svg/>");
    // An entity of a normal length that is used too often.
    expectRefused("<!DOCTYPE svg [<!ENTITY % p \"<!ENTITY a '" + QString(4000, 'x') + "'>\"> %p; ]><svg a='" +
                  QString("&a;").repeated(5000) + "'/>");
}

TEST(SvgHostile, ParameterEntitiesInThemselves) {
    // Qt reports an error and keeps nothing.
    const Tests::Log log;
    for (const char* entities :
         {"<!ENTITY % p '&#37;p;'> %p;", "<!ENTITY % p '&#37;q;'><!ENTITY % q '&#37;p;'> %p;",
          "<!ENTITY % p '&#37;p;&#37;p;'><!ENTITY a '%p;'>"}) {
        QDomDocument dom;
        const QString text = QString("<!DOCTYPE svg [%1]><svg/>").arg(entities);
        EXPECT_FALSE(dom.setContent(text, false)) << entities;
        EXPECT_EQ(SvgImage(text).toString(), "") << entities;
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(SvgHostile, ContentModelsInParameterEntitiesAreBounded) {
    const QString text = "<!DOCTYPE svg [<!ENTITY % p '%1'> %p;%2]><svg/>";
    const QString open = QString("(").repeated(600);
    const QString deep = QString("(").repeated(200'000);
    const QString closed = QString(")").repeated(600);
    expectTaken(text.arg("<!ELEMENT svg " + open + "b" + closed + ">", ""));
    for (const char* element : {"<!ELEMENT", "&#60;!ELEMENT"}) {
        expectRefused(text.arg(element + (" svg " + deep), ""));
        // One part in each.
        expectRefused(text.arg(element + (" svg " + open), open + "b" + closed + closed + ">"));
        expectRefused(text.arg(element + QString(" svg "), deep));
        expectRefused(text.arg(element, " svg " + deep));
    }
    expectRefused("<!DOCTYPE svg [<!ENTITY % p '<!ELE'><!ENTITY % q '%p;MENT svg '> %q;" + deep + "]><svg/>");
    // A keyword can't continue after a parameter entity: Qt reads a blank there and reports an error.
    roundTrip("<!DOCTYPE svg [<!ENTITY % p '<!ELE'> %p;MENT svg " + deep + "]><svg/>");
}

/// Reads a document in a child process, which exits with success if it needed neither much time nor much
/// memory.
[[noreturn]] void readWithinBounds(const QString& text) {
    const auto kilobytes = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    };
    const rlimit seconds{60, 60};
    setrlimit(RLIMIT_CPU, &seconds);
    const long before = kilobytes();
    const SvgDocument document(text);
    const long grown = kilobytes() - before;
    std::_Exit(document.durationMs() == 0 && grown < 600'000 ? 0 : 1);
}

TEST(SvgHostile, DefaultsOfAttributesThatExpandTooFar) {
    // A reader that does not know default values ignores all of these or reports an error.
    const QString kilo(4000, 'x');
    const QString defaults = "<!ATTLIST svg b CDATA '" + QString("&k;").repeated(300'000) + "'>";
    const QString entity = "<!ENTITY k '" + kilo + "'>";
    const QString error = "<!ENTITY y ''><!ENTITY x '" + QString(5000, 'x') + "&y;'><!ENTITY z ''>";
    for (const QString& declarations :
         {entity + defaults, error + entity + defaults, "<!ENTITY % k ''>" + entity + defaults,
          error + "<!ENTITY % p \"" + QString(defaults).replace('&', "&#38;") + "\">" + entity + "%p;",
          error + "<!ENTITY % p \"" + QString(defaults).replace('&', "&#38;").replace('<', "&#60;") + "\">" +
              entity + "\n %p;",
          error + "<!ENTITY % p '" + kilo + "'><!-- -->" + QString("\t%p;").repeated(300'000)}) {
        EXPECT_EXIT(
            readWithinBounds("<!DOCTYPE svg [" + declarations + "]><svg><animateColor dur='1s'/></svg>"),
            testing::ExitedWithCode(0), "")
            << declarations.left(100).toStdString();
    }
}

TEST(SvgHostile, EntitiesInATextThatLooksLikeUtf16) {
    QString text;
    for (const QChar c : "<!DOCTYPE svg [<!ENTITY k '" + QString(4000, 'x') + "'><!ATTLIST svg b CDATA '" +
                             QString("&k;").repeated(300'000) + "'>]><svg/>") {
        text += c;
        text += QChar(0);
    }
    EXPECT_EXIT(readWithinBounds(text), testing::ExitedWithCode(0), "");
}

TEST(SvgHostile, EmptyParameterEntitiesThatExpandForLong) {
    QString entities =
        "<!ENTITY y ''><!ENTITY x '" + QString(5000, 'x') + "&y;'><!ENTITY z ''><!ENTITY % a0 ''>";
    for (int level = 1; level <= 30; ++level)
        entities +=
            QString("<!ENTITY % a%1 '%2'>").arg(level).arg(QString("&#37;a%1;").arg(level - 1).repeated(3));
    EXPECT_EXIT(readWithinBounds("<!DOCTYPE svg [" + entities + " %a30; ]><svg/>"),
                testing::ExitedWithCode(0), "");
}

TEST(SvgHostile, ABillionLaughsKeepWhatQtsParserRead) {
    // Qt has a limit of its own for entities in entities.
    QString text = "<!DOCTYPE svg [<!ENTITY a0 'laughter'>";
    for (int level = 1; level < 30; ++level)
        text += QString("<!ENTITY a%1 '%2'>").arg(level).arg(QString("&a%1;").arg(level - 1).repeated(10));
    roundTrip(text + "]><svg a='&a29;'>&a29;</svg>");
    roundTrip("<!DOCTYPE svg [<!ENTITY a '&b;'><!ENTITY b '&a;'>]><svg a='&a;'>&a;</svg>");
}

TEST(SvgHostile, ManyEntitiesAreRefusedAndSomeAreNot) {
    const auto declared = [](int count) {
        QString text = "<!DOCTYPE svg [";
        for (int number = 0; number < count; ++number)
            text += QString("<!ENTITY st%1 'fill:#%1'>").arg(number);
        return text + "]><svg><g style='&st1;'/></svg>";
    };
    expectTaken(declared(300));
    expectRefused(declared(20000));
}

TEST(SvgHostile, DefaultsOfADocumentTypeAreNotGivenToEveryElement) {
    QString text = "<!DOCTYPE svg [<!ATTLIST animateColor";
    for (int number = 0; number < 20000; ++number)
        text += QString(" a%1 CDATA '1'").arg(number);
    text += ">]><svg>" + QString("<animateColor from='red' to='blue' dur='1s'/>").repeated(20000) + "</svg>";
    EXPECT_EQ(SvgImage(text).document()->durationMs(), 0);
}

TEST(SvgHostile, DefaultsThatEntitiesHideAreNotGivenToEveryElement) {
    // Each declaration has few attributes; only the quotation marks show that there are many in total.
    const auto duration = [](int lists) {
        QString text = "<!DOCTYPE svg [";
        for (int number = 0; number < lists; ++number)
            text += QString("<!ATTLIST animateColor a%1 CDATA '1'>").arg(number);
        return SvgImage(text + "]><svg><animateColor attributeName='fill' from='red' to='blue' begin='0s' "
                               "dur='1s'/></svg>")
            .document()
            ->durationMs();
    };
    EXPECT_EQ(duration(10), 1000);
    EXPECT_EQ(duration(300), 0);
}

TEST(SvgHostile, DocumentTypesWithManyAttributes) {
    QString lists;
    QString attributes;
    for (int number = 0; number < 100000; ++number) {
        lists += QString("<!ATTLIST e%1 a CDATA #IMPLIED>").arg(number);
        attributes += QString(" a%1 CDATA '1'").arg(number);
    }
    expectTaken("<!DOCTYPE svg [" + lists + "]><svg/>");
    expectTaken("<!DOCTYPE svg [<!ATTLIST svg" + attributes + ">]><svg/>");
}

TEST(SvgHostile, CharactersThatAreEscaped) {
    expectTaken("<svg a='" + QString(3'000'000, '"') + "'/>");
    expectTaken("<svg>" + QString("&lt;").repeated(1'000'000) + "</svg>");
    expectTaken("<svg fill='red' a='" + QString("&amp;").repeated(1'000'000) + "'/>");
    expectTaken("<svg a='" + QString("&#9;").repeated(1'000'000) + "'/>");
    expectTaken("<?xml version='1.0' encoding='ISO-8859-1'?><svg>" + QString(1'000'000, QChar(0x4e2d)) +
                "</svg>");
}

TEST(SvgHostile, ManyAttributesWithMuchToEscapeAreRefused) {
    QString attributes;
    for (int number = 0; number < 300; ++number)
        attributes += QString(" a%1='%2'").arg(number).arg(QString(100, '"'));
    expectTaken("<svg" + attributes + "/>");
    expectRefused("<svg" + attributes + " b='" + QString(1'000'000, '"') + "'/>");
    expectTaken("<svg" + attributes + " b='" + QString(1'000'000, 'x') + "'/>");
}

TEST(SvgHostile, AnElementWithManyAttributes) {
    QString text = "<svg";
    for (int number = 0; number < 100000; ++number)
        text += QString(" a%1='1'").arg(number);
    const QString result = roundTrip(text + "/>");
    EXPECT_TRUE(result.contains(" a99999=\"1\" fill=\"#123456\" stroke=\"#654321\"/>"));
}

TEST(SvgHostile, ManySiblings) {
    const QString text =
        "<svg>" +
        QString("<linearGradient><stop stop-color='red'/></linearGradient><use xlink:href='#a'/>"
                "<g id='p' fill='red' stroke='red'><animate attributeName='x' values='p.posX;2' "
                "begin='q.end'/></g>")
            .repeated(4000) +
        "<adjustablePoint id='p' posX='1' posY='2'/></svg>";
    SvgImage image(text);
    EXPECT_THAT(image.document()->animations(), SizeIs(4000));
    image.setFillColor(Qt::blue);
    EXPECT_TRUE(image.toString().contains("fill=\"red\""));
}

TEST(SvgHostile, ManySourcesAndUsesOfOneId) {
    const QString text =
        "<svg><defs>" +
        QString("<use id='a' visibility='visible' xlink:href='#a'/><use id='a' visibility='hidden' "
                "xlink:href='#a'/>")
            .repeated(10000) +
        "</defs></svg>";
    const SvgImage image(text);
    const QDomElement defs = image.document()->dom().documentElement().firstChildElement();
    EXPECT_EQ(defs.lastChildElement().attribute("visibility"),
              defs.firstChildElement().attribute("visibility"));
}

TEST(SvgHostile, GradientsInGradientsAreReportedAndEndThere) {
    const Tests::Log log;
    QString text = "<svg>" + QString("<linearGradient>").repeated(200) +
                   QString("<stop stop-color='red'/>").repeated(1000) +
                   QString("</linearGradient>").repeated(200) + "</svg>";
    const SvgImage image(text);
    EXPECT_THAT(image.document()->gradientStops(), SizeIs(8 * 1000));
    EXPECT_THAT(log.lines(), ElementsAre("ERROR gradients stand too deep in one another"));
}

TEST(SvgHostile, ManySiblingGradientsAreAccepted) {
    const Tests::Log log;
    const SvgImage image("<svg>" +
                         QString("<linearGradient><stop stop-color='red'/></linearGradient>").repeated(100) +
                         "</svg>");
    EXPECT_THAT(image.document()->gradientStops(), SizeIs(100));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(SvgHostile, PointsThatNameOneAnotherAreNotFilledIn) {
    QString text = "<svg>";
    for (int number = 0; number < 60; ++number)
        text += QString("<adjustablePoint id='a%1' posX='a%2.posX a%2.posX' posY='1'/>")
                    .arg(number)
                    .arg(number + 1);
    text += "<line><animate attributeName='x1' values='a0.posX;2'/></line></svg>";
    const Tests::Log log;
    const SvgImage image(text);
    EXPECT_THAT(log.lines(), ElementsAre("ERROR adjustable points name one another too often"));
    EXPECT_EQ(image.document()->content(), text.toUtf8());
    const auto point =
        std::dynamic_pointer_cast<AnimatableAttributeAdjustablePoint>(image.document()->animations().at(0));
    ASSERT_TRUE(point);
    EXPECT_TRUE(point->inner); // from the unchanged text
}

TEST(SvgHostile, APointThatNamesItselfIsFilledInOnce) {
    const Tests::Log log;
    const SvgImage image(
        "<svg><adjustablePoint id='a' posX='a.posX 1' posY='2'/><adjustablePoint id='b' posX='a.posX' "
        "posY='2'/><line><animate attributeName='d' values='a.posX;2'/></line></svg>");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(SvgHostile, ManyPoints) {
    QString text = "<svg>";
    for (int number = 0; number < 20000; ++number)
        text += QString("<adjustablePoint id='a%1' posX='%1' posY='1'/>").arg(number);
    const Tests::Log log;
    const SvgImage image(text + "<line><animate attributeName='x1' values='a7.posX;2'/></line></svg>");
    EXPECT_THAT(image.document()->adjustablePoints(), SizeIs(20000));
    EXPECT_TRUE(image.toString().contains("posX=\"19999\""));
    const auto point =
        std::dynamic_pointer_cast<AnimatableAttributeAdjustablePoint>(image.document()->animations().at(0));
    ASSERT_TRUE(point);
    const auto inner = std::dynamic_pointer_cast<AnimatableAttributeFloat>(point->inner);
    ASSERT_TRUE(inner);
    EXPECT_THAT(inner->values, ElementsAre(7, 2));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(SvgHostile, ManyPointsThatEachNameTheNext) {
    // The value of each names the next one, so the whole text must be searched again.
    QString text = "<svg>";
    for (int number = 0; number < 20000; ++number)
        text += QString("<adjustablePoint id='a%1' posX='a%2.posX' posY='1'/>").arg(number).arg(number + 1);
    const Tests::Log log;
    const SvgImage image(text + "<line><animate attributeName='x1' values='a0.posX;2'/></line></svg>");
    EXPECT_THAT(log.lines(), ElementsAre("ERROR adjustable points name one another too often"));
}

TEST(SvgHostile, ReferencesInACycle) {
    expectTaken(
        "<svg><g id='a'><use xlink:href='#a'/></g><use id='b' xlink:href='#c'/><use id='c' xlink:href='#b'/>"
        "<linearGradient id='d' xlink:href='#e'/><linearGradient id='e' xlink:href='#d'/>"
        "<clipPath id='f' clip-path='url(#f)'/><pattern id='h' fill='url(#h)'/>"
        "<filter id='i'><feImage xlink:href='#i'/></filter></svg>");
}

TEST(SvgHostile, AnimationsInManyCycles) {
    QString text = "<svg>";
    for (int number = 0; number < 3000; ++number)
        text += QString("<animate id='a%1' begin='a%2.end'/>").arg(number).arg(number ^ 1);
    const Tests::Log log;
    roundTrip(text + "</svg>");
    EXPECT_THAT(log.lines(), SizeIs(1500));
}

TEST(SvgHostile, StyleSheetsAreNotApplied) {
    expectTaken("<svg><style>" + QString("* g g {fill:red}\n").repeated(20000) + "</style>" +
                QString("<g class='a'/>").repeated(20000) + "</svg>");
}

TEST(SvgHostile, NoFileIsOpened) {
    // Opening a pipe for reading would wait for a writer for ever.
    const QTemporaryDir folder;
    const QString pipe = folder.filePath("pipe");
    ASSERT_EQ(mkfifo(pipe.toUtf8().constData(), 0600), 0);
    expectTaken("<?xml-stylesheet type='text/css' href='" + pipe + "'?><!DOCTYPE svg SYSTEM '" + pipe +
                "'><svg><image width='1' height='1' xlink:href='" + pipe + "'/><style>@import url(" + pipe +
                ");</style><use xlink:href='" + pipe + "#a'/></svg>");
    expectTaken("<!DOCTYPE svg [<!ENTITY a SYSTEM '" + pipe + "'>]><svg>&a;<animate/></svg>");
}

TEST(SvgHostile, TextsOfManyKinds) {
    const QString lone(QChar(0xd800));
    const QString texts[] = {
        QString(QChar(0)),
        QString("<svg>") + QChar(0) + "</svg>",
        lone,
        "<svg a='" + lone + "'>" + lone + "<animate " + lone + "</svg>",
        "<svg" + lone + "/>",
        QString(QChar(0xffff)),
        QString("<svg a='") + QChar(0xffff) + QChar(0xfffe) + "'>" + QChar(0xfffe) + "</svg>",
        QString(QChar(0xfeff)) + "<svg/>",
        "<svg>&#0;&#xd800;&#x110000;&#99999999999;&;&#;&#x;</svg>",
        "<svg a='&#0;&#xd800;&#x110000;'/>",
        "<!DOCTYPE",
        "<!DOCTYPE svg [",
        "<!DOCTYPE svg [<!ENTITY",
        "<!DOCTYPE svg [<!ENTITY a",
        "<!DOCTYPE svg [<!ENTITY a '",
        "<?xml",
        "<?xml version='1.0' encoding='",
        "<svg><![CDATA[",
        "<svg><!--",
        "<svg a=",
        "<svg a='",
        "<svg/><svg/>",
        "</svg>",
        "<svg></g>",
        "<\xc3\xa9/>",
        "<a:b:c d:e:f='1'/>",
        "<svg xmlns:xml='x' xmlns='' xmlns:='y'/>",
    };
    for (const QString& text : texts)
        roundTrip(text);
}

TEST(SvgHostile, MegabytesOfTrivialText) {
    roundTrip(QString(5'000'000, 'x'));
    roundTrip(QString(5'000'000, '<'));
    roundTrip(QString("\"rgba(").repeated(500'000));
    roundTrip("<svg a=\"" + QString("rgba(1,2,3,4)\" \"").repeated(200'000));
    roundTrip("<svg a='" + QString(5'000'000, 'x') + "'/>");
    roundTrip("<svg>" + QString("&").repeated(1'000'000) + "</svg>");
    roundTrip("<svg>" + QString("<!DOCTYPE").repeated(300'000));
    roundTrip("<svg><animate attributeName='x' values='" + QString("1;").repeated(1'000'000) + "'/></svg>");
    roundTrip("<svg><animate attributeName='x' values='M" + QString(" 1").repeated(1'000'000) + "'/></svg>");
}

TEST(SvgHostile, NumbersOutOfRange) {
    const SvgImage image(
        "<svg stroke-width='99999999999999999999' fill-opacity='1e999' stroke-opacity='-1e999'>"
        "<animate id='CONCLUSION' attributeName='x' begin='-1e30s' dur='1e30s' "
        "repeatCount='99999999999'/><animate attributeName='y' begin='1e30' dur='1e30'/>"
        "<animate id='z' attributeName='y' begin='-2147483648ms' dur='-2147483648ms'/>"
        "<animate attributeName='y' begin='z.end-2147483648ms'/>"
        "<animateMotion id='CONCLUSION' begin='2147483647ms'/></svg>");
    EXPECT_EQ(image.strokeWidth(), 0);
    EXPECT_EQ(image.fillOpacity(), 255);
    EXPECT_EQ(image.strokeOpacity(), 0);
    EXPECT_EQ(image.document()->animations().at(0)->repeatCount, -1);
}

} // namespace
