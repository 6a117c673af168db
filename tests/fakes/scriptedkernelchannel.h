#pragma once

#include "platform/kernelchannel.h"
#include "platform/replaceable.h"

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <string>
#include <vector>

namespace KxTest {

/// A kernel channel whose every answer a test writes down. It is in force while it lives.
class ScriptedKernelChannel : public Korvex::KernelChannel {
public:
    /// \return What `errno` is after an attempt to connect; none is a success.
    std::function<int(unsigned unit)> onConnect = [](unsigned) { return 0; };
    /// A failing connection with this result leaves `errno` alone as 0.
    static constexpr int failsWithoutError = -1;
    int openError = 0;
    int findError = 0;
    std::vector<unsigned> units;    ///< That connections were asked for
    std::vector<std::string> names; ///< That were looked for

    int open() override {
        errno = openError;
        return openError != 0 ? -1 : ::open("/dev/null", O_RDWR | O_CLOEXEC);
    }

    std::unique_ptr<Korvex::KernelControl> find(int, const char* name) override {
        names.emplace_back(name);
        errno = findError;
        return findError != 0 ? nullptr : std::make_unique<Control>(*this);
    }

    int exchange(int, unsigned, void*, unsigned*) override { return 0; }
    int command(int, unsigned) override { return 0; }

private:
    class Control : public Korvex::KernelControl {
    public:
        explicit Control(ScriptedKernelChannel& toAsk) : channel(toAsk) {}
        int connect(int, unsigned unit) override {
            channel.units.push_back(unit);
            const int error = channel.onConnect(unit);
            errno = error == failsWithoutError ? 0 : error;
            return error == 0 ? 0 : -1;
        }

    private:
        ScriptedKernelChannel& channel;
    };

    Korvex::Replacement<Korvex::KernelChannel> inForce{*this};
};

} // namespace KxTest
