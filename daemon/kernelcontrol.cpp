#include <KxQts/daemon/kernelcontrol.h>

#include "platform/clock.h"
#include "platform/kernelchannel.h"

#include <KxQts/errors.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <new>
#include <string>
#include <unistd.h>

namespace {

using Korvex::KernelControl;

constexpr std::size_t nameSize = 96;
constexpr unsigned slotStep = 0x100;
constexpr unsigned slotBits = 0x300;
constexpr int passes = 300;
constexpr auto pause = std::chrono::milliseconds(100);
constexpr int busy = 16;

/// Tries the slots from the unit's own up to the last. \return 0, or the error.
int connectToFreeSlot(KernelControl& control, int socket, unsigned& unit) {
    while (control.connect(socket, unit) != 0) {
        if (errno != busy || (unit & slotBits) == slotBits)
            return errno;
        unit += slotStep;
    }
    return 0;
}

/// \return 0, or the error, which is "busy" when every slot was in every pass.
int connectInPasses(KernelControl& control, int socket, unsigned unit) {
    for (int pass = 1;; ++pass) {
        const int error = connectToFreeSlot(control, socket, unit);
        if (error != busy || pass == passes)
            return error;
        unit &= ~slotBits;
        Korvex::systemClock().sleep(pause);
    }
}

std::string cut(const char* controlName) {
    return {controlName, strnlen(controlName, nameSize)};
}

int fail(int& socket, int error) {
    close(socket);
    socket = -1;
    return error;
}

} // namespace

int KextConnect(const char* controlName, unsigned int unit, int& socket) try {
    socket = -1;
    if (!controlName)
        return Korvex::Error::InvalidArgument;
    Korvex::KernelChannel& channel = Korvex::kernelChannel();
    socket = channel.open();
    if (socket < 0)
        return errno;
    const auto control = channel.find(socket, cut(controlName).c_str());
    if (!control)
        return fail(socket, errno);
    if (const int error = connectInPasses(*control, socket, unit))
        return fail(socket, error);
    errno = 0;
    return 0;
} catch (const std::bad_alloc&) {
    return socket < 0 ? Korvex::Error::NoMemory : fail(socket, Korvex::Error::NoMemory);
}

int KextControl(int socket, unsigned int option, void* value, unsigned int* valueSize) {
    return Korvex::kernelChannel().exchange(socket, option, value, valueSize);
}

int KextCommand(int socket, unsigned int command) {
    return Korvex::kernelChannel().command(socket, command);
}
