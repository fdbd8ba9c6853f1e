#pragma once

#include <QtGlobal>

namespace Tests {

/// Counts Qt's messages for as long as it exists, such as "Calling appendChild() on a null node".
class QtMessages {
public:
    QtMessages() {
        s_count = 0;
        m_previous =
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) { ++s_count; });
    }
    ~QtMessages() { qInstallMessageHandler(m_previous); }
    QtMessages(const QtMessages&) = delete;
    QtMessages& operator=(const QtMessages&) = delete;

    int count() const { return s_count; }

private:
    inline static int s_count = 0;
    QtMessageHandler m_previous;
};

} // namespace Tests
