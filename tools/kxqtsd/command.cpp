#include "command.h"

#include "limits.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/epoll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Kxqtsd {

namespace {

/// How the shell is started: as the leader of a process group, with no signal blocked or ignored,
/// and with nothing to read.
class Start {
public:
    Start() {
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK |
                                                  POSIX_SPAWN_SETSIGDEF);
        posix_spawnattr_setpgroup(&attributes, 0);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    }
    ~Start() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    Start(const Start&) = delete;
    Start& operator=(const Start&) = delete;

    /// \return The process id, or −1.
    pid_t run(const std::string& line) const {
        std::string name = "sh";
        std::string option = "-c";
        std::string separator = "--";
        std::string script = line;
        const std::array<char*, 5> arguments{name.data(), option.data(), separator.data(),
                                             script.data(), nullptr};
        pid_t process = -1;
        const int error =
            posix_spawn(&process, "/bin/sh", &actions, &attributes, arguments.data(), environ);
        return error == 0 ? process : -1;
    }

private:
    posix_spawnattr_t attributes{};
    posix_spawn_file_actions_t actions{};
};

} // namespace

Command::Command(Loop& usedLoop, Loop::Clock::duration timeLimit, Ended ended)
    : loop(usedLoop), onEnd(std::move(ended)), time(timeLimit), alarm(loop.none()) {}

Command::~Command() {
    loop.cancel(alarm);
    if (shell <= 0)
        return;
    loop.forget(end.get());
    kill(-shell, SIGKILL);
    waitpid(shell, nullptr, 0);
}

bool Command::start(const std::string& line) {
    shell = Start().run(line);
    if (shell <= 0)
        return false;
    end = Korvex::Descriptor(static_cast<int>(syscall(SYS_pidfd_open, shell, 0)));
    if (!end.isOpen())
        return false;
    loop.watch(end.get(), EPOLLIN, [this] { noteEnd(); });
    alarm = loop.callIn(time, [this] {
        alarm = loop.none();
        terminate();
    });
    return true;
}

void Command::terminate() {
    loop.cancel(alarm);
    kill(-shell, SIGTERM);
    kill(-shell, SIGCONT);
    alarm = loop.callIn(Limits::endingTime, [this] {
        alarm = loop.none();
        kill(-shell, SIGKILL);
    });
}

void Command::noteEnd() {
    loop.cancel(alarm);
    loop.forget(end.get());
    // As long as the shell is not reaped, its number cannot be another group's.
    kill(-shell, SIGKILL);
    int status = 0;
    waitpid(shell, &status, 0);
    shell = -1;
    const Ended ended = std::move(onEnd);
    ended(status);
}

} // namespace Kxqtsd
