#include "common/program.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace KxTest {

namespace {

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        reading = ends[0];
        writing = ends[1];
    }
    int reading = -1;
    int writing = -1;
};

void closeEnd(int& end) {
    if (end >= 0)
        close(end);
    end = -1;
}

/// Never returns: becomes the program, or ends with 127.
[[noreturn]] void becomeProgram(const std::vector<std::string>& words, const Environment& changes,
                                int input, int output, int errors) {
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    for (const auto& [name, value] : changes) {
        if (value.empty())
            unsetenv(name.c_str());
        else
            setenv(name.c_str(), value.c_str(), 1);
    }
    std::vector<char*> arguments;
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    execv(arguments[0], arguments.data());
    _exit(127);
}

/// Appends what there is; closes the end when there will be no more.
void readInto(std::string& text, int& end) {
    std::array<char, 4096> buffer{};
    const ssize_t count = read(end, buffer.data(), buffer.size());
    if (count > 0)
        text.append(buffer.data(), static_cast<std::size_t>(count));
    else
        closeEnd(end);
}

void readBoth(ProgramResult& result, int& output, int& errors) {
    while (output >= 0 || errors >= 0) {
        std::array<pollfd, 2> ends{pollfd{output, POLLIN, 0}, pollfd{errors, POLLIN, 0}};
        if (poll(ends.data(), ends.size(), -1) < 0 && errno != EINTR)
            throw std::runtime_error("poll failed");
        if (ends[0].revents != 0)
            readInto(result.output, output);
        if (ends[1].revents != 0)
            readInto(result.errors, errors);
    }
}

int endOf(pid_t child) {
    constexpr int signalBase = 128;
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : signalBase + WTERMSIG(status);
}

} // namespace

ProgramResult runProgram(const std::vector<std::string>& words, const Environment& changes,
                         const std::string& input) {
    Pipe in;
    Pipe out;
    Pipe err;
    const pid_t child = fork();
    if (child == 0)
        becomeProgram(words, changes, in.reading, out.writing, err.writing);
    closeEnd(in.reading);
    closeEnd(out.writing);
    closeEnd(err.writing);
    // Short enough for the pipe to take as a whole, or the program would have to read meanwhile.
    if (write(in.writing, input.data(), input.size()) != static_cast<ssize_t>(input.size()))
        throw std::runtime_error("the program's input was not taken");
    closeEnd(in.writing);
    ProgramResult result;
    readBoth(result, out.reading, err.reading);
    result.status = endOf(child);
    return result;
}

ProgramResult runOnTerminal(const std::vector<std::string>& words, const Environment& changes) {
    int master = -1;
    int slave = -1;
    if (openpty(&master, &slave, nullptr, nullptr, nullptr) != 0)
        throw std::runtime_error("no terminal");
    fcntl(master, F_SETFD, FD_CLOEXEC);
    fcntl(slave, F_SETFD, FD_CLOEXEC);
    Pipe err;
    const pid_t child = fork();
    if (child == 0)
        becomeProgram(words, changes, slave, slave, err.writing);
    closeEnd(slave);
    closeEnd(err.writing);
    ProgramResult result;
    readBoth(result, master, err.reading);
    result.status = endOf(child);
    return result;
}

} // namespace KxTest
