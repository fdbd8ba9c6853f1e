#include "report/Page.h"

#include "ExplainReport.h"
#include "Phrases.h"
#include "Reader/AdaptorTable.h"
#include "RecoveryText.h"
#include "Report/Verdict.h"
#include "report/Assets.h"
#include "report/Clips.h"
#include "report/Films.h"
#include "report/Html.h"
#include "report/StepData.h"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <set>

using Html::escaped;
using Html::limited;
using Reader::Severity;

namespace ReportPage {
namespace {

constexpr std::size_t mostFilms = 100;
constexpr std::size_t mostClips = 50000;
constexpr std::size_t mostRows = 500; ///< of a list that may be long
constexpr std::size_t longestText = 2000;

std::string isolated(const std::string& html) {
    return "<bdi>" + html + "</bdi>";
}

/// A text of a document.
std::string shown(const std::string& text) {
    return isolated(limited(text, longestText));
}

std::string code(const std::string& text) {
    return "<code>" + limited(text, longestText) + "</code>";
}

/// "1,024 clips"
std::string counted(std::size_t count, const std::string& noun) {
    return Html::number(count) + ' ' + noun + (count == 1 ? "" : "s");
}

std::string element(const std::string& tag, const std::string& html, const std::string& style = {}) {
    return '<' + tag + (style.empty() ? "" : " class=\"" + style + '"') + '>' + html + "</" + tag + '>';
}

/// Items as a list; those that are too many are counted.
class List {
public:
    explicit List(std::string style = {}) : m_style(std::move(style)) {}

    void add(const std::string& html, const std::string& style = {}) {
        if (m_count++ < mostRows)
            m_items += element("li", html, style) + '\n';
    }
    bool isEmpty() const { return m_count == 0; }
    std::string html() const {
        const std::string more =
            m_count > mostRows ? element("p", "and " + Html::number(m_count - mostRows) + " more", "note")
                               : "";
        return element("ul", '\n' + m_items, m_style) + '\n' + more;
    }

private:
    std::string m_style;
    std::string m_items;
    std::size_t m_count = 0;
};

std::string section(const std::string& id, const std::string& title, const std::string& html) {
    return "<section id=\"" + id + "\" aria-labelledby=\"" + id + "-title\">\n<h2 id=\"" + id + "-title\">" +
           title + "</h2>\n" + html + "</section>\n";
}

std::string mark(const std::string& kind, const std::string& text) {
    return element("span", text, "mark " + kind);
}

std::size_t total(const Reader::ObjectCounts& counts) {
    return std::accumulate(counts.begin(), counts.end(), std::size_t(0),
                           [](std::size_t sum, const auto& entry) { return sum + entry.second; });
}

class Writer {
public:
    explicit Writer(const Facts& facts)
        : m_facts(facts), m_clips(facts), m_films(filmsOf(facts, m_clips, mostFilms)),
          m_isDrawn(m_clips.all().size() <= mostClips) {
        for (const Reader::LogLine& line : facts.report.log)
            ++(line.isError() ? m_errors : m_warnings);
        for (const std::vector<Reader::Finding>* findings : {&facts.faultsOfInput, &facts.faultsOfResult}) {
            for (const Reader::Finding& finding : *findings)
                m_faults += finding.severity > Severity::Note ? 1 : 0;
        }
    }

    std::string write() {
        std::string content;
        if (!m_facts.states.empty()) {
            add(content, "timelines", "Timelines", timelines());
            add(content, "stages", "Step by step", stages());
            add(content, "missing", "What is missing", missing());
            add(content, "damage", "Damaged file", damage());
            add(content, "messages", "Errors and warnings", messages());
            add(content, "repairs", "Repairs", repairs());
            add(content, "steps", "Steps", steps());
            add(content, "media", "Media files", media());
            add(content, "faults", "Faults in the documents", faults());
            add(content, "clips", "All clips", clipTable());
        }
        add(content, "about", "About this page", about());
        return "<a class=\"skip\" href=\"#main\">Skip to the content</a>\n" + header() +
               "<main id=\"main\">\n" + content + "</main>\n" + m_data;
    }

private:
    /// A section that has nothing to say is left out, also of the navigation.
    void add(std::string& content, const std::string& id, const std::string& title, const std::string& html) {
        if (html.empty())
            return;
        content += section(id, title, html);
        m_navigation += "<li><a href=\"#" + id + "\">" + title + "</a></li>";
    }

    // Header

