#pragma once

#include "common/scriptedbus.h"

namespace KxTest {

/// A system bus with the services of polkit and logind, which do nothing but answer.
class MockBus : public ScriptedBus {
public:
    MockBus() : ScriptedBus(KXQTS_MOCKBUS) {}

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
};

} // namespace KxTest
