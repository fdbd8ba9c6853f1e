#include "CommandLine.h"
#include "FileNames.h"
#include "Messages.h"
#include "Signals.h"
#include "StandardStreams.h"
#include "Terminal.h"

#include <QHashFunctions>

#include <glog/logging.h>

#include <unistd.h>

#include <csignal>
#include <iostream>

int main(int argc, char** argv) {
    StandardStreams::occupy(); // before anything else opens a file
    FileNames::keepAllBytes();
    Signals::endCleanly();
    // Qt orders attributes by a hash: the same input gives the same bytes only with a fixed seed.
    qSetGlobalQHashSeed(0);
    // Log lines of steps reach people through the summary; glog writes no files and nothing of its own.
    FLAGS_stderrthreshold = google::NUM_SEVERITIES;
    for (int severity = 0; severity < google::NUM_SEVERITIES; ++severity)
        google::SetLogDestination(severity, "");
    google::InitGoogleLogging(argv[0]);
    std::signal(SIGXFSZ, SIG_IGN); // a file that grows too large is an error to report, not the end
    const int code = runCommandLine(argc, argv);
    const auto reason = StandardStreams::flushOutput();
    if (code != Messages::Done || !reason)
        return code; // a failure was reported already
    const Terminal::Colours colours(Terminal::isColoured(Terminal::ColourChoice::Auto, STDERR_FILENO));
    std::cerr << Messages::asText(Messages::outputLost(*reason), colours);
    return Messages::Unwritable;
}
