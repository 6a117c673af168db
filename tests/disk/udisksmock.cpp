#include "udisksmock.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace KxTest {

UDisksMock::UDisksMock() {
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0)
        std::abort();
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    std::string program = KXQTS_UDISKSMOCK;
    std::array<char*, 2> arguments{program.data(), nullptr};
    if (posix_spawn(&process, program.c_str(), &actions, nullptr, arguments.data(), environ) != 0)
        process = -1;
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    commands = fdopen(in[1], "w");
    answers = fdopen(out[0], "r");
    address = readLine();
    if (isRunning())
        setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
}

UDisksMock::~UDisksMock() {
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    std::fclose(commands); // which ends it
    std::fclose(answers);
    if (process > 0)
        waitpid(process, nullptr, 0);
}

std::string UDisksMock::readLine() {
    std::array<char, 4096> line{};
    if (!std::fgets(line.data(), line.size(), answers))
        return {};
    std::string text = line.data();
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}

std::vector<std::string> UDisksMock::command(const std::string& line) {
    std::fprintf(commands, "%s\n", line.c_str());
    std::fflush(commands);
    std::vector<std::string> lines;
    for (std::string answer = readLine(); !answer.empty() && answer != "."; answer = readLine())
        lines.push_back(answer);
    return lines;
}

} // namespace KxTest
