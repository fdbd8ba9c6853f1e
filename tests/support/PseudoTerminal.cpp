#include "support/PseudoTerminal.h"

#include "support/Paths.h"

#include <QFile>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>

#include <array>
#include <cstdlib>
#include <vector>

namespace Tests {
namespace {

/// What happens in the new process, in place of the tests.
[[noreturn]] void execute(const QStringList& arguments, const QString& folder, const TerminalSetup& setup,
                          int inputPipe) {
    for (const char* name : {"COLUMNS", "LINES", "NO_COLOR", "CLICOLOR", "CLICOLOR_FORCE"})
        unsetenv(name);
    setenv("TERM", "xterm", 1);
    for (const auto& [name, value] : setup.environment)
        setenv(name.c_str(), value.c_str(), 1);
    if (inputPipe >= 0)
        dup2(inputPipe, STDIN_FILENO);
    std::vector<QByteArray> words = {QByteArray::fromStdString(program().string())};
    for (const QString& argument : arguments)
        words.push_back(QFile::encodeName(argument));
    std::vector<char*> pointers;
    for (QByteArray& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    if (chdir(QFile::encodeName(folder).constData()) == 0)
        execv(pointers.front(), pointers.data());
    _exit(127);
}

void writeAll(int descriptor, const QByteArray& bytes) {
    qint64 done = 0;
    while (done < bytes.size()) {
        const ssize_t count =
            ::write(descriptor, bytes.constData() + done, static_cast<std::size_t>(bytes.size() - done));
        if (count <= 0)
            return;
        done += count;
    }
}

/// Waits until what the pipe holds is read: the program has started then. Gives up after a minute.
void waitUntilRead(int pipe) {
    constexpr int step = 10; // milliseconds
    int waiting = 0;
    for (int passed = 0; passed < 60000 && ioctl(pipe, FIONREAD, &waiting) == 0 && waiting > 0;
         passed += step)
        usleep(step * 1000);
}

/// Appends what can be read, until there is nothing for a moment.
void readWaiting(int terminal, QByteArray& text) {
    constexpr int moment = 5; // milliseconds
    std::array<char, 4096> bytes = {};
    for (pollfd waiting = {terminal, POLLIN, 0}; poll(&waiting, 1, moment) > 0;) {
        const ssize_t count = ::read(terminal, bytes.data(), bytes.size());
        if (count <= 0)
            return;
        text.append(bytes.data(), static_cast<int>(count));
    }
}

} // namespace

Screen runInTerminal(const QStringList& arguments, const QString& folder, const TerminalSetup& setup) {
    winsize size = {};
    size.ws_row = 24;
    size.ws_col = static_cast<unsigned short>(setup.columns);
    std::array<int, 2> input = {-1, -1};
    if (setup.piped && pipe2(input.data(), O_CLOEXEC) != 0)
        return {-1, "no pipe"};
    // The program's end of the terminal stays open here: when the last one closes it, what was written may be lost.
    int terminal = -1;
    int line = -1;
    if (openpty(&terminal, &line, nullptr, nullptr, &size) != 0)
        return {-1, "no pseudo-terminal"};
    termios mode = {};
    tcgetattr(line, &mode);
    mode.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    mode.c_oflag &= ~static_cast<tcflag_t>(OPOST); // line ends stay as they are written
    tcsetattr(line, TCSANOW, &mode);
    const pid_t child = fork();
    if (child < 0)
        return {-1, "no process"};
    if (child == 0) {
        close(terminal);
        login_tty(line);
        execute(arguments, folder, setup, input[0]);
    }

    if (setup.piped) {
        close(input[0]);
        writeAll(input[1], setup.piped->left(1));
        if (setup.pauseAfterFirstByte > 0) {
            waitUntilRead(input[1]);
            usleep(static_cast<useconds_t>(setup.pauseAfterFirstByte) * 1000);
        }
        writeAll(input[1], setup.piped->mid(1));
        close(input[1]);
    }
    writeAll(terminal, setup.typed);
    Screen screen = {};
    int status = 0;
    do
        readWaiting(terminal, screen.text);
    while (waitpid(child, &status, WNOHANG) == 0);
    readWaiting(terminal, screen.text);
    writeAll(line, QByteArray(1, '\0')); // comes behind all that the program wrote
    while (!screen.text.endsWith('\0'))
        readWaiting(terminal, screen.text);
    screen.text.chop(1);
    close(line);
    close(terminal);
    screen.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return screen;
}

} // namespace Tests
