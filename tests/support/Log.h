#pragma once

#include <glog/logging.h>

#include <string>
#include <vector>

namespace Tests {

/// Collects log lines for as long as it exists, as "ERROR text".
class Log : private google::LogSink {
public:
    Log() { google::AddLogSink(this); }
    ~Log() override { google::RemoveLogSink(this); }
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    const std::vector<std::string>& lines() const { return m_lines; }

private:
    void send(google::LogSeverity severity, const char*, const char*, int, const google::LogMessageTime&,
              const char* message, std::size_t length) override {
        m_lines.push_back(std::string(google::GetLogSeverityName(severity)) + ' ' +
                          std::string(message, length));
    }

    std::vector<std::string> m_lines;
};

} // namespace Tests