    std::string header() const {
        return "<header>\n<p class=\"kicker\">Migration report</p>\n" + title() + versions() + verdict() +
               tiles() +
               (m_facts.states.empty()
                    ? ""
                    : "<nav aria-label=\"Sections\"><ul>" + m_navigation + "</ul></nav>\n") +
               "</header>\n";
    }

    /// The name of the file, and its folder behind it.
    std::string title() const {
        const auto slash = m_facts.name.rfind('/');
        if (slash == std::string::npos || slash + 1 == m_facts.name.size())
            return element("h1", shown(m_facts.name)) + '\n';
        return element("h1", shown(m_facts.name.substr(slash + 1))) + '\n' +
               element("p", "in " + shown(m_facts.name.substr(0, slash + 1)), "folder") + '\n';
    }

    static std::string stateText(Bundle::Backend form, int version) {
        return element(
            "span", Reader::formName(form).toStdString() + element("b", "version " + std::to_string(version)),
            "version");
    }

    std::string versions() const {
        if (m_facts.states.empty())
            return {};
        const Reader::MigrationReport& report = m_facts.report;
        std::string text = stateText(report.formBefore, report.from);
        if (!m_facts.failure && !m_facts.isUpToDate)
            text +=
                "<span class=\"arrow\" aria-hidden=\"true\">\u2192</span><span class=\"unseen\">to</span>" +
                stateText(report.formAfter, report.to);
        return element("p", text, "versions") + '\n';
    }

    std::string verdict() const {
        const auto box = [](const char* kind, const char* sign, const std::string& title,
                            const std::string& text) {
            return "<div class=\"verdict " + std::string(kind) +
                   "\"><span class=\"sign\" aria-hidden=\"true\">" + sign + "</span><p><strong>" + title +
                   "</strong> " + text + "</p></div>\n";
        };
        if (m_facts.failure)
            return box("bad", "!", "The migration failed.", shown(m_facts.failure->text) + '.');
        if (m_facts.isUpToDate)
            return box("good", "\u2713", "Nothing to do.",
                       "The project has version " + std::to_string(m_facts.report.to) + " already.");
        if (!m_facts.isWhole)
            return box("bad", "!", "Something of the project is missing in the result.",
                       lossText().empty() ? "See the errors below." : lossText() + '.');
        const std::string removed = lossText();
        return box("good", "\u2713", "Nothing is lost.",
                   removed.empty()
                       ? "Every clip, effect and title is in the result."
                       : "The result has all but what newer versions have no place for: " + removed + '.');
    }

    /// "2 clips and 1 effect removed, 1 clip lost"
    std::string lossText() const {
        std::map<Reader::PartKind, std::array<std::size_t, 3>> counts; // lost, removed, left out
        for (const Reader::Loss& loss : m_facts.report.losses)
            ++counts[loss.part.kind][loss.isIntended ? 1 : loss.wasUsed ? 0 : 2];
        std::string text;
        constexpr std::array words = {"lost", "removed", "left out"};
        for (std::size_t word = 0; word < words.size(); ++word) {
            std::string list;
            for (const auto& [kind, count] : counts) {
                if (count[word] > 0)
                    list +=
                        (list.empty() ? "" : ", ") + counted(count[word], std::string(Reader::nameOf(kind)));
            }
            if (!list.empty())
                text += (text.empty() ? "" : "; ") + list + ' ' + words[word];
        }
        return text;
    }

    static std::string tile(const std::string& name, const std::string& value, const std::string& more,
                            bool isBad = false) {
        return "<div" + std::string(isBad ? " class=\"bad\"" : "") + "><dt>" + name + "</dt><dd>" + value +
               (more.empty() ? "" : element("small", more)) + "</dd></div>";
    }

    std::string tiles() const {
        if (m_facts.states.empty())
            return {};
        std::string fates;
        const auto after = static_cast<std::size_t>(std::count_if(
            m_clips.all().begin(), m_clips.all().end(), [](const Clip& clip) { return clip.after.clip; }));
        for (const Fate fate : {Fate::Changed, Fate::Removed, Fate::Lost, Fate::LeftOut, Fate::Added}) {
            if (const std::size_t count = m_clips.count(fate))
                fates += (fates.empty() ? "" : ", ") + Html::number(count) + ' ' + std::string(nameOf(fate));
        }
        std::string text = tile("Clips", Html::number(after), fates.empty() ? "all kept" : fates,
                                m_clips.count(Fate::Lost) > 0);
        std::size_t effective = 0;
        for (const Reader::StepEffect& effect : m_facts.effects)
            effective += effect.changedNothing() ? 0 : 1;
        text += tile("Steps", Html::number(m_facts.effects.size()),
                     Html::number(effective) + " changed something");
        if (!m_facts.failure && !m_facts.isUpToDate)
            text += tile("Objects", Html::number(total(m_facts.report.objectsAfter)),
                         Html::number(total(m_facts.report.objectsBefore)) + " before");
        text += tile("Messages", Html::number(m_errors + m_warnings),
                     m_errors > 0 ? counted(m_errors, "error") : "no errors", m_errors > 0);
        std::size_t missing = 0;
        for (const MediaFile& file : m_facts.media)
            missing += file.presence == Reader::Presence::Missing ? 1 : 0;
        text += tile("Media files", Html::number(m_facts.media.size()),
                     missing > 0 ? Html::number(missing) + " missing" : "none missing", missing > 0);
        text += tile("Faults", Html::number(m_faults),
                     m_faults > 0 ? "errors and warnings" : "none that matter", false);
        return element("dl", text, "tiles") + '\n';
    }

