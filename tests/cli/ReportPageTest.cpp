// The page that `adaptors report` writes.

#include "report/Assets.h"
#include "report/Html.h"
#include "report/Page.h"
#include "support/ProgramTest.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDomDocument>
#include <QRegularExpression>

#include <set>

using nlohmann::ordered_json;
using Tests::archive;
using Tests::Outcome;
using Tests::sample;

namespace {

QByteArray sha256(const QByteArray& bytes) {
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}

/// The page as XML, which it is but for its first line and its script.
QDomDocument parsed(QByteArray page) {
    page.replace("<!DOCTYPE html>\n", "");
    const int script = page.lastIndexOf("<script>");
    if (script >= 0)
        page.remove(script, page.lastIndexOf("</script>") + 9 - script);
    QDomDocument document;
    QString error;
    int line = 0;
    EXPECT_TRUE(document.setContent(page, false, &error, &line))
        << error.toStdString() << " in " << page.split('\n').value(line - 1).left(400).toStdString();
    return document;
}

/// Descriptions of the clips in the pictures of that side.
QStringList clipsIn(const QDomDocument& page, const QString& side) {
    QStringList titles;
    const QDomNodeList figures = page.elementsByTagName("figure");
    for (int place = 0; place < figures.length(); ++place) {
        const QDomElement figure = figures.item(place).toElement();
        if (figure.attribute("class") != side)
            continue;
        const QDomNodeList pictures = figure.elementsByTagName("svg");
        for (int number = 0; number < pictures.length(); ++number) {
            const QDomElement clip = pictures.item(number).toElement();
            if (clip.attribute("class").startsWith("clip "))
                titles << clip.firstChildElement("title").text();
        }
    }
    return titles;
}

QByteArray contentOf(const QByteArray& page, const QByteArray& element) {
    const int start = page.lastIndexOf('<' + element + '>') + element.size() + 2;
    return page.mid(start, page.indexOf("</" + element + '>', start) - start);
}

QByteArray idText(const QByteArray& page, const QByteArray& id) {
    const QRegularExpression form("id=\"" + QString::fromLatin1(id) + "\">([^<]*)<");
    return form.match(QString::fromUtf8(page)).captured(1).toUtf8();
}

class ReportPageTest : public Tests::ProgramTest {
protected:
    QByteArray pageOf(const QByteArray& project, int code = 0, const QStringList& options = {}) const {
        write("film", project);
        const Outcome outcome = run(QStringList{"report", "film", "-o", "film.html", "--force"} + options);
        EXPECT_EQ(outcome.exitCode, code) << outcome.err.toStdString();
        EXPECT_EQ(outcome.out, "");
        return read("film.html");
    }
};

/// A project with a quiz, which version 69 removes.
QByteArray withQuiz() {
    return R"({"version":"1.0","schemaVersion":68,"data":{"@meta":{"class_name":"Timeline::Object","object_id":1},
        "name":"Trip","tracks":[],
        "clips":[{"clip":{"@meta":{"class_name":"Timeline::Clip","object_id":2},"name":"Question","type":32},
                  "timing":{"@meta":{"class_name":"Timeline::ClipTiming","object_id":3},"timestamp":0,"duration":10}},
                 {"clip":{"@meta":{"class_name":"Timeline::Clip","object_id":4},"name":"Beach","type":1},
                  "timing":{"@meta":{"class_name":"Timeline::ClipTiming","object_id":5},"timestamp":10,"duration":20}}]}})";
}

QByteArray failing() {
    return archive("<RootObject type='File' objectId='4'/>")
        .replace("<name ", "<file type='ObjectRef' value='4'/><name ");
}

