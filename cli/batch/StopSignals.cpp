#include "batch/StopSignals.h"

#include "Messages.h"
#include "Reader/Unfinished.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace Batch {
namespace {

std::array<int, 2> pipeEnds = {-1, -1};

extern "C" void noteSignal(int number) {
    const int error = errno;
    const auto byte = static_cast<unsigned char>(number);
    static_cast<void>(!write(pipeEnds[1], &byte, 1));
    errno = error;
}

} // namespace

StopSignals::StopSignals() {
    if (pipe2(pipeEnds.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        throw Messages::Failure(Messages::unexpected("no pipe for signals"));
    for (const int number : Reader::endingSignals) {
        struct sigaction action = {};
        if (sigaction(number, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
            continue;
        action = {};
        action.sa_handler = noteSignal;
        action.sa_flags = SA_RESTART;
        sigaction(number, &action, nullptr);
    }
}

StopSignals::~StopSignals() {
    m_notifier.reset();
    for (const int number : Reader::endingSignals) {
        struct sigaction action = {};
        if (sigaction(number, nullptr, &action) == 0 && action.sa_handler == noteSignal) {
            action = {};
            action.sa_handler = SIG_DFL;
            sigaction(number, &action, nullptr);
        }
    }
    for (int& end : pipeEnds) {
        close(end);
        end = -1;
    }
}

void StopSignals::onSignal(std::function<void()> notify) {
    m_notifier = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [this, notify = std::move(notify)] {
                         readPipe();
                         notify();
                     });
}

int StopSignals::count() {
    readPipe();
    return m_count;
}

int StopSignals::first() {
    readPipe();
    return m_first;
}

void StopSignals::readPipe() {
    unsigned char number = 0;
    while (read(pipeEnds[0], &number, 1) == 1) {
        if (m_count++ == 0)
            m_first = number;
    }
}

} // namespace Batch