    // Timelines

    std::string timelines() const {
        if (m_films.empty())
            return element("p", "The project has no timelines.", "note") + '\n';
        std::string text = tools();
        text += legend();
        if (!m_isDrawn)
            return text + element("p",
                                  "The project has more clips than this page can draw: " +
                                      Html::number(m_clips.all().size()) + '.',
                                  "note");
        for (std::size_t place = 0; place < m_films.size(); ++place)
            text += film(m_films[place], place);
        return text;
    }

    /// Needs scripts, so it is hidden without them.
    static std::string tools() {
        return "<div class=\"tools\" id=\"tools\" role=\"search\" hidden=\"hidden\">\n"
               "<div class=\"group find\"><label for=\"find\">Find a clip</label><input id=\"find\" "
               "type=\"search\" "
               "autocomplete=\"off\" spellcheck=\"false\" placeholder=\"Name\"/>"
               "<button type=\"button\" id=\"find-previous\" aria-label=\"Previous match\">\u2191</button>"
               "<button type=\"button\" id=\"find-next\" aria-label=\"Next match\">\u2193</button>"
               "<output id=\"found\" for=\"find\" aria-live=\"polite\"></output></div>\n"
               "<div class=\"group zoom\" role=\"group\" aria-label=\"Zoom\">"
               "<button type=\"button\" id=\"zoom-out\" aria-label=\"Zoom out\">\u2212</button>"
               "<button type=\"button\" id=\"zoom-fit\" aria-label=\"Show the whole timeline\">Fit</button>"
               "<button type=\"button\" id=\"zoom-in\" aria-label=\"Zoom in\">+</button>"
               "<output id=\"zoomed\" aria-live=\"polite\">100 %</output></div>\n"
               "<p class=\"hint\">Keys in a picture: arrows move, Enter shows a clip, + \u2212 0 "
               "zoom</p></div>\n";
    }

    static std::string sizeText(const Reader::Timeline& timeline) {
        std::string text = timeText(timeline.duration()) + " \u00b7 " +
                           counted(timeline.tracks.size(), "track") + " \u00b7 " +
                           counted(timeline.clips.size(), "clip");
        if (!timeline.transitions.empty())
            text += " \u00b7 " + counted(timeline.transitions.size(), "transition");
        return text;
    }

    std::string film(const Film& film, std::size_t place) const {
        const std::string id = "film-" + std::to_string(place);
        const std::string name = escaped(film.name());
        const std::string role(nameOf((film.after ? film.after : film.before)->role));
        std::string text = "<article class=\"film\" data-film=\"" + std::to_string(place) +
                           "\" aria-labelledby=\"" + id + "\">\n<h3 id=\"" + id + "\">" + isolated(name) +
                           ' ' + mark("role", role) + "</h3>\n";
        const std::string changeless = m_facts.isUpToDate ? "As it is"
                                       : m_facts.failure  ? "Before the step that failed"
                                                          : "After";
        const auto side = [&](Moment moment, const std::string& title, const Reader::Timeline* timeline) {
            const char* word = moment == Moment::Before ? "before" : "after";
            text += "<figure class=\"" + std::string(word) + "\"><figcaption><strong>" + title +
                    "</strong> " +
                    (timeline ? element("span", sizeText(*timeline))
                              : element("span", "there is no such timeline")) +
                    "</figcaption>\n" +
                    picture(film, moment, m_clips, "Timeline " + name + ", " + word + " the migration") +
                    "</figure>\n";
        };
        if (!m_facts.isUpToDate)
            side(Moment::Before, "Before", film.before);
        side(Moment::After, changeless, film.after);
        return text + "</article>\n";
    }

    // Step by step

