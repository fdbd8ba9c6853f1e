#pragma once

#include <glog/logging.h>

#include <string>
#include <vector>

namespace Reader {

/// A line that a step logged.
struct LogLine {
    std::string step;     ///< class name of the step, or of the unnumbered adaptor
    std::string severity; ///< "WARNING" or "ERROR"
    std::string text;
    std::string place; ///< source file and line

    bool isError() const { return severity == "ERROR"; }
};

/// Collects what is logged while it lives, under the name of the step that runs.
class StepLog : private google::LogSink {
public:
    StepLog();
    ~StepLog() override;
    StepLog(const StepLog&) = delete;
    StepLog& operator=(const StepLog&) = delete;

    void setStep(std::string name) { m_step = std::move(name); }
    const std::vector<LogLine>& lines() const { return m_lines; }

private:
    void send(google::LogSeverity severity, const char* fullName, const char* baseName, int line,
              const google::LogMessageTime& time, const char* message, std::size_t length) override;

    std::string m_step;
    std::vector<LogLine> m_lines;
};

} // namespace Reader
