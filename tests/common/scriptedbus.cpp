#include "common/scriptedbus.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace KxTest {

ScriptedBus::ScriptedBus(const char* program) {
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0)
        std::abort();
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    std::string name = program;
    std::array<char*, 2> arguments{name.data(), nullptr};
    if (posix_spawn(&process, program, &actions, nullptr, arguments.data(), environ) != 0)
        process = -1;
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    commands = fdopen(in[1], "w");
    answers = fdopen(out[0], "r");
    address = readLine();
    // Without a bus of its own, calls find none rather than the machine's.
    setenv("DBUS_SYSTEM_BUS_ADDRESS", isRunning() ? address.c_str() : "unix:path=/none", 1);
}

ScriptedBus::~ScriptedBus() {
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    std::fclose(commands); // the end of the commands is the end of the bus
    if (process > 0)
        waitpid(process, nullptr, 0);
    std::fclose(answers);
}

std::vector<std::string> ScriptedBus::command(const std::string& line) {
    std::fprintf(commands, "%s\n", line.c_str());
    std::fflush(commands);
    std::vector<std::string> lines;
    for (std::string next = readLine(); !next.empty() && next != "."; next = readLine())
        lines.push_back(next);
    return lines;
}

/// Empty at the end.
std::string ScriptedBus::readLine() {
    std::string line;
    for (int next = std::fgetc(answers); next != EOF && next != '\n'; next = std::fgetc(answers))
        line += static_cast<char>(next);
    return line;
}

} // namespace KxTest