    std::string stages() {
        if (m_facts.states.size() < 2 || m_films.empty() || !m_isDrawn)
            return {};
        const auto data = stepData(m_facts, m_films, m_clips);
        if (!data)
            return element(
                "p", "The project changes too much for pictures of each step. The steps are listed below.",
                "note");
        m_data = "<script type=\"application/json\" id=\"data\">" + Html::json(*data) + "</script>\n";
        const std::string last = std::to_string(m_facts.states.size() - 1);
        std::string options;
        for (std::size_t place = 0; place < m_films.size(); ++place)
            options += "<option value=\"" + std::to_string(place) + "\">" + escaped(m_films[place].name()) +
                       "</option>";
        return "<div id=\"stage\" hidden=\"hidden\">\n<div class=\"tools static\">"
               "<div class=\"group slide\"><label for=\"slider\">Step</label>"
               "<button type=\"button\" id=\"step-back\" aria-label=\"Previous step that changed the "
               "timeline\">\u25c0\ufe0e</button>"
               "<input type=\"range\" id=\"slider\" min=\"0\" max=\"" +
               last + "\" value=\"" + last +
               "\" step=\"1\"/>"
               "<button type=\"button\" id=\"step-on\" aria-label=\"Next step that changed the "
               "timeline\">\u25b6\ufe0e</button>"
               "<output id=\"place\" for=\"slider\"></output></div>"
               "<div class=\"group\"><label for=\"which\">Timeline</label><select id=\"which\">" +
               options +
               "</select></div></div>\n<div class=\"ticks\" id=\"ticks\" aria-hidden=\"true\"></div>\n"
               "<p id=\"stage-text\" class=\"stage-text\" aria-live=\"polite\"></p>\n"
               "<figure class=\"film stage\"><div class=\"strip\"><div class=\"labels\" id=\"stage-labels\" "
               "aria-hidden=\"true\">"
               "</div><div class=\"scroll\" id=\"stage-scroll\" tabindex=\"0\" role=\"group\" "
               "aria-label=\"The timeline "
               "behind that step; can be scrolled\"></div></div></figure>\n"
               "</div>\n"
               "<p class=\"note plain\">Pictures of each step need scripts. What each step did is listed "
               "under "
               "<a href=\"#steps\">Steps</a>.</p>\n";
    }

    // Lists

    std::string partText(const Reader::Part& part) const {
        const std::string name = part.name.empty() ? part.className : part.name;
        return std::string(Reader::nameOf(part.kind)) + ' ' +
               (name.empty() ? std::string("without a name") : element("strong", shown(name))) + " (id " +
               std::to_string(part.id) + ')';
    }

    std::string missing() const {
        List list("facts");
        for (const Reader::Loss& loss : m_facts.report.losses) {
            const char* word = loss.isIntended ? "removed" : loss.wasUsed ? "lost" : "left out";
            list.add(mark(loss.isIntended || !loss.wasUsed ? "note" : "bad", word) + ' ' +
                     partText(loss.part) + ": " + escaped(loss.reason) +
                     (loss.step.empty() ? "" : ", " + code(loss.step)));
        }
        std::set<unsigned long long> reported;
        for (const Reader::Loss& loss : m_facts.report.losses)
            reported.insert(loss.part.id);
        for (const Clip& clip : m_clips.all()) {
            if (clip.isGone() && reported.count(clip.before.clip->id) == 0)
                list.add(mark("note", std::string(nameOf(clip.fate))) + " clip " +
                         element("strong", shown(clip.before.clip->name)) + " (id " +
                         std::to_string(clip.before.clip->id) + "): " + escaped(clip.reason) +
                         (clip.step.empty() ? "" : ", " + code(clip.step)));
        }
        if (list.isEmpty())
            return {};
        return element("p",
                       "Clips, effects and titles of the project that the result does not have. "
                       "\u201cRemoved\u201d is "
                       "what the schema version intended, \u201clost\u201d is what it did not, and "
                       "\u201cleft out\u201d is "
                       "what nothing in the project used.",
                       "lead") +
               list.html();
    }

    static std::string lineHtml(const Reader::LogLine& line) {
        const std::string meaning = Reader::Report::meaningOf(line);
        std::string text = mark(line.isError() ? "bad" : "warn", line.isError() ? "error" : "warning") + ' ' +
                           code(line.step) + ' ' + shown(line.text);
        if (line.object) {
            text += " <span class=\"where\">";
            if (line.object->clip)
                text += "clip " + element("strong", shown(line.object->clip->name)) +
                        (line.object->clip->time ? " at " + timeText(*line.object->clip->time) : "") + ", ";
            text += code(line.object->className) + ", id " + std::to_string(line.object->id) + "</span>";
        }
        return text + (meaning.empty() ? "" : " " + element("em", escaped(meaning)));
    }

