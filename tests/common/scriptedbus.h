#pragma once

#include <cstdio>
#include <string>
#include <sys/types.h>
#include <vector>

namespace KxTest {

/// A system bus whose services answer as told, while it lives; this process's and its children's
/// calls go there.
class ScriptedBus {
public:
    /// \param program Starts the bus and tells its address in a line. Then it takes commands, a line each,
    ///                and answers them with lines that end with one of a single dot.
    explicit ScriptedBus(const char* program);
    ~ScriptedBus();
    ScriptedBus(const ScriptedBus&) = delete;
    ScriptedBus& operator=(const ScriptedBus&) = delete;

    /// Whether what it is made of is installed.
    [[nodiscard]] bool isRunning() const { return !address.empty(); }

    /// Sends a command and gives the lines of the answer.
    std::vector<std::string> command(const std::string& line);

private:
    std::string readLine();

    pid_t process = -1;
    FILE* commands = nullptr;
    FILE* answers = nullptr;
    std::string address;
};

} // namespace KxTest
