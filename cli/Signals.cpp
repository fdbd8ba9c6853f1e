#include "Signals.h"

#include "Reader/Unfinished.h"

#include <unistd.h>

#include <csignal>

namespace Signals {
namespace {

// Nothing but system calls: a signal may come in the middle of an allocation.
extern "C" void endOnSignal(int number) {
    Reader::removeUnfinished();
    _exit(128 + number);
}

} // namespace

void endCleanly() {
    for (const int number : Reader::endingSignals) {
        struct sigaction action = {};
        if (sigaction(number, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
            continue; // as nohup and shells do it for what runs in the background
        action = {};
        action.sa_handler = endOnSignal;
        action.sa_mask = Reader::endingSignalSet();
        sigaction(number, &action, nullptr);
    }
}

} // namespace Signals