TEST(Html, TextsAreEscapedForElementsAndAttributes) {
    EXPECT_EQ(Html::escaped("<a href=\"x\" id='y'>&amp;"),
              "&lt;a href=&quot;x&quot; id=&#39;y&#39;&gt;&amp;amp;");
    EXPECT_EQ(Html::escaped("a\nb\x1b\u202e\u2028"), "a\\nb\\x1b\\u202e\\u2028");
    EXPECT_EQ(Html::escaped(std::string("\0", 1)), "\\x00");
    EXPECT_EQ(Html::escaped("\xff\xc3"), "\\xff\\xc3");
    EXPECT_EQ(Html::escaped("\uffff"), "\ufffd");
    EXPECT_EQ(Html::escaped("Küste 海 🎬"), "Küste 海 🎬");
}

TEST(Html, LongTextsAreCutOffBetweenCharacters) {
    EXPECT_EQ(Html::limited("äöü", 3), "äöü");
    EXPECT_EQ(Html::limited("äöüß", 3), "äöü… (4 characters)");
    EXPECT_EQ(Html::shortened("<<<", 2), "&lt;&lt;…");
    EXPECT_EQ(Html::visible("<\n>", 2), "<\\n…");
    EXPECT_LT(Html::limited(std::string(1 << 20, '<'), 2000).size(), 9000U);
    EXPECT_NE(Html::limited(std::string(1 << 20, 'x'), 10).find("(1,048,576 characters)"), std::string::npos);
    EXPECT_EQ(Html::number(0), "0");
    EXPECT_EQ(Html::number(999), "999");
    EXPECT_EQ(Html::number(1234567), "1,234,567");
}

TEST(Html, ValuesForScriptsCannotEndTheirElement) {
    const ordered_json value = {{"</script>", "<!-- & \u2028\u2029 \xff"}};
    const std::string text = Html::json(value);
    for (const char* forbidden : {"<", ">", "&", "\u2028", "\u2029", "\xff"})
        EXPECT_EQ(text.find(forbidden), std::string::npos) << forbidden;
    EXPECT_EQ(ordered_json::parse(text)["</script>"], "<!-- & \u2028\u2029 \ufffd");
}

TEST(Html, ThePolicyNamesTheHashesOfStyleAndScript) {
    // The hash of "abc" is a published test vector.
    EXPECT_EQ(Html::policySource("abc"), "'sha256-ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0='");
    const std::string page = Html::document({"<t>", "abc", "", "body"});
    EXPECT_NE(
        page.find("style-src 'sha256-ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0='; script-src 'none';"),
        std::string::npos);
    EXPECT_NE(page.find("<title>&lt;t&gt;</title>"), std::string::npos);
    EXPECT_EQ(page.find("<script"), std::string::npos);
}

TEST(ReportAssets, CanBeWrittenIntoAPage) {
    for (const std::string_view asset : {ReportAssets::baseStyle, ReportAssets::pageStyle,
                                         ReportAssets::tableStyle, ReportAssets::pageScript}) {
        EXPECT_GT(asset.size(), 100U);
        for (const char* forbidden : {"</", "<!--", "http:", "https:", "@import", "\r"})
            EXPECT_EQ(asset.find(forbidden), std::string_view::npos) << forbidden;
    }
    for (const char* forbidden :
         {"innerHTML", "outerHTML", "insertAdjacentHTML", "document.write", "eval(", "Function("})
        EXPECT_EQ(ReportAssets::pageScript.find(forbidden), std::string_view::npos) << forbidden;
}

