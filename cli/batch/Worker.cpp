#include "batch/Worker.h"

#include "Failures.h"
#include "Memory.h"
#include "Messages.h"
#include "Output.h"
#include "Places.h"
#include "Reader/Error.h"
#include "Reader/TemporaryFile.h"
#include "batch/Finder.h"
#include "batch/Protocol.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <poll.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iostream>

namespace Batch {
namespace {

using Protocol::Answer;
using Protocol::Request;

struct Stamp {
    std::optional<qint64> size;
    std::optional<qint64> time;

    bool operator==(const Stamp&) const = default;
};

Stamp stampOf(const QByteArray& path) {
    struct stat status = {};
    return stat(path.constData(), &status) == 0 ? Stamp{status.st_size, timeOf(status)} : Stamp();
}

/// Memory of this process in bytes.
std::optional<qint64> residentMemory() {
    std::ifstream file("/proc/self/statm");
    qint64 pages = 0;
    qint64 resident = 0;
    return file >> pages >> resident ? std::optional(resident * sysconf(_SC_PAGESIZE)) : std::nullopt;
}

Arguments argumentsFor(const Request& request, const Arguments& shared) {
    Arguments arguments = shared;
    arguments.file = request.input.toStdString();
    arguments.output = request.output.toStdString();
    if (request.isBundle)
        arguments.bundle = QFile::encodeName(QFileInfo(Places::path(arguments.output)).path()).toStdString();
    arguments.force = request.force;
    arguments.moreFilesFollow = true;
    return arguments;
}

Answer migrate(const Request& request, const Arguments& shared) {
    Memory::liftLimit();
    Output output({.json = true});
    output.setCommand("migrate");
    const Stamp before = stampOf(request.input);
    Arguments arguments = argumentsFor(request, shared);
    arguments.beforeWriting = [&](const QString& target) {
        // What is read while someone writes it is neither the old file nor the new one.
        if (stampOf(request.input) != before)
            throw Reader::Error(Reader::ErrorKind::ChangedMeanwhile, {.file = Places::path(arguments.file)});
        QDir().mkpath(QFileInfo(target).path());
    };
    int code = Messages::Done;
    const auto failure = failureOf([&] { code = Commands::migrate(arguments, output); });
    JsonReport::Json report = output.report(failure ? &*failure : nullptr);
    Answer answer;
    answer.facts = Protocol::factsIn(report, failure ? int(failure->code) : code);
    answer.facts.size = before.size;
    answer.facts.time = before.time;
    const auto written = report.find("output");
    if (written != report.end() && !written->is_null()) {
        const Stamp after = stampOf(request.output.isEmpty() ? request.input : request.output);
        answer.facts.outputSize = after.size;
        answer.facts.outputTime = after.time;
    }
    if (request.wantsReport)
        answer.report = std::move(report);
    answer.memory = residentMemory();
    return answer;
}

/// Whether the other end of standard input is closed.
bool isAbandoned() {
    pollfd input = {STDIN_FILENO, POLLRDHUP, 0};
    return poll(&input, 1, 0) == 1 && (input.revents & POLLRDHUP) != 0;
}

} // namespace

int work(const Arguments& arguments, Output&) {
    // Without its batch nobody records what a worker does. The batch may have ended before this takes effect.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (isAbandoned())
        return Messages::Unexpected;
    prctl(PR_SET_NAME, "adaptors-worker"); // it was started under the name of a link to the program
    for (std::string line; std::getline(std::cin, line);) {
        const auto request = Protocol::requestIn(line);
        if (!request)
            throw Messages::Failure(
                Messages::otherWrongUse("a line is no request of a batch", "batch-worker"));
        const std::string answer = Protocol::lineFor(migrate(*request, arguments));
        // Not by way of a stream: the last words where memory runs out are not either.
        if (!Reader::writeAll(STDOUT_FILENO, QByteArray::fromStdString(answer)))
            return Messages::Unwritable;
    }
    return Messages::Done;
}

} // namespace Batch
