// What a driver may answer: any packets to a request, any greeting to a connection, and any errors
// of the slots that a connection is tried at.

#include "common/input.h"
#include "common/ownworld.h"
#include "common/require.h"
#include "common/room.h"
#include "fakes/scriptedkernelchannel.h"
#include "fakes/sleeplessclock.h"
#include "platform/descriptor.h"
#include "platform/linux/kernelchannelwire.h"
#include "platform/runtimefolder.h"

#include <KxQts/daemon/kernelcontrol.h>
#include <KxQts/winapi/kernelcontrol.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

using Korvex::Descriptor;
using KxFuzz::Input;
using KxFuzz::require;
using KxFuzz::Room;
namespace Wire = Korvex::KernelWire;

namespace {

constexpr unsigned unit = 5;

/// How many requests were sent: each has the next number.
std::uint32_t requests = 0;

/// What a request comes to, and the reply with it.
struct Outcome {
    int error = EPROTO;
    std::string reply;
};

/// Puts packets into a connection before anyone asks. \return What the next request comes to.
Outcome enqueue(int driver, Input& input, std::size_t room) {
    Outcome outcome{ECONNRESET, {}};
    bool isDecided = false;
    for (std::size_t count = input.below(6); count > 0; --count) {
        const bool isReply = input.number<std::uint8_t>() % 4 != 0;
        std::string packet = input.bytes(input.below(200));
        if (const std::uint32_t sequence = requests + 1; isReply && packet.size() >= 4)
            std::memcpy(packet.data(), &sequence, sizeof sequence);
        send(driver, packet.data(), packet.size(), MSG_NOSIGNAL);
        Wire::ReplyHead head{};
        std::memcpy(&head, packet.data(), std::min(packet.size(), sizeof head));
        const bool isWhole = packet.size() >= sizeof head;
        if (isDecided || (isWhole && head.sequence != requests + 1))
            continue;
        isDecided = true;
        outcome.error = packet.empty() ? ECONNRESET : isWhole ? head.error : EPROTO;
        if (isWhole)
            outcome.reply = packet.substr(sizeof head).substr(0, room);
    }
    shutdown(driver, SHUT_WR); // whoever waits for more gets an end
    return outcome;
}

/// A connection whose other end the target holds.
struct Connection {
    Connection() {
        std::array<int, 2> ends{};
        require(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) == 0);
        client.reset(ends[0]);
        driver.reset(ends[1]);
    }
    Descriptor client;
    Descriptor driver;
};

void requireRequest(int driver, unsigned option, std::size_t size) {
    std::array<char, 1024> packet{};
    const ssize_t got = recv(driver, packet.data(), packet.size(), MSG_DONTWAIT);
    Wire::RequestHead head{};
    require(got == static_cast<ssize_t>(sizeof head + size));
    std::memcpy(&head, packet.data(), sizeof head);
    require(head.option == option && head.sequence == ++requests);
}

void checkControl(Input& input) {
    const Connection connection;
    const std::size_t room = input.below(100);
    const auto option = input.number<unsigned>();
    const Outcome expected = enqueue(connection.driver.get(), input, room);
    Room<char> value(room);
    auto size = static_cast<unsigned>(room);
    errno = 0;
    const int result = KextControl(connection.client.get(), option, value.get(), &size);
    require(result == (expected.error == 0 ? 0 : -1) && errno == expected.error);
    require(size <= room);
    if (result == 0)
        require(size == expected.reply.size() && value.first(size) == expected.reply);
    value.requireUntouchedFrom(room);
    requireRequest(connection.driver.get(), option, room);
    require(KextControl(connection.client.get(), option, nullptr, &size) == -1);
    require(KextControl(connection.client.get(), option, value.get(), nullptr) == -1);
}

void checkCommand(Input& input) {
    const Connection connection;
    const auto number = input.number<unsigned>();
    const Outcome expected = enqueue(connection.driver.get(), input, sizeof(unsigned));
    const int result = KextCommand(connection.client.get(), number);
    require(result == (expected.error == 0 ? 0 : -1));
    requireRequest(connection.driver.get(), number, sizeof(unsigned));
}

