#include "Reader/StepLog.h"

#include <algorithm>
#include <utility>

namespace Reader {
namespace {

/// glog cuts long lines at a byte, so the text may end with a part of a UTF-8 character. Removes that part.
std::string withoutPartOfCharacter(std::string text) {
    constexpr std::size_t longest = 4;
    for (std::size_t count = 1; count <= std::min(longest, text.size()); ++count) {
        const auto byte = static_cast<unsigned char>(text[text.size() - count]);
        if (byte >= 0x80 && byte < 0xC0)
            continue; // behind the first byte of its character
        const std::size_t length = byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
        if (count < length)
            text.resize(text.size() - count);
        break;
    }
    return text;
}

} // namespace

StepLog::StepLog(std::string step, std::vector<LogLine>& lines, Subject subject)
    : m_thread(std::this_thread::get_id()), m_step(std::move(step)), m_lines(lines),
      m_subject(std::move(subject)) {
    google::AddLogSink(this);
}

StepLog::~StepLog() {
    google::RemoveLogSink(this);
}

// glog calls every sink of the process for every line, on the thread that logs the line.
void StepLog::send(google::LogSeverity severity, const char* fullName, const char*, int line,
                   const google::LogMessageTime&, const char* message, std::size_t length) {
    if (severity >= google::GLOG_WARNING && std::this_thread::get_id() == m_thread)
        m_lines.push_back({m_step, google::GetLogSeverityName(severity),
                           withoutPartOfCharacter(std::string(message, length)),
                           std::string(fullName) + ':' + std::to_string(line),
                           m_subject ? m_subject() : std::nullopt});
}

} // namespace Reader