    std::string messages() const {
        List list("facts");
        for (const Reader::LogLine& line : m_facts.report.log)
            list.add(lineHtml(line));
        return list.isEmpty() ? "" : list.html();
    }

    static void addClips(List& list, const char* title, const std::vector<Reader::RecoveredClip>& clips) {
        for (const Reader::RecoveredClip& clip : clips)
            list.add(mark("bad", title) + " clip " +
                     (clip.name.empty() ? "without a known name" : element("strong", shown(clip.name))) +
                     (clip.id == 0 ? "" : ", id " + std::to_string(clip.id)));
    }

    /// What was recovered of the file, and what not.
    std::string damage() const {
        const auto& recovery = m_facts.report.recovery;
        if (!recovery)
            return {};
        List list("facts");
        addClips(list, "lost", recovery->clipsLost);
        addClips(list, "moved to the end", recovery->clipsMoved);
        addClips(list, "in part", recovery->clipsReduced);
        for (const Reader::DamageFinding& finding : recovery->findings)
            list.add(mark("warn", "byte " + Html::number(static_cast<std::size_t>(finding.byte))) + ' ' +
                     shown(finding.text));
        if (recovery->versionGuess) {
            for (const std::string& reason : recovery->versionGuess->reasons)
                list.add(mark("warn", "schema version " + std::to_string(recovery->version)) + ' ' +
                         shown(reason));
        }
        return element("p", shown(Texts::recoveryInShort(*recovery)) + '.') + '\n' +
               (list.isEmpty() ? "" : list.html());
    }

    static std::string repairHtml(const Reader::RepairMade& repair) {
        std::string clips;
        constexpr std::size_t mostNames = 20;
        const std::vector<Reader::Part> parts = repair.clips();
        for (std::size_t place = 0; place < std::min(parts.size(), mostNames); ++place)
            clips += (place == 0 ? "; clips " : ", ") + element("strong", shown(parts[place].name));
        if (parts.size() > mostNames)
            clips += " and " + Html::number(parts.size() - mostNames) + " more";
        return mark("warn", "repair") + ' ' + code(repair.name) + " before " + code(repair.before) + ": " +
               shown(repair.text) + clips;
    }

    std::string repairs() const {
        List list("facts");
        for (const Reader::RepairMade& repair : m_facts.report.repairs)
            list.add(repairHtml(repair));
        return list.isEmpty() ? "" : list.html();
    }

    // Steps

    static std::string countsHtml(const char* title, const Reader::ObjectCounts& counts) {
        std::string text;
        for (const auto& [className, count] : counts)
            text += "<li>" + Html::number(count) + ' ' + code(className) + "</li>";
        return counts.empty() ? ""
                              : "<div><dt>" + std::string(title) + "</dt><dd><ul class=\"inline\">" + text +
                                    "</ul></dd></div>";
    }

    static std::string fieldsHtml(const Reader::StepEffect& step) {
        constexpr std::size_t mostFields = 60;
        if (step.fields.empty())
            return {};
        std::string rows;
        for (std::size_t place = 0; place < std::min(step.fields.size(), mostFields); ++place) {
            const Reader::FieldChange& change = step.fields[place];
            std::string examples;
            for (const std::string& example : ExplainReport::examplesOf(change))
                examples += element("div", shown(example));
            rows += "<tr><td class=\"field\">" + code(change.className + '.' + change.field) +
                    "</td><td class=\"brief\">" + std::string(nameOf(change.kind)) +
                    "</td><td class=\"number\">" + Html::number(change.count) + "</td><td>" + examples +
                    "</td></tr>\n";
        }
        const std::string more =
            step.fields.size() > mostFields
                ? element("p", "and " + counted(step.fields.size() - mostFields, "field") + " more", "note")
                : "";
        return "<div class=\"wide\" tabindex=\"0\" role=\"group\" "
               "aria-label=\"Fields\"><table><thead><tr><th "
               "scope=\"col\">Field</th><th scope=\"col\">Change</th><th scope=\"col\" "
               "class=\"number\">Objects</th><th "
               "scope=\"col\">Examples</th></tr></thead><tbody>\n" +
               rows + "</tbody></table></div>\n" + more;
    }

