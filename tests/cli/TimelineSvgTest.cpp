// The picture of timelines as SVG.

#include "TimelineSvg.h"

#include "support/ProgramTest.h"

#include <gtest/gtest.h>

#include <QDomDocument>
#include <QRegularExpression>

#include <set>

using Reader::Timeline;
using Tests::archive;
using Tests::ProgramTest;
using Tests::sample;

namespace {

QDomDocument parsed(const QByteArray& svg) {
    QDomDocument document;
    QString error;
    EXPECT_TRUE(document.setContent(svg, false, &error)) << error.toStdString();
    return document;
}

/// The descriptions of all clips.
QStringList clipsIn(const QDomDocument& svg) {
    QStringList labels;
    const QDomNodeList groups = svg.elementsByTagName("g");
    for (int number = 0; number < groups.length(); ++number) {
        const QDomElement group = groups.item(number).toElement();
        if (group.attribute("class").startsWith("clip"))
            labels << group.attribute("aria-label");
    }
    return labels;
}

TEST_F(ProgramTest, TimelineDrawsEveryClipOfASample) {
    for (const char* name : {"holiday-v3.xml", "holiday-v45.xml", "holiday-v70.json", "holiday-v76.json"}) {
        write("film", sample(name));
        ASSERT_EQ(run({"timeline", "film", "-o", "film.svg", "--force"}).exitCode, 0);
        const QDomDocument svg = parsed(read("film.svg"));
        const auto timelines = Reader::readTimelines(Reader::parse(sample(name), QStringLiteral("film")));
        const QStringList clips = clipsIn(svg);
        int count = 0;
        for (const Timeline& timeline : timelines) {
            for (const auto& clip : timeline.clips) {
                ++count;
                EXPECT_FALSE(clips.filter(QString::fromStdString(clip.name) + ", ").isEmpty()) << clip.name;
            }
        }
        EXPECT_EQ(clips.size(), count) << name;
        EXPECT_TRUE(read("film.svg").contains("class=\"transition\""));
        EXPECT_TRUE(read("film.svg").contains("class=\"effects\""));
    }
}

TEST_F(ProgramTest, TimelineNeedsNothingElse) {
    write("film.xml", sample("holiday-v45.xml"));
    const QByteArray svg = run({"timeline", "film.xml"}).out;
    EXPECT_FALSE(svg.contains("<script"));
    EXPECT_FALSE(svg.contains("href"));
    EXPECT_FALSE(svg.contains("url("));
    EXPECT_FALSE(svg.contains("@import"));
    EXPECT_EQ(svg.count("http"), 1); // the name of SVG itself
    EXPECT_TRUE(svg.contains("prefers-color-scheme: dark"));
    // Everything lies in the picture.
    const QDomElement root = parsed(svg).documentElement();
    const QDomNodeList bars = root.elementsByTagName("rect");
    for (int number = 0; number < bars.length(); ++number) {
        const QDomElement bar = bars.item(number).toElement();
        EXPECT_GE(bar.attribute("x").toDouble(), 0);
        EXPECT_LE(bar.attribute("x").toDouble() + bar.attribute("width").toDouble(),
                  root.attribute("width").toDouble());
        EXPECT_LE(bar.attribute("y").toDouble() + bar.attribute("height").toDouble(),
                  root.attribute("height").toDouble());
    }
}

TEST_F(ProgramTest, TimelineIsWrittenAsOtherResults) {
    write("film.xml", archive());
    ASSERT_EQ(run({"timeline", "film.xml", "-o", "film.svg"}).exitCode, 0);
    expectFailure({"timeline", "film.xml", "-o", "film.svg"}, 16, "--force");
    EXPECT_EQ(run({"timeline", "film.xml"}).out, read("film.svg"));
    EXPECT_EQ(run({"timeline", "-", "-o", "-"}, archive()).out.count("<g "), 1);
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("pictures"));
    ASSERT_EQ(run({"timeline", "film.xml", "-o", "pictures"}).exitCode, 0);
    EXPECT_TRUE(exists("pictures/film.svg"));
    expectFailure({"timeline", "none.xml", "-o", "x.svg"}, 3, "none.xml");
    EXPECT_FALSE(exists("x.svg"));
}

