#include "batch/BatchProgress.h"

#include "JsonReport.h"
#include "batch/Texts.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>

namespace Batch {
namespace {

constexpr const char* eraseLine = "\r\x1b[K";
constexpr int barInterval = 100; ///< milliseconds
constexpr int eventInterval = 1000;
constexpr int lineInterval = 10000;

} // namespace

BatchProgress::BatchProgress(const Output& output, ProgressForm form)
    : m_shape(form == ProgressForm::Json                                          ? Shape::Events
              : form == ProgressForm::None || output.isJson() || output.isQuiet() ? Shape::None
              : Terminal::isCapable(STDERR_FILENO)                                ? Shape::Bar
                                                                                  : Shape::Lines) {
    m_elapsed.start();
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { show(); });
}

void BatchProgress::search() {
    if (m_shape == Shape::Bar) {
        std::cerr << "looking for projects" << std::flush;
        m_isShown = true;
    }
}

void BatchProgress::begin(const Tally& tally) {
    m_tally = &tally;
    m_elapsed.restart();
    if (m_shape == Shape::Events)
        showEvent("begin");
    if (m_shape == Shape::Bar)
        show();
    if (m_shape != Shape::None)
        m_timer.start(m_shape == Shape::Bar      ? barInterval
                      : m_shape == Shape::Events ? eventInterval
                                                 : lineInterval);
}

void BatchProgress::note(const Row& row) {
    if (m_shape != Shape::Events)
        return;
    JsonReport::Json event;
    event["event"] = "file";
    event["input"] = row.path.toStdString();
    event["state"] = std::string(nameOf(row.state));
    event["code"] = row.code ? JsonReport::Json(*row.code) : JsonReport::Json();
    event["kind"] = row.kind.empty() ? JsonReport::Json() : JsonReport::Json(row.kind);
    std::cerr << JsonReport::line(event) << std::flush;
}

void BatchProgress::stopping() {
    m_isStopping = true;
    if (m_shape == Shape::Events) {
        showEvent("stopping");
    } else if (m_shape != Shape::None) {
        clear();
        std::cerr << "stopping: files in work are finished; press Ctrl-C again to end at once\n"
                  << std::flush;
    }
}

void BatchProgress::end() {
    m_timer.stop();
    clear();
    if (m_shape == Shape::Events && m_tally)
        showEvent("end");
    m_tally = nullptr;
}

void BatchProgress::show() {
    if (!m_tally)
        return;
    if (m_shape == Shape::Events) {
        showEvent("progress");
        return;
    }
    const bool isBar = m_shape == Shape::Bar;
    const std::string text =
        progressText(*m_tally, remaining(), isBar ? Terminal::width(STDERR_FILENO) - 1 : 0);
    if (isBar)
        std::cerr << eraseLine << text << std::flush;
    else
        std::cerr << "adaptors: " << text << std::endl;
    m_isShown = isBar;
}

void BatchProgress::clear() {
    if (m_isShown)
        std::cerr << eraseLine << std::flush;
    m_isShown = false;
}

void BatchProgress::showEvent(const char* name) const {
    JsonReport::Json event;
    event["event"] = name;
    event["total"] = m_tally->total;
    event["migrated"] = m_tally->migrated;
    event["current"] = m_tally->current;
    event["failed"] = m_tally->failed;
    event["incomplete"] = m_tally->incomplete;
    event["kept"] = m_tally->kept;
    event["seconds"] = static_cast<double>(m_elapsed.elapsed()) / 1000;
    const auto left = remaining();
    event["secondsLeft"] = left ? JsonReport::Json(*left) : JsonReport::Json();
    std::cerr << JsonReport::line(event) << std::flush;
}

std::optional<double> BatchProgress::remaining() const {
    constexpr qint64 leastFiles = 5;
    constexpr qint64 leastTime = 2000; // milliseconds; the first files say little
    const qint64 done = m_tally->finished();
    const qint64 open = m_tally->total - done;
    if (open <= 0)
        return 0.0;
    if (done < leastFiles || m_elapsed.elapsed() < leastTime)
        return std::nullopt;
    return static_cast<double>(m_elapsed.elapsed()) / 1000 / static_cast<double>(done) *
           static_cast<double>(open);
}

std::string progressText(const Tally& tally, std::optional<double> secondsLeft, int width) {
    std::string text = Texts::number(tally.finished()) + " of " + Texts::number(tally.total);
    if (tally.failed > 0)
        text += ", " + Texts::number(tally.failed) + " failed";
    if (secondsLeft)
        text += ", " + Texts::duration(*secondsLeft) + " left";
    const int room = width - static_cast<int>(text.size()) - 3; // brackets and a space
    constexpr int shortest = 10;
    constexpr int longest = 40;
    if (room < shortest)
        return text;
    const int length = std::min(room, longest);
    const auto full = static_cast<std::size_t>(tally.total > 0 ? length * tally.finished() / tally.total : 0);
    return '[' + std::string(full, '#') + std::string(static_cast<std::size_t>(length) - full, '-') + "] " +
           text;
}

} // namespace Batch