    std::string stepBody(const State& state) const {
        const Reader::StepEffect& step = m_facts.effects[state.effect];
        std::string text = countsHtml("Added", step.added) + countsHtml("Removed", step.removed) +
                           countsHtml("Changed", step.changed);
        List clips("facts");
        for (const Clip& clip : m_clips.all()) {
            if (clip.step == step.className)
                clips.add(mark(clip.fate == Fate::Lost ? "bad" : "note", std::string(nameOf(clip.fate))) +
                          " clip " + element("strong", shown(clip.shown().clip->name)) + " at " +
                          timeText(clip.shown().clip->start));
        }
        List lines("facts");
        for (const Reader::LogLine& line : m_facts.report.log) {
            if (line.step == step.className)
                lines.add(lineHtml(line));
        }
        return (clips.isEmpty() ? "" : clips.html()) + (lines.isEmpty() ? "" : lines.html()) +
               (text.empty() ? element("p", "It changed nothing in this project.", "note")
                             : element("dl", text, "counts")) +
               fieldsHtml(step);
    }

    std::string stepSummary(const State& state, bool changesPicture) const {
        const Reader::StepEffect& step = m_facts.effects[state.effect];
        const auto count = [](const Reader::ObjectCounts& counts) { return total(counts); };
        std::string marks;
        if (const std::size_t added = count(step.added))
            marks += mark("plus", '+' + Html::number(added));
        if (const std::size_t removed = count(step.removed))
            marks += mark("minus", "\u2212" + Html::number(removed));
        if (const std::size_t changed = count(step.changed))
            marks += mark("note", Html::number(changed) + " changed");
        if (changesPicture)
            marks += mark("film", "timeline");
        return code(step.className) + " <span class=\"sentence\">" + escaped(step.summary) +
               "</span> <span class=\"marks\">" + marks + "</span>";
    }

    std::string steps() const {
        if (m_facts.effects.empty())
            return {};
        std::string text;
        std::size_t unchanged = 0;
        std::size_t repair = 0;
        for (std::size_t place = 1; place < m_facts.states.size(); ++place) {
            const State& state = m_facts.states[place];
            const std::string id = "step-" + std::to_string(place);
            if (state.isRepair) {
                const auto& made = m_facts.report.repairs;
                while (repair < made.size() && made[repair].name != state.name)
                    ++repair;
                text += "<div class=\"step\" id=\"" + id + "\"><p>" +
                        (repair < made.size() ? repairHtml(made[repair++]) : code(state.name)) +
                        "</p></div>\n";
                continue;
            }
            if (m_facts.effects[state.effect].changedNothing()) {
                ++unchanged;
                text += "<div class=\"step idle\" id=\"" + id + "\"><p>" + stepSummary(state, false) +
                        "</p></div>\n";
                continue;
            }
            const bool changesPicture = state.timelines != m_facts.states[place - 1].timelines;
            text += "<details class=\"step\" id=\"" + id + "\"><summary>" +
                    stepSummary(state, changesPicture) + "</summary>\n<div class=\"body\">" +
                    stepBody(state) + "</div></details>\n";
        }
        std::string lead = counted(m_facts.effects.size(), "step") + " ran, " + Html::number(unchanged) +
                           " of them changed nothing in this project.";
        if (!m_facts.report.skipped.empty())
            lead += ' ' + counted(m_facts.report.skipped.size(), "step") +
                    " for archives were skipped, because the project is JSON already.";
        if (m_facts.failure && !m_facts.failure->step.empty())
            lead += " Then " + code(m_facts.failure->step) + " failed.";
        return element("p", lead, "lead") + text;
    }

    // Media, faults, clips

    std::string media() const {
        if (m_facts.media.empty())
            return {};
        std::string rows;
        std::size_t count = 0;
        for (const Reader::Presence presence :
             {Reader::Presence::Missing, Reader::Presence::Unknown, Reader::Presence::Present}) {
            constexpr std::array kinds = {"good", "bad", "note"};
            constexpr std::array words = {"present", "missing", "unknown"};
            const auto place = static_cast<std::size_t>(presence);
            for (const MediaFile& file : m_facts.media) {
                if (file.presence == presence && count++ < mostRows * 10)
                    rows += "<tr><td class=\"brief\">" + mark(kinds[place], words[place]) + "</td><td>" +
                            shown(file.path) + "</td><td class=\"number\">" + Html::number(file.clips) +
                            "</td></tr>\n";
            }
        }
        return "<div class=\"wide\" tabindex=\"0\" role=\"group\" aria-label=\"Media "
               "files\"><table><thead><tr><th "
               "scope=\"col\">On disk</th><th scope=\"col\">File</th><th scope=\"col\" "
               "class=\"number\">Clips</th></tr></thead><tbody>\n" +
               rows + "</tbody></table></div>\n" +
               (count > mostRows * 10
                    ? element("p", "and " + Html::number(count - mostRows * 10) + " more", "note")
                    : "");
    }

