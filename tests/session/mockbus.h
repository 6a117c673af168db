#pragma once

#include <cstdio>
#include <string>
#include <sys/types.h>
#include <vector>

namespace KxTest {

/// A system bus with services that do nothing but answer as told, while it lives; this process's
/// and its children's calls go there.
class MockBus {
public:
    MockBus();
    ~MockBus();
    MockBus(const MockBus&) = delete;
    MockBus& operator=(const MockBus&) = delete;

    [[nodiscard]] bool isRunning() const { return !address.empty(); }

    /// What polkit answers from now on: "yes", "kept", "no", "dismissed" or "challenge".
    void polkitAnswers(const std::string& answer) { command("answer " + answer); }
    /// Lets a method of logind fail from now on.
    void logindFails(const std::string& method, const std::string& error) {
        command("fail " + method + ' ' + error);
    }

    /// The calls since the last time, as "METHOD(ARGUMENTS)". \param service "polkit" or "logind".
    [[nodiscard]] std::vector<std::string> calls(const std::string& service) {
        return command("calls " + service);
    }

    /// The last of them; empty for none.
    [[nodiscard]] std::string lastCall(const std::string& service) {
        const std::vector<std::string> all = calls(service);
        return all.empty() ? std::string() : all.back();
    }

private:
    std::vector<std::string> command(const std::string& line);
    std::string readLine();

    pid_t process = -1;
    FILE* commands = nullptr;
    FILE* answers = nullptr;
    std::string address;
};

} // namespace KxTest
