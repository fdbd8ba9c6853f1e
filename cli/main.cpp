#include "CommandLine.h"
#include "FileNames.h"
#include "Memory.h"
#include "Messages.h"
#include "Reader/Error.h"
#include "Reader/Unfinished.h"
#include "StandardStreams.h"

#include <QHashFunctions>

#include <glog/logging.h>

#include <csignal>
#include <iostream>
#include <new>
#include <string>

namespace {

int fail(const Messages::Message& message) {
    std::cerr << Messages::asText(message);
    return message.code;
}

int run(int argc, char** argv) {
    try {
        return runCommandLine(argc, argv);
    } catch (const Reader::Error& error) {
        return fail(Messages::messageFor(error));
    } catch (const Messages::Failure& failure) {
        return fail(failure.message());
    } catch (const std::bad_alloc&) {
        Memory::endProgram();
    } catch (const std::exception& error) {
        return fail(Messages::unexpected(error.what()));
    }
}

} // namespace

int main(int argc, char** argv) {
    StandardStreams::occupy(); // before anything else opens a file
    FileNames::keepAllBytes();
    Reader::removeUnfinishedOnSignals();
    // Qt orders attributes by a hash: the same input gives the same bytes only with a fixed seed.
    qSetGlobalQHashSeed(0);
    // Log lines of steps reach people through the summary; glog writes no files and nothing of its own.
    FLAGS_stderrthreshold = google::NUM_SEVERITIES;
    for (int severity = 0; severity < google::NUM_SEVERITIES; ++severity)
        google::SetLogDestination(severity, "");
    google::InitGoogleLogging(argv[0]);
    std::signal(SIGXFSZ, SIG_IGN); // a file that grows too large is an error to report, not the end
    const int code = run(argc, argv);
    if (const auto reason = StandardStreams::flushOutput())
        return fail(Messages::outputIncomplete(*reason));
    return code;
}
