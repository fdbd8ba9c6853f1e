#include "Reader/StepLog.h"

#include <utility>

namespace Reader {

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
        m_lines.push_back({m_step, google::GetLogSeverityName(severity), std::string(message, length),
                           std::string(fullName) + ':' + std::to_string(line),
                           m_subject ? m_subject() : std::nullopt});
}

} // namespace Reader