    static std::string findings(const std::string& title, std::vector<Reader::Finding> list) {
        std::stable_sort(list.begin(), list.end(), [](const Reader::Finding& a, const Reader::Finding& b) {
            return a.severity > b.severity;
        });
        std::array<std::size_t, 3> counts = {};
        List items("facts");
        for (const Reader::Finding& finding : list) {
            ++counts[static_cast<std::size_t>(finding.severity)];
            const char* kind = finding.severity == Severity::Error     ? "bad"
                               : finding.severity == Severity::Warning ? "warn"
                                                                       : "note";
            items.add(mark(kind, std::string(nameOf(finding.severity))) + ' ' + code(finding.className) +
                      " (id " + std::to_string(finding.id) + ") " +
                      (finding.path.empty() ? "" : code(finding.path) + ' ') + shown(finding.text));
        }
        const std::string numbers =
            list.empty() ? "none"
                         : counted(counts[static_cast<std::size_t>(Severity::Error)], "error") + ", " +
                               counted(counts[static_cast<std::size_t>(Severity::Warning)], "warning") +
                               ", " + counted(counts[static_cast<std::size_t>(Severity::Note)], "note");
        const std::string heading = element("h3", title) + ' ' + element("span", numbers, "numbers");
        if (list.empty())
            return "<div class=\"step idle\">" + heading + "</div>\n";
        return "<details class=\"step\"><summary>" + heading + "</summary><div class=\"body\">\n" +
               items.html() + "</div></details>\n";
    }

    std::string faults() const {
        std::string text = findings("In the project as it was read", m_facts.faultsOfInput);
        if (!m_facts.failure && !m_facts.isUpToDate)
            text += findings("In the result", m_facts.faultsOfResult);
        return text;
    }

    std::string sideText(const Clip::Side& side) const {
        return side.clip ? rangeText(*side.clip) : std::string("\u2013");
    }

    /// The name of the timeline, as a link to its picture; empty where the page has none of it.
    std::string filmLink(unsigned long long id) const {
        for (std::size_t place = 0; place < m_films.size(); ++place) {
            for (const Reader::Timeline* timeline : {m_films[place].before, m_films[place].after}) {
                if (timeline && timeline->id == id)
                    return "<a href=\"#film-" + std::to_string(place) + "\">" +
                           escaped(m_films[place].name()) + "</a>";
            }
        }
        return {};
    }

    /// What else is known of a clip: its file, effects, texts, and what was reported.
    std::string clipFacts(const Clip& clip) const {
        const Reader::TimelineClip& facts = *clip.shown().clip;
        List list;
        if (!facts.media.empty())
            list.add("file " + shown(facts.media));
        if (const std::string film = facts.nested == 0 ? "" : filmLink(facts.nested); !film.empty())
            list.add("shows " + film);
        if (facts.sourceStart != 0)
            list.add("from " + timeText(facts.sourceStart) + " of its source");
        std::string effects;
        for (const Reader::ClipEffect& effect : facts.effects)
            effects +=
                (effects.empty() ? "" : ", ") + escaped(Phrases::effectText(effect.className, effect.name));
        if (!effects.empty())
            list.add((facts.effects.size() == 1 ? "effect " : "effects ") + effects);
        for (const std::string& text : facts.texts)
            list.add("text " + isolated("\u201c" + limited(text, longestText) + "\u201d"));
        for (const Reader::Loss* loss : clip.lostParts)
            list.add(mark(loss->isIntended ? "note" : "bad", loss->isIntended ? "removed"
                                                             : loss->wasUsed  ? "lost"
                                                                              : "left out") +
                     ' ' + partText(loss->part) + ": " + escaped(loss->reason));
        for (const Reader::LogLine* line : clip.lines)
            list.add(lineHtml(*line));
        return list.isEmpty() ? "" : list.html();
    }

    static std::string trackOf(const Clip& clip) {
        const Reader::Timeline& timeline = *clip.shown().timeline;
        const std::size_t track = clip.shown().clip->track;
        return std::string(track < timeline.tracks.size() ? nameOf(timeline.tracks[track].kind) : "unknown");
    }

