#include "batch/Report.h"

#include "JsonReport.h"
#include "Messages.h"
#include "Places.h"

#include <QSaveFile>

#include <array>
#include <optional>
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

QByteArray htmlRow(const char* tag, const std::vector<QString>& cells) {
    QByteArray row = "<tr>";
    for (const QString& cell : cells) {
        QString visible;
        for (const QChar c : cell)
            visible += c.isPrint() || c.isSurrogate()
                           ? QString(c)
                           : QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        row += QByteArray("<") + tag + '>' + visible.toHtmlEscaped().toUtf8() + "</" + tag + '>';
    }
    return row + "</tr>\n";
}

// Nothing is loaded and nothing runs, whatever the names of files hold.
constexpr const char* htmlHead = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'">
<title>Batch of migrations</title>
<style>
body { font-family: sans-serif; margin: 1em; }
table { border-collapse: collapse; }
th, td { border: 1px solid #999; padding: 0.2em 0.5em; text-align: left; vertical-align: top; overflow-wrap: anywhere; }
</style>
</head>
<body>
<h1>Batch of migrations</h1>
<table>
)";

constexpr const char* htmlEnd = "</table>\n</body>\n</html>\n";

class Writer {
public:
    Writer(QSaveFile& file, Form form) : m_file(file), m_form(form) {
        const std::vector<QString> names(columns.begin(), columns.end());
        if (m_form == Form::Csv)
            write(csvLine(names));
        else if (m_form == Form::Html)
            write(htmlHead + htmlRow("th", names));
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
        for (const Json& cell : cells)
            texts.push_back(textOf(cell));
        write(m_form == Form::Csv ? csvLine(texts) : htmlRow("td", texts));
    }

    /// Whether all was written.
    bool finish() {
        if (m_form == Form::Html)
            write(htmlEnd);
        return m_isWhole && m_file.commit();
    }

private:
    void write(const QByteArray& bytes) { m_isWhole = m_isWhole && m_file.write(bytes) == bytes.size(); }

    QSaveFile& m_file;
    Form m_form;
    bool m_isWhole = true;
};

} // namespace

void checkReport(const std::string& file) {
    if (!file.empty() && !formOf(file))
        throw Messages::Failure(
            Messages::badValue("--report", file, "a name that ends in .csv, .jsonl or .html"));
}

void writeReport(State& state, const std::string& file) {
    QSaveFile target(Places::path(file));
    bool isWritten = target.open(QIODevice::WriteOnly);
    if (isWritten) {
        Writer writer(target, *formOf(file));
        state.forEach([&](const Row& row) { writer.add(row); });
        isWritten = writer.finish();
    }
    if (!isWritten)
        throw Messages::Failure(
            {Messages::Unwritable, "unwritable",
             file + ": " + target.errorString().toStdString() + "; give another file with --report"});
}

} // namespace Batch
