#include "CommandLine.h"

#include <QHashFunctions>

#include <glog/logging.h>

#include <csignal>

int main(int argc, char** argv) {
    // Qt orders attributes by a hash: the same input gives the same bytes only with a fixed seed.
    qSetGlobalQHashSeed(0);
    // Log lines of steps reach people through the summary; glog writes no files and nothing of its own.
    FLAGS_stderrthreshold = google::NUM_SEVERITIES;
    for (int severity = 0; severity < google::NUM_SEVERITIES; ++severity)
        google::SetLogDestination(severity, "");
    google::InitGoogleLogging(argv[0]);
    std::signal(SIGXFSZ, SIG_IGN); // a file that grows too large is an error to report, not the end
    return runCommandLine(argc, argv);
}
