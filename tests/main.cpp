#include <gtest/gtest.h>

#include <QHashFunctions>

#include <glog/logging.h>

#include <csignal>

int main(int argc, char** argv) {
    // A shell's background jobs ignore some signals, and so would the programs that tests start.
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        std::signal(number, SIG_DFL);
    testing::InitGoogleTest(&argc, argv);
    qSetGlobalQHashSeed(0);
    // Tests read log lines through sinks; nothing is written to files or to the terminal.
    FLAGS_stderrthreshold = google::NUM_SEVERITIES;
    for (int severity = 0; severity < google::NUM_SEVERITIES; ++severity)
        google::SetLogDestination(severity, "");
    google::InitGoogleLogging(argv[0]);
    return RUN_ALL_TESTS();
}
