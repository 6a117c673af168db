#include "session/mockbus.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace KxTest {

MockBus::MockBus() {
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0)
        return;
    process = fork();
    if (process == 0) {
        dup2(in[0], STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        execl(KXQTS_MOCKBUS, KXQTS_MOCKBUS, nullptr);
        _exit(127);
    }
    close(in[0]);
    close(out[1]);
    commands = fdopen(in[1], "w");
    answers = fdopen(out[0], "r");
    address = readLine();
    setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
}

MockBus::~MockBus() {
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    if (commands)
        fclose(commands); // the end of the commands is the end of the bus
    if (process > 0)
        waitpid(process, nullptr, 0);
    if (answers)
        fclose(answers);
}

std::vector<std::string> MockBus::command(const std::string& line) {
    std::fprintf(commands, "%s\n", line.c_str());
    std::fflush(commands);
    std::vector<std::string> lines;
    for (std::string next = readLine(); !next.empty() && next != "."; next = readLine())
        lines.push_back(next);
    return lines;
}

/// Empty at the end.
std::string MockBus::readLine() {
    std::string line;
    for (int next = std::fgetc(answers); next != EOF && next != '\n'; next = std::fgetc(answers))
        line += static_cast<char>(next);
    return line;
}

} // namespace KxTest
