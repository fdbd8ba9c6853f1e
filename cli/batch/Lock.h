#pragma once

#include <QByteArray>

namespace Batch {

/// Keeps a second run from working with the same state. The worker processes hold it too: where the batch was killed,
/// the next run waits until they have ended.
class Lock {
public:
    /// For the state at this path. Throws Messages::Failure where another run has it.
    explicit Lock(const QByteArray& state);
    ~Lock();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    const QByteArray& path() const { return m_path; }

private:
    QByteArray m_path;
    int m_descriptor = -1;
};

} // namespace Batch