TEST_F(ReportPageTest, ShowsEveryClipOfASampleBeforeAndAfter) {
    for (const char* name :
         {"holiday-v3.xml", "holiday-v27.xml", "holiday-v45.xml", "holiday-v60.json", "holiday-v76.json"}) {
        const QDomDocument page = parsed(pageOf(sample(name)));
        ASSERT_EQ(run({"migrate", "film", "-o", "film.json", "--force"}).exitCode, 0);
        const std::pair<const char*, QByteArray> sides[] = {{"before", sample(name)},
                                                            {"after", read("film.json")}};
        for (const auto& [side, project] : sides) {
            QStringList titles = clipsIn(page, side);
            for (const auto& timeline : Reader::readTimelines(Reader::parse(project, "film"))) {
                for (const auto& clip : timeline.clips) {
                    const QString start =
                        "Clip " + QString::fromStdString(clip.name.empty() ? "without a name" : clip.name) +
                        ", track ";
                    const auto found = std::find_if(titles.begin(), titles.end(), [&](const QString& title) {
                        return title.startsWith(start);
                    });
                    ASSERT_NE(found, titles.end()) << name << ' ' << side << ' ' << clip.name;
                    EXPECT_TRUE(found->contains(QString::fromLatin1(nameOf(clip.kind).data())));
                    titles.erase(found);
                }
            }
            EXPECT_TRUE(titles.isEmpty()) << name << ' ' << side << ' ' << titles.join('\n').toStdString();
        }
    }
}

TEST_F(ReportPageTest, HashesAreThoseOfTheInputAndOfTheResultOfMigrate) {
    const QByteArray page = pageOf(sample("holiday-v45.xml"));
    ASSERT_EQ(run({"migrate", "film"}).exitCode, 0);
    EXPECT_EQ(idText(page, "input-sha256"), sha256(sample("holiday-v45.xml")).toHex());
    EXPECT_EQ(idText(page, "result-sha256"), sha256(read("film.v77.json")).toHex());
    EXPECT_TRUE(page.contains("film.v77.json"));
    EXPECT_TRUE(page.contains("adaptors 1.0.0, schema version 77"));
    // With the options that decide on the result.
    const QByteArray other = pageOf(sample("holiday-v45.xml"), 0, {"--to", "50"});
    ASSERT_EQ(run({"migrate", "film", "--to", "50"}).exitCode, 0);
    EXPECT_EQ(idText(other, "result-sha256"), sha256(read("film.v50.xml")).toHex());
}

TEST_F(ReportPageTest, ThePolicyFitsThePage) {
    const QByteArray page = pageOf(withQuiz());
    const auto source = [](const QByteArray& content) {
        return "'sha256-" + sha256(content).toBase64() + '\'';
    };
    EXPECT_TRUE(page.contains("content=\"default-src 'none'; style-src " + source(contentOf(page, "style")) +
                              "; script-src " + source(contentOf(page, "script")) + "; img-src data:; "));
    EXPECT_FALSE(page.contains("unsafe"));
    EXPECT_FALSE(QString::fromUtf8(page).contains(QRegularExpression("<[^>]* style=")));
    EXPECT_FALSE(QString::fromUtf8(page).contains(QRegularExpression("<[^>]* on[a-z]+=")));
    EXPECT_FALSE(page.contains("http:") || page.contains("https:"));
    EXPECT_EQ(page.count("<script"), 2);
    // Links stay in the page.
    const QDomNodeList links = parsed(page).elementsByTagName("a");
    for (int place = 0; place < links.length(); ++place)
        EXPECT_TRUE(links.item(place).toElement().attribute("href").startsWith('#'));
}

TEST_F(ReportPageTest, WhatNeedsScriptsIsHiddenWithoutThem) {
    const QDomDocument page = parsed(pageOf(withQuiz()));
    const auto withId = [&](const QDomElement& from, const QString& id) {
        QDomElement found;
        for (const char* tag : {"div", "aside", "section", "details"}) {
            const QDomNodeList elements = from.elementsByTagName(tag);
            for (int place = 0; place < elements.length(); ++place) {
                if (elements.item(place).toElement().attribute("id") == id)
                    found = elements.item(place).toElement();
            }
        }
        return found;
    };
    for (const char* id : {"tools", "stage", "detail"})
        EXPECT_TRUE(withId(page.documentElement(), id).hasAttribute("hidden")) << id;
    for (const char* id : {"timelines", "stages", "missing", "steps", "faults", "clips", "about"})
        EXPECT_FALSE(withId(page.documentElement(), id).isNull()) << id;
    const QDomElement steps = withId(page.documentElement(), "steps");
    EXPECT_TRUE(steps.text().contains("V69_RemoveQuizzesAdaptor"));
    EXPECT_TRUE(steps.text().contains("removed clip Question at 0:00"));
    EXPECT_TRUE(withId(page.documentElement(), "missing")
                    .text()
                    .contains("clip Question (id 2): projects have no quizzes any more"));
}

