#pragma once

#include "support/Paths.h"
#include "support/ProgramTest.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace Tests {

/// Debian's Python, which has Debian's packages.
inline const QString python = QStringLiteral("/usr/bin/python3");

/// Checks lines of "command<tab>JSON" against the schemas of the commands. Exit code 0 if all agree.
inline Outcome checkSchemas(const QByteArray& lines) {
    return runCommand(
        python,
        {QString::fromStdString(jsonChecker().string()), QString::fromStdString(schemaFolder().string())},
        QStringLiteral("/"), lines);
}

/// Base class of tests that read the JSON that the program prints.
class JsonProgramTest : public ProgramTest {
protected:
    /// What a call prints with --json, checked against the schema of its command.
    nlohmann::json call(const QStringList& arguments, int code = 0) const {
        const Outcome outcome = run(arguments + QStringList{"--json"});
        EXPECT_EQ(outcome.exitCode, code) << outcome.out.toStdString();
        const Outcome check = checkSchemas(arguments.front().toUtf8() + '\t' + outcome.out);
        EXPECT_EQ(check.exitCode, 0) << check.out.toStdString() << check.err.toStdString();
        return nlohmann::json::parse(outcome.out.toStdString());
    }
};

} // namespace Tests
