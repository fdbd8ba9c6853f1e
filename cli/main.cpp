#include "CommandLine.h"
#include "Memory.h"
#include "Messages.h"
#include "Reader/Error.h"

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

} // namespace

int main(int argc, char** argv) {
    // Qt orders attributes by a hash: the same input gives the same bytes only with a fixed seed.
    qSetGlobalQHashSeed(0);
    // Log lines of steps are printed in the summary; glog itself writes neither files nor to the terminal.
    FLAGS_stderrthreshold = google::NUM_SEVERITIES;
    for (int severity = 0; severity < google::NUM_SEVERITIES; ++severity)
        google::SetLogDestination(severity, "");
    google::InitGoogleLogging(argv[0]);
    std::signal(SIGXFSZ,
                SIG_IGN); // a file that exceeds the size limit is reported as an error, not by a signal
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