TEST_F(ReportPageTest, RemovedClipsHaveTheirReasonAndOnlyThose) {
    const QDomDocument page = parsed(pageOf(withQuiz()));
    const QStringList before = clipsIn(page, "before");
    ASSERT_EQ(before.size(), 2);
    EXPECT_EQ(before[0],
              QStringLiteral("Clip Question, track unknown, 0:00–0:00.010, quiz, removed by V69: projects "
                             "have no quizzes any more"));
    EXPECT_EQ(before[1], QStringLiteral("Clip Beach, track unknown, 0:00.010–0:00.030, video, kept"));
    EXPECT_EQ(clipsIn(page, "after"), QStringList(before[1]));
    EXPECT_EQ(read("film.html").count("class=\"hatch\""), 2); // the clip, and the legend
}

TEST_F(ReportPageTest, DataForScriptsHoldOnlyWhatEachStepChanged) {
    const QByteArray page = pageOf(withQuiz());
    const QByteArray start = "<script type=\"application/json\" id=\"data\">";
    const int begin = page.indexOf(start) + start.size();
    const auto data =
        ordered_json::parse(page.mid(begin, page.indexOf("</script>", begin) - begin).toStdString());
    ASSERT_GT(data["states"].size(), 3U);
    EXPECT_EQ(data["states"][0]["name"], "");
    EXPECT_EQ(data["states"][0]["films"]["0"]["put"].size(), 2U);
    std::set<std::string> changing;
    for (std::size_t place = 1; place < data["states"].size(); ++place) {
        if (!data["states"][place]["films"].empty())
            changing.insert(data["states"][place]["name"].get<std::string>());
    }
    EXPECT_TRUE(changing.count("V69_RemoveQuizzesAdaptor"));
    EXPECT_LT(changing.size(), data["states"].size() - 2);
    for (const auto& state : data["states"]) {
        if (state["name"] == "V69_RemoveQuizzesAdaptor") {
            EXPECT_EQ(state["films"]["0"]["del"], ordered_json::parse("[0]"));
        }
    }
}

TEST_F(ReportPageTest, TextsOfDocumentsAreEscaped) {
    const std::vector<QByteArray> hostile = {"<script>alert(1)</script>",
                                             "\\\" onload=\\\"alert(1)",
                                             "' onload='alert(1)",
                                             "]]></title></svg>",
                                             "</script>",
                                             "\\u001b[31m\\u0000\\n",
                                             "\\u202e\\u2066\\u2028",
                                             "\\uffff",
                                             QByteArray(1 << 20, 'x')};
    for (const QByteArray& text : hostile) {
        const QByteArray project = withQuiz().replace("Question", text).replace("Trip", text);
        const QByteArray page = pageOf(project);
        EXPECT_EQ(page.count("<script"), 2) << text.left(40).toStdString();
        EXPECT_LT(page.size(), 200000) << text.left(40).toStdString();
        const QDomDocument document = parsed(page);
        std::set<QString> attributes;
        const QDomNodeList all = document.elementsByTagName("*");
        for (int place = 0; place < all.length(); ++place) {
            const QDomNamedNodeMap map = all.item(place).attributes();
            for (int number = 0; number < map.length(); ++number)
                attributes.insert(map.item(number).nodeName());
        }
        EXPECT_FALSE(attributes.count("onload"));
        for (const char* forbidden : {"\x1b", "\u202e", "\u2066", "\u2028", "\uffff"})
            EXPECT_FALSE(page.contains(forbidden));
    }
}

