#include <gtest/gtest.h>

#include <QHashFunctions>

#include <glog/logging.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qSetGlobalQHashSeed(0);
    // Tests read log lines through sinks; nothing is written to files or to the terminal.
    FLAGS_stderrthreshold = google::NUM_SEVERITIES;
    for (int severity = 0; severity < google::NUM_SEVERITIES; ++severity)
        google::SetLogDestination(severity, "");
    google::InitGoogleLogging(argv[0]);
    return RUN_ALL_TESTS();
}