TEST(TimelineSvg, TextsOfDocumentsAreEscaped) {
    Timeline timeline;
    timeline.role = Timeline::Role::Main;
    timeline.tracks = {{0, Reader::TrackKind::Main}};
    const std::vector<std::string> hostile = {"<script>alert(1)</script>",
                                              "\" onload=\"alert(1)",
                                              "' & ]]> <![CDATA[",
                                              "a\nb\tc\x01\x1b[31m",
                                              "\xe2\x80\xae\xe2\x81\xa6",
                                              "\xef\xbf\xbe\xef\xbf\xbf",
                                              "\xff\xfe",
                                              std::string(1 << 20, 'x')};
    for (const std::string& text : hostile) {
        timeline.name = text;
        timeline.clips.emplace_back();
        auto& clip = timeline.clips.back();
        clip.name = clip.media = text;
        clip.id = timeline.clips.size();
        clip.start = static_cast<long long>(timeline.clips.size()) * 1000;
        clip.duration = 1000;
        clip.effects.push_back({5, text, text});
        timeline.transitions.push_back({6, text, text, clip.id, 0, 100});
        const QByteArray svg =
            QByteArray::fromStdString(TimelineSvg::timelineSvg({timeline}, {1200, text, false}));
        const QDomDocument document = parsed(svg);
        EXPECT_EQ(document.elementsByTagName("script").length(), 0);
        EXPECT_FALSE(svg.contains("onload=\"a"));
        EXPECT_FALSE(svg.contains("\xe2\x80\xae"));
        EXPECT_LT(svg.size(), 100000);
        const QDomNodeList groups = document.elementsByTagName("g");
        const std::set<QString> known = {"class", "role", "aria-label"};
        for (int number = 0; number < groups.length(); ++number) {
            const QDomNamedNodeMap attributes = groups.item(number).attributes();
            for (int place = 0; place < attributes.length(); ++place)
                EXPECT_TRUE(known.count(attributes.item(place).nodeName()));
        }
    }
}

TEST(TimelineSvg, ClipsAndTimelinesWithoutNames) {
    Timeline timeline;
    timeline.role = Timeline::Role::Main;
    timeline.tracks = {{0, Reader::TrackKind::Main}};
    timeline.clips.emplace_back();
    timeline.clips[0].duration = 1000;
    timeline.clips[0].isEnabled = false;
    const QByteArray svg = QByteArray::fromStdString(TimelineSvg::timelineSvg({timeline}, {}));
    EXPECT_EQ(clipsIn(parsed(svg)),
              QStringList("clip without a name, unknown, 0:00:00.000, 0:00:01.000 long, switched off"));
    EXPECT_TRUE(svg.contains("<g class=\"clip unknown off\""));
    EXPECT_TRUE(svg.contains("<tspan class=\"heading\">timeline without a name</tspan>"));
}

TEST(TimelineSvg, OnlyAClipThatIsWideEnoughHasTheSignOfEffects) {
    Timeline timeline;
    timeline.role = Timeline::Role::Main;
    timeline.tracks = {{0, Reader::TrackKind::Main}};
    timeline.clips.resize(2);
    timeline.clips[0].duration = 1000;
    timeline.clips[1].start = 1000;
    timeline.clips[1].duration = 1;
    const auto signsOf = [&] {
        return QByteArray::fromStdString(TimelineSvg::timelineSvg({timeline}, {}))
            .count("<circle class=\"effects\"");
    };
    EXPECT_EQ(signsOf(), 0);
    timeline.clips[1].effects = {{5, "Effect::Blur", ""}};
    EXPECT_EQ(signsOf(), 0);
    timeline.clips[0].effects = {{6, "Effect::Blur", ""}};
    EXPECT_EQ(signsOf(), 1);
}

TEST(TimelineSvg, UnusedTimelinesAreLeftOut) {
    Timeline timeline;
    timeline.name = "unused";
    EXPECT_EQ(TimelineSvg::timelineSvg({timeline}, {}).find("unused"), std::string::npos);
    EXPECT_NE(TimelineSvg::timelineSvg({timeline}, {1200, "", true}).find("unused"), std::string::npos);
}

} // namespace