TEST_F(ReportPageTest, IsWrittenAsOtherResults) {
    write("film.xml", archive());
    ASSERT_EQ(run({"report", "film.xml"}).exitCode, 0);
    EXPECT_TRUE(exists("film.html"));
    expectFailure({"report", "film.xml"}, 16, "--force");
    ASSERT_EQ(run({"report", "film.xml", "--force"}).exitCode, 0);
    const Outcome streamed = run({"report", "film.xml", "-o", "-"});
    EXPECT_EQ(streamed.exitCode, 0);
    EXPECT_EQ(streamed.out, read("film.html")); // the same bytes on every run
    EXPECT_TRUE(run({"report", "-"}, archive()).out.startsWith("<!DOCTYPE html>"));
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("pages"));
    ASSERT_EQ(run({"report", "film.xml", "-o", "pages"}).exitCode, 0);
    EXPECT_TRUE(exists("pages/film.html"));
    expectFailure({"report", "film.xml", "-o", "nowhere/page.html"}, 15, "nowhere");
    EXPECT_EQ(files(), (QStringList{"film.html", "film.xml"})); // no project, and nothing temporary
}

TEST_F(ReportPageTest, ExitsAsMigrateDoes) {
    write("lost.xml", archive({}, " schemaVersion='56'"));
    write("empty.xml", "");
    write("cut.xml", archive().chopped(20));
    write("new.xml", archive({}, " schemaVersion='99'"));
    write("none.xml", archive({}, ""));
    write("failing.xml", failing());
    for (const char* name :
         {"lost.xml", "empty.xml", "cut.xml", "new.xml", "none.xml", "failing.xml", "missing.xml"}) {
        const Outcome migrated = run({"migrate", name, "-o", "result", "--force"});
        const Outcome reported = run({"report", name, "-o", "page.html", "--force"});
        EXPECT_EQ(reported.exitCode, migrated.exitCode) << name;
        if (migrated.exitCode != 22) {
            EXPECT_EQ(reported.err, migrated.err) << name;
        }
        const bool hasPage = QStringList{"lost.xml", "failing.xml"}.contains(name);
        EXPECT_EQ(exists("page.html"), hasPage) << name;
        QFile::remove(path("page.html"));
    }
}

TEST_F(ReportPageTest, OfAFailureThereIsAllUpToTheStep) {
    const QByteArray page = pageOf(failing(), 13);
    EXPECT_TRUE(page.contains("The migration failed."));
    EXPECT_TRUE(page.contains("PortableLoadAdaptor"));
    EXPECT_TRUE(page.contains("--repair would help"));
    EXPECT_EQ(idText(page, "result-sha256"), "");
    EXPECT_EQ(clipsIn(parsed(page), "before").size(), 1);
    const QByteArray repaired = pageOf(failing(), 0, {"--repair"});
    EXPECT_TRUE(repaired.contains("id=\"repairs\""));
    EXPECT_FALSE(repaired.contains("The migration failed."));
}

TEST_F(ReportPageTest, WhatIsLostIsNotShownInTheResult) {
    const QDomDocument page = parsed(pageOf(archive({}, " schemaVersion='56'"), 22));
    const QStringList before = clipsIn(page, "before");
    ASSERT_EQ(before.size(), 1);
    EXPECT_TRUE(before[0].endsWith("lost by V57: no reference leads to it any more"))
        << before[0].toStdString();
    EXPECT_TRUE(clipsIn(page, "after").isEmpty());
    EXPECT_TRUE(page.documentElement().text().contains("Something of the project is missing in the result."));
}

