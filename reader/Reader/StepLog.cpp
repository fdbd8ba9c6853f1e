#include "Reader/StepLog.h"

namespace Reader {

StepLog::StepLog() {
    google::AddLogSink(this);
}

StepLog::~StepLog() {
    google::RemoveLogSink(this);
}

void StepLog::send(google::LogSeverity severity, const char* fullName, const char*, int line,
                   const google::LogMessageTime&, const char* message, std::size_t length) {
    if (severity >= google::GLOG_WARNING)
        m_lines.push_back({m_step, google::GetLogSeverityName(severity), std::string(message, length),
                           std::string(fullName) + ':' + std::to_string(line)});
}

} // namespace Reader
