#include "batch/Report.h"

#include "JsonReport.h"
#include "Messages.h"
#include "Places.h"
#include "report/Assets.h"
#include "report/Html.h"

#include <QSaveFile>

#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace Batch {
namespace {

using JsonReport::Json;

enum class Form { Csv, JsonLines, Html };

std::optional<Form> formOf(const std::string& file) {
    if (file.ends_with(".csv"))
        return Form::Csv;
    if (file.ends_with(".jsonl"))
        return Form::JsonLines;
    if (file.ends_with(".html"))
        return Form::Html;
    return std::nullopt;
}

constexpr std::array<const char*, 16> columns = {"path",   "state",  "code",    "kind",    "reason", "from",
                                                 "to",     "losses", "repairs", "seconds", "size",   "time",
                                                 "sha256", "output", "backup",  "tool"};

Json orNull(const std::string& text) {
    return text.empty() ? Json() : Json(text);
}

Json orNull(const QByteArray& name) {
    return orNull(name.toStdString());
}

template <class Value>
Json orNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json();
}

/// In the order of the columns.
std::vector<Json> cellsOf(const Row& row) {
    return {Json(row.path.toStdString()),
            Json(std::string(nameOf(row.state))),
            orNull(row.code),
            orNull(row.kind),
            orNull(row.reason),
            orNull(row.from),
            orNull(row.to),
            orNull(row.losses),
            orNull(row.repairs),
            orNull(row.seconds),
            orNull(row.size),
            orNull(row.time),
            orNull(row.sha256),
            orNull(row.output),
            orNull(row.backup),
            orNull(row.tool)};
}

/// A cell as text in UTF-8; bytes that are none are replaced.
QString textOf(const Json& cell) {
    if (cell.is_null())
        return {};
    return QString::fromStdString(cell.is_string() ? cell.get<std::string>() : cell.dump());
}

QByteArray csvLine(const std::vector<QString>& cells) {
    QByteArray line;
    for (const QString& cell : cells) {
        QString quoted = cell;
        quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
        line += (line.isEmpty() ? "\"" : ",\"") + quoted.toUtf8() + '"';
    }
    return line + "\r\n";
}

QByteArray htmlRow(const char* tag, const std::string& link, const std::vector<QString>& cells) {
    QByteArray row = QByteArray("<tr><") + tag + '>' + QByteArray::fromStdString(link) + "</" + tag + '>';
    for (const QString& cell : cells) {
        QString visible;
        for (const QChar c : cell)
            visible += c.isPrint() || c.isSurrogate()
                           ? QString(c)
                           : QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        row += QByteArray("<") + tag + '>' + QByteArray::fromStdString(Html::escaped(visible.toStdString())) +
               "</" + tag + '>';
    }
    return row + "</tr>\n";
}

/// How many files there are of each state.
std::string tilesOf(State& state) {
    std::string tiles;
    for (const auto& [fileState, count] : state.counts())
        tiles += "<div" + std::string(fileState == FileState::Failed ? " class=\"bad\"" : "") + "><dt>" +
                 std::string(nameOf(fileState)) + "</dt><dd>" +
                 Html::number(static_cast<std::size_t>(count)) + "</dd></div>";
    return "<dl class=\"tiles\">" + tiles + "</dl>\n";
}

/// The start of the table up to its first row.
QByteArray htmlStart(State& state, const std::vector<QString>& names) {
    // Nothing is loaded and nothing runs, whatever the names of files hold.
    const std::string start =
        Html::documentStart({"Batch of migrations",
                             std::string(ReportAssets::baseStyle) + std::string(ReportAssets::tableStyle),
                             {},
                             {}});
    return QByteArray::fromStdString(
               start + "<header>\n<p class=\"kicker\">Migration report</p>\n<h1>Batch of migrations</h1>\n" +
               tilesOf(state) +
               "</header>\n<main>\n<section aria-label=\"All files\"><div class=\"wide\" tabindex=\"0\" "
               "role=\"group\" "
               "aria-label=\"All files; can be scrolled\"><table>\n<thead>\n") +
           htmlRow("th", "page", names) + "</thead>\n<tbody>\n";
}

constexpr const char* htmlEnd = "</tbody>\n</table></div></section>\n</main>\n</body>\n</html>\n";

class Writer {
public:
    Writer(QSaveFile& file, Form form, State& state, const Pages& pages)
        : m_file(file), m_form(form), m_pages(pages) {
        const std::vector<QString> names(columns.begin(), columns.end());
        if (m_form == Form::Csv)
            write(csvLine(names));
        else if (m_form == Form::Html)
            write(htmlStart(state, names));
    }

    void add(const Row& row) {
        const std::vector<Json> cells = cellsOf(row);
        if (m_form == Form::JsonLines) {
            Json object;
            for (std::size_t place = 0; place < columns.size(); ++place)
                object[columns[place]] = cells[place];
            write(QByteArray::fromStdString(JsonReport::line(object)));
            return;
        }
        std::vector<QString> texts;
        texts.reserve(cells.size());
        for (const Json& cell : cells)
            texts.push_back(textOf(cell));
        write(m_form == Form::Csv ? csvLine(texts) : htmlRow("td", linkTo(row), texts));
    }

    /// Whether all was written.
    bool finish() {
        if (m_form == Form::Html)
            write(htmlEnd);
        return m_isWhole && m_file.commit();
    }

private:
    void write(const QByteArray& bytes) { m_isWhole = m_isWhole && m_file.write(bytes) == bytes.size(); }

    std::string linkTo(const Row& row) const {
        const std::string page = m_pages.linkTo(row);
        const auto slash = row.path.lastIndexOf('/');
        const std::string name = Html::limited(row.path.mid(slash + 1).toStdString(), 200);
        return page.empty()
                   ? ""
                   : "<a href=\"" + Html::escaped(page) + "\" aria-label=\"Page of " + name + "\">page</a>";
    }

    QSaveFile& m_file;
    Form m_form;
    const Pages& m_pages;
    bool m_isWhole = true;
};

} // namespace

void checkReport(const std::string& file) {
    if (!file.empty() && !formOf(file))
        throw Messages::Failure(
            Messages::badValue("--report", file, "a name that ends in .csv, .jsonl or .html"));
}

void writeReport(State& state, const std::string& file, Pages::Options options) {
    const Form form = *formOf(file);
    if (form != Form::Html)
        options.which = WhichPages::None;
    const Pages pages(file, std::move(options));
    QSaveFile target(Places::path(file));
    bool isWritten = target.open(QIODevice::WriteOnly);
    if (isWritten) {
        pages.write(state);
        Writer writer(target, form, state, pages);
        state.forEach([&](const Row& row) { writer.add(row); });
        isWritten = writer.finish();
    }
    if (!isWritten)
        throw Messages::Failure(
            {Messages::Unwritable, "unwritable",
             file + ": " + target.errorString().toStdString() + "; give another file with --report"});
}

} // namespace Batch
