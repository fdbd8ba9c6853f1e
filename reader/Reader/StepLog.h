#pragma once

#include "Reader/MigrationReport.h"

#include <glog/logging.h>

#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace Reader {

/// Appends the warnings and errors that its thread logs to a list, under the name of a step, for as long as
/// the object exists.
///
/// Threads: records only lines of the thread that created it. Other threads may log at the same time.
class StepLog : private google::LogSink {
public:
    /// `subject` gives the object that the step works on when it logs a line.
    using Subject = std::function<std::optional<LoggedObject>()>;

    StepLog(std::string step, std::vector<LogLine>& lines, Subject subject = {});
    ~StepLog() override;
    StepLog(const StepLog&) = delete;
    StepLog& operator=(const StepLog&) = delete;

private:
    void send(google::LogSeverity severity, const char* fullName, const char* baseName, int line,
              const google::LogMessageTime& time, const char* message, std::size_t length) override;

    const std::thread::id m_thread;
    const std::string m_step;
    std::vector<LogLine>& m_lines;
    const Subject m_subject;
};

} // namespace Reader