    std::string clipTable() const {
        const std::vector<Clip>& clips = m_clips.all();
        if (clips.empty())
            return {};
        std::string rows;
        for (std::size_t place = 0; place < std::min(clips.size(), mostClips); ++place) {
            const Clip& clip = clips[place];
            const bool isBad = clip.hasErrors();
            const std::string kind = isBad                      ? "bad"
                                     : clip.isGone()            ? "minus"
                                     : clip.fate == Fate::Added ? "plus"
                                                                : "note";
            const std::string& name = clip.shown().clip->name;
            rows += "<tr id=\"clip-" + std::to_string(place) + "\"><th scope=\"row\" dir=\"auto\">" +
                    (name.empty() ? "without a name" : limited(name, longestText)) + "</th><td>" +
                    trackOf(clip) + "</td><td>" + std::string(nameOf(clip.shown().clip->kind)) + "</td><td>" +
                    sideText(clip.before) + "</td><td>" + sideText(clip.after) + "</td><td>" +
                    (clip.fate == Fate::Kept ? "kept" : mark(kind, escaped(fateText(clip)))) + "</td><td>" +
                    clipFacts(clip) + "</td></tr>\n";
        }
        const std::string more =
            clips.size() > mostClips
                ? element("p", "and " + counted(clips.size() - mostClips, "clip") + " more", "note")
                : "";
        return "<details class=\"step\" id=\"all-clips\"><summary>" + counted(clips.size(), "clip") +
               "</summary>\n<div class=\"wide\" tabindex=\"0\" role=\"group\" aria-label=\"All "
               "clips\"><table "
               "class=\"clips\"><thead><tr><th scope=\"col\">Clip</th><th scope=\"col\">Track</th><th "
               "scope=\"col\">Kind</th><th scope=\"col\">Before</th><th scope=\"col\">After</th><th "
               "scope=\"col\">What "
               "became of it</th><th scope=\"col\">More</th></tr></thead><tbody>\n" +
               rows + "</tbody></table></div>\n" + more + "</details>\n" + detail();
    }

    /// Where scripts show the clip that was chosen in a picture.
    static std::string detail() {
        return "<aside id=\"detail\" class=\"detail\" aria-label=\"The chosen clip\" "
               "hidden=\"hidden\"><button type=\"button\" "
               "id=\"detail-close\" aria-label=\"Close\">\u00d7</button><div id=\"detail-content\" "
               "aria-live=\"polite\"></div></aside>\n";
    }

    // About

    std::string about() const {
        std::string rows;
        const auto add = [&rows](const std::string& name, const std::string& html) {
            rows += "<div><dt>" + name + "</dt><dd>" + html + "</dd></div>\n";
        };
        add("Project", shown(m_facts.name));
        if (!m_facts.input.sha256.empty()) {
            add("Its size", Html::number(static_cast<std::size_t>(m_facts.input.size)) + " bytes");
            add("Its SHA-256", "<code id=\"input-sha256\">" + escaped(m_facts.input.sha256) + "</code>");
        }
        if (!m_facts.states.empty())
            add("Its version", std::to_string(m_facts.report.from));
        if (!m_facts.result.sha256.empty()) {
            add("Result", "what <code>adaptors migrate</code> writes to " + shown(m_facts.resultName));
            add("Its size", Html::number(static_cast<std::size_t>(m_facts.result.size)) + " bytes");
            add("Its SHA-256", "<code id=\"result-sha256\">" + escaped(m_facts.result.sha256) + "</code>");
            add("Its version", std::to_string(m_facts.report.to));
        }
        add("Program",
            "adaptors " ADAPTORS_VERSION ", schema version " + std::to_string(Reader::currentVersion));
        return element("dl", '\n' + rows, "about") + '\n' +
               element("p", "This page holds all that it needs. It loads nothing and sends nothing.",
                       "note") +
               '\n';
    }

    const Facts& m_facts;
    Clips m_clips;
    std::vector<Film> m_films;
    bool m_isDrawn;
    std::string m_data; ///< for the script
    std::string m_navigation;
    std::size_t m_errors = 0;
    std::size_t m_warnings = 0;
    std::size_t m_faults = 0; ///< without notes
};

/// Patterns that the style refers to.
constexpr const char* patterns =
    "<svg class=\"patterns\" width=\"0\" height=\"0\" aria-hidden=\"true\" focusable=\"false\"><defs>"
    "<pattern id=\"hatch\" width=\"8\" height=\"8\" patternUnits=\"userSpaceOnUse\" "
    "patternTransform=\"rotate(45)\">"
    "<rect class=\"hatch-line\" width=\"3\" height=\"8\"/></pattern></defs></svg>\n";

} // namespace

std::string page(const Facts& facts) {
    return Html::document({facts.name + ": migration report",
                           std::string(ReportAssets::baseStyle) + std::string(ReportAssets::pageStyle),
                           std::string(ReportAssets::pageScript), patterns + Writer(facts).write()});
}

} // namespace ReportPage