TEST_F(ReportPageTest, ErrorsStandAtTheirClip) {
    QByteArray film = archive("<RootObject type='Effect::SideBySide' objectId='8'>"
                              "<mode type='int32_t' value='9'/></RootObject>",
                              " schemaVersion='41'");
    film.replace(
        "<name type='String' value='Beach'/>",
        "<name type='String' value='Beach'/><effects type='Array' size='1'><Item type='Item' index='1'>"
        "<Data type='ObjectRef' value='8'/></Item></effects>");
    const QByteArray page = pageOf(film, 0, {"--to", "50"});
    const QStringList before = clipsIn(parsed(page), "before");
    ASSERT_EQ(before.size(), 1);
    EXPECT_TRUE(before[0].endsWith("kept, 1 error")) << before[0].toStdString();
    EXPECT_TRUE(page.contains("class=\"clip video bad\""));
    EXPECT_TRUE(page.contains("this side-by-side effect shows its picture on the left now"));
}

TEST_F(ReportPageTest, MediaFilesAreLookedUp) {
    write("there.mp4", "film");
    const auto withFile = [](const char* name) {
        return archive("<RootObject type='File' objectId='6'><path type='String' value='" + QByteArray(name) +
                       "'/></RootObject>")
            .replace("<name ", "<file type='ObjectRef' value='6'/><name ");
    };
    const auto presence = [&](const char* name) {
        const QString text = parsed(pageOf(withFile(name))).documentElement().text();
        return QRegularExpression("(present|missing|unknown)" + QRegularExpression::escape(name))
            .match(text)
            .captured(1);
    };
    EXPECT_EQ(presence("there.mp4"), "present");
    EXPECT_EQ(presence("elsewhere.mp4"), "missing");
    EXPECT_EQ(presence("#PACKAGES_ROOT#/a.mp4"), "unknown");
}

TEST_F(ReportPageTest, AProjectOfTheNewestVersionIsShownAsItIs) {
    write("old.xml", sample("holiday-v45.xml"));
    ASSERT_EQ(run({"migrate", "old.xml", "-o", "new.json"}).exitCode, 0);
    const QByteArray page = pageOf(read("new.json"));
    EXPECT_TRUE(page.contains("Nothing to do."));
    EXPECT_EQ(idText(page, "input-sha256"), idText(page, "result-sha256"));
    EXPECT_FALSE(clipsIn(parsed(page), "after").isEmpty());
    EXPECT_TRUE(clipsIn(parsed(page), "before").isEmpty());
}

TEST_F(ReportPageTest, FaultsOfTheDocumentAreListed) {
    const QByteArray page = pageOf(archive().replace("<Data type='ObjectRef' value='5'/></Item></tracks>",
                                                     "<Data type='ObjectRef' value='5'/></Item></tracks>"
                                                     "<other type='ObjectRef' value='77'/>"));
    ASSERT_EQ(run({"verify", "film"}).exitCode, 17);
    EXPECT_TRUE(QRegularExpression("id=\"faults\".*In the project as it was read.*77.*In the result",
                                   QRegularExpression::DotMatchesEverythingOption)
                    .match(QString::fromUtf8(page))
                    .hasMatch());
}

TEST_F(ReportPageTest, ADamagedFileShowsWhatWasRecovered) {
    const QByteArray whole = sample("holiday-v27.xml");
    write("film.xml", whole.left(whole.size() * 9 / 10));
    EXPECT_EQ(run({"report", "film.xml", "-o", "none.html"}).exitCode, 6);
    const Outcome outcome = run({"report", "film.xml", "-o", "film.html", "--repair"});
    EXPECT_EQ(outcome.exitCode, 22) << outcome.err.toStdString();
    const QByteArray page = read("film.html");
    parsed(page);
    EXPECT_TRUE(page.contains("Damaged file</h2>"));
    EXPECT_TRUE(page.contains("the file is damaged: "));
    EXPECT_TRUE(page.contains("byte " + QByteArray::number(whole.size() * 9 / 10 / 1000)));
}

TEST_F(ReportPageTest, QuietSaysNothing) {
    write("film", sample("holiday-v63.json"));
    const Outcome outcome = run({"report", "film", "-o", "film.html", "--quiet"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_TRUE(exists("film.html"));
}

} // namespace
