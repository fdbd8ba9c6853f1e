#pragma once

#include "support/Paths.h"

#include <QByteArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>

#include <cstdlib>

namespace Tests {

struct Outcome {
    int exitCode;
    QByteArray out;
    QByteArray err;
};

/// For a run that is killed or may write little: it writes no coverage counters, since half of them would damage those of
/// all other runs.
inline QProcessEnvironment withoutCounters() {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LLVM_PROFILE_FILE"), QStringLiteral("/dev/null"));
    return environment;
}

/// Runs a command in a folder, with `input` as its standard input.
inline Outcome runCommand(const QString& command, const QStringList& arguments, const QString& folder,
                          const QByteArray& input = {},
                          const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment()) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder);
    process.start(command, arguments);
    if (!process.waitForStarted(30000))
        return {-1, {}, process.errorString().toUtf8()};
    process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(600000);
    const int code = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    return {code, process.readAllStandardOutput(), process.readAllStandardError()};
}

/// The same for the program `adaptors`.
inline Outcome runProgram(const QStringList& arguments, const QString& folder, const QByteArray& input = {}) {
    return runCommand(QString::fromStdString(program().string()), arguments, folder, input);
}

} // namespace Tests
