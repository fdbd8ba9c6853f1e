#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <map>
#include <optional>
#include <string>

namespace Tests {

/// How a program is run in a terminal.
struct TerminalSetup {
    int columns = 80;
    std::map<std::string, std::string> environment = {}; ///< beside TERM, which is "xterm" unless it is here
    QByteArray typed = {};                               ///< what a user types
    std::optional<QByteArray> piped = {};                ///< standard input is this and no terminal
    int pauseAfterFirstByte = 0;                         ///< milliseconds in which the rest of `piped` waits
};

struct Screen {
    int exitCode;
    QByteArray text; ///< all that the terminal got, from both streams, with line ends as they were written
};

/// Runs the program `adaptors` in a pseudo-terminal; variables that concern colours and widths are not inherited.
Screen runInTerminal(const QStringList& arguments, const QString& folder, const TerminalSetup& setup = {});

} // namespace Tests