void checkDeviceControl(Input& input) {
    const Connection connection;
    const std::size_t inSize = input.below(100);
    const auto outSize = static_cast<unsigned>(input.below(100));
    const auto code = input.number<unsigned>();
    const bool isCounted = input.flag();
    Room<char> in(inSize);
    Room<char> out(outSize);
    unsigned count = 12345;
    if (inSize == 0) {
        require(DeviceIoControl(connection.client.get(), code, in.get(), 0, out.get(), outSize,
                                &count, nullptr) == FALSE &&
                errno == 87);
        return;
    }
    const Outcome expected = enqueue(connection.driver.get(), input, inSize);
    const BOOL result =
        DeviceIoControl(connection.client.get(), code, in.get(), static_cast<unsigned>(inSize),
                        out.get(), outSize, isCounted ? &count : nullptr, nullptr);
    ++requests;
    require(result == (expected.error == 0 ? TRUE : FALSE) && errno == (result != 0 ? 0 : -1));
    in.requireUntouchedFrom(inSize);
    const std::size_t copied = result ? std::min<std::size_t>(outSize, expected.reply.size()) : 0;
    out.requireUntouchedFrom(copied);
    require(out.first(copied) == expected.reply.substr(0, copied));
    const bool isTold = result != 0 && isCounted && outSize > 0;
    require(count == (isTold ? copied : 12345));
}

/// Whatever the slots answer: every pass tries them upwards, and the first that takes the
/// connection, or fails otherwise than by being busy, ends it.
void checkSlots(Input& input) {
    const KxTest::SleeplessClock clock;
    KxTest::ScriptedKernelChannel channel;
    const std::string errors = input.bytes(input.below(64));
    std::size_t attempts = 0;
    channel.onConnect = [&](unsigned) {
        const unsigned char error =
            attempts < errors.size() ? static_cast<unsigned char>(errors[attempts]) : 0;
        ++attempts;
        return error % 3 != 0 ? EBUSY : int{error};
    };
    const auto first = input.number<unsigned>();
    int socket = 0;
    const int result = KextConnect("driver", first, socket);
    require(attempts == channel.units.size() && attempts <= errors.size() + 1);
    require((result == 0) == (socket >= 0) && result != EBUSY);
    const Descriptor owner(socket);
    unsigned next = first;
    for (const unsigned tried : channel.units) {
        require(tried == next);
        next = (tried & 0x300U) == 0x300U ? tried & ~0x300U : tried + 0x100;
    }
}

/// A driver that greets every connection with what it was told to.
class Host {
public:
    Host() : listener(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)) {
        const std::filesystem::path folder = Korvex::runTimeFolder() + "/control/driver";
        std::filesystem::create_directories(folder);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        (folder / std::to_string(unit))
            .string()
            .copy(address.sun_path, sizeof address.sun_path - 1);
        require(bind(listener.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
                listen(listener.get(), 16) == 0);
        std::thread([this] { serve(); }).detach();
    }

    std::atomic<int> greeting{-1}; ///< None: the connection is closed

private:
    void serve() {
        for (;;) {
            const Descriptor accepted(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
            const int now = greeting;
            const auto byte = static_cast<char>(now);
            if (now >= 0)
                send(accepted.get(), &byte, 1, MSG_NOSIGNAL);
        }
    }

    Descriptor listener;
};

void checkGreeting(Input& input) {
    static auto* const host = new Host;
    const int greeting = input.number<std::uint8_t>();
    const bool isSilent = input.flag();
    host->greeting = isSilent ? -1 : greeting;
    int socket = 0;
    const int result = KextConnect("driver", unit, socket);
    const Descriptor owner(socket);
    // There is no other slot.
    const int expected = isSilent ? ECONNREFUSED : greeting == Wire::busy ? ENOENT : greeting;
    require(result == expected && (result == 0) == (socket >= 0));
    require(KextConnect(input.text().c_str(), unit + 1, socket) != 0 && socket == -1);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    KxFuzz::makeOwnWorld();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::array checks{checkControl, checkCommand, checkDeviceControl, checkSlots,
                                checkGreeting};
    Input input(data, size);
    checks[input.number<std::uint8_t>() % checks.size()](input);
    return 0;
}
