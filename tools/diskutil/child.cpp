#include "child.h"

#include "failure.h"
#include "platform/descriptor.h"
#include "text.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace DiskUtil {

namespace {

constexpr int notStarted = 127;

/// Never returns: becomes the program.
[[noreturn]] void become(const std::string& path, std::vector<char*> arguments, int output) {
    // Its texts are read, so they are to be in no language.
    std::array<char*, 3> environment{const_cast<char*>("LC_ALL=C"),
                                     const_cast<char*>("PATH=/usr/sbin:/usr/bin:/sbin:/bin"),
                                     nullptr};
    const int nothing = open("/dev/null", O_RDONLY);
    dup2(nothing, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    setsid();
    std::signal(SIGPIPE, SIG_IGN); // also when nobody reads its output any more
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    execve(path.c_str(), arguments.data(), environment.data());
    _exit(notStarted);
}

std::string readToEnd(int descriptor) {
    std::string text;
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t got = read(descriptor, buffer.data(), buffer.size());
        if (got > 0)
            text.append(buffer.data(), static_cast<std::size_t>(got));
        else if (got == 0 || errno != EINTR)
            return text;
    }
}

int endOf(pid_t process) {
    constexpr int signalBase = 128;
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : signalBase + WTERMSIG(status);
}

} // namespace

ChildResult runProgram(const std::vector<std::string>& words) {
    const std::string path = "/usr/sbin/" + words.front();
    std::vector<char*> arguments;
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw systemFailure("no pipe");
    const Korvex::Descriptor reading(ends[0]);
    Korvex::Descriptor writing(ends[1]);
    const pid_t process = fork();
    if (process < 0)
        throw systemFailure("no process for " + words.front());
    if (process == 0)
        become(path, arguments, writing.get());
    writing.reset();
    ChildResult result;
    result.output = withoutBanner(readToEnd(reading.get()), words.front());
    result.status = endOf(process);
    if (result.status == notStarted)
        throw Failure(words.front() + " could not be run; is the package e2fsprogs installed?");
    return result;
}

} // namespace DiskUtil
