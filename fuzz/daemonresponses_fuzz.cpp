// What the three daemon exchanges make of any response: results, outputs and messages are those of
// the bytes that came. The first byte of the input chooses the exchange; the rest is what the
// daemon answers. As root the program has a loopback interface of its own.

#include "common/input.h"
#include "common/require.h"
#include "common/room.h"

#include <KxQts/daemon/command.h>
#include <KxQts/daemon/registry.h>
#include <KxQts/daemon/session.h>

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <mutex>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

using KxFuzz::Input;
using KxFuzz::require;
using KxFuzz::Room;

namespace {

constexpr unsigned code = 6;
constexpr int noAnswer = 101;
constexpr int broken = 5;
const QString silence = QStringLiteral("nothing was said");

/// Answers every request at a port with the bytes of the moment.
class Peer {
public:
    Peer(unsigned short port, std::size_t requestSize) {
        const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const int on = 1;
        setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        require(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                listen(listener, 16) == 0);
        std::thread([this, listener, requestSize] { serve(listener, requestSize); }).detach();
    }

    void answerWith(std::string bytes) {
        const std::lock_guard guard(lock);
        response = std::move(bytes);
    }

private:
    void serve(int listener, std::size_t requestSize) {
        for (std::string request(requestSize, '\0');;) {
            const int accepted = accept(listener, nullptr, nullptr);
            recv(accepted, request.data(), request.size(), MSG_WAITALL);
            const std::lock_guard guard(lock);
            send(accepted, response.data(), response.size(), MSG_NOSIGNAL);
            close(accepted);
        }
    }

    std::mutex lock;
    std::string response;
};

/// The first numbers of a response; zeros where it is too short.
template <std::size_t Count>
std::array<unsigned, Count> numbersIn(const std::string& response) {
    std::array<unsigned, Count> numbers{};
    std::memcpy(numbers.data(), response.data(), std::min(response.size(), sizeof numbers));
    return numbers;
}

/// What a message must be when the answer was one.
void requireMessage(const QString& message, unsigned echo, unsigned status) {
    if (echo != code)
        require(message.startsWith(QLatin1String("getData failed(")));
    else
        require(message == (status == 0 ? silence : QStringLiteral("(status =%1)").arg(status)));
}

void generalExchange(const std::string& response, unsigned room) {
    static auto* const peer = new Peer(12315, 24);
    constexpr std::size_t head = 12;
    peer->answerWith(response);
    Room<unsigned char> out(room);
    unsigned size = room;
    const int result = daemonSession(12315, code, 1, nullptr, 0, nullptr, 0, out.get(), &size);
    const auto [echo, status, length] = numbersIn<3>(response);
    const std::size_t received = std::min(response.size(), sizeof(Korvex::wdaemon_response));
    const bool isWhole = received >= head && echo == code && length == received - head;
    const bool isAnswered = !response.empty();
    require(result == (isWhole ? static_cast<int>(status) : isAnswered ? broken : noAnswer));
    const bool isTaken = isWhole && status == 0;
    require(size == (isTaken ? std::min(length, room) : room));
    require(!isTaken || std::memcmp(out.get(), response.data() + head, size) == 0);
    out.requireUntouchedFrom(isTaken ? size : 0);
}

void commandExchange(const std::string& response) {
    static auto* const peer = new Peer(12316, 2068);
    peer->answerWith(response);
    QString message = silence;
    const int result = CallDaemonSession(code, 1, nullptr, nullptr, 0, &message);
    const auto [echo, status] = numbersIn<2>(response);
    if (response.empty())
        return require(result == noAnswer && message.startsWith(QLatin1String("getData failed(")));
    require(result == (echo == code ? static_cast<int>(status) : 0));
    requireMessage(message, echo, status);
}

/// Long payloads take long and tell nothing new: lengths are short, negative or over the limit.
std::string withShortLength(std::string response) {
    constexpr std::size_t place = offsetof(_D_REG_RESPONSE, payloadLength);
    if (unsigned length = 0; response.size() >= place + sizeof length) {
        std::memcpy(&length, response.data() + place, sizeof length);
        length &= 0x8800FFFFU;
        std::memcpy(response.data() + place, &length, sizeof length);
    }
    return response;
}

void registryExchange(const std::string& toSend) {
    static auto* const peer = new Peer(12317, 2332);
    constexpr std::size_t head = sizeof(_D_REG_RESPONSE);
    const std::string response = withShortLength(toSend);
    peer->answerWith(response);
    _D_REG_REQUEST request{};
    request.command = code;
    _D_REG_RESPONSE received{};
    char* payload = nullptr;
    QString message = silence;
    const int result = CallDaemonRegistrySession(request, received, 1, payload, nullptr, &message);
    const std::unique_ptr<char[]> owner(payload);
    if (response.empty())
        return require(result == noAnswer && !payload);
    const auto numbers = numbersIn<7>(response);
    require(std::memcmp(&received, numbers.data(), head) == 0);
    const int length = received.payloadLength;
    const bool hasPayload = received.status == 0 && length > 0;
    constexpr int noMemory = 28680;
    if (hasPayload && length > Korvex::ZRDaemonRegistrySocket::longestPayload)
        return require(result == noMemory && !payload);
    require((payload != nullptr) == hasPayload);
    require(result == (numbers[0] == code ? static_cast<int>(received.status) : 0));
    requireMessage(message, numbers[0], received.status);
    if (!payload)
        return;
    // What did not come is zero.
    const std::string came = response.size() > head
                                 ? response.substr(head, static_cast<std::size_t>(length))
                                 : std::string();
    require(std::memcmp(payload, came.data(), came.size()) == 0);
    require(std::all_of(payload + came.size(), payload + length,
                        [](char byte) { return byte == '\0'; }));
}

void takeOwnLoopback() {
    if (unshare(CLONE_NEWNET) != 0)
        return;
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request{};
    std::strcpy(request.ifr_name, "lo");
    request.ifr_flags = IFF_UP;
    ioctl(descriptor, SIOCSIFFLAGS, &request);
    close(descriptor);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    takeOwnLoopback();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const unsigned exchange = input.number<std::uint8_t>();
    const std::string response = input.rest();
    if (exchange % 3 == 0)
        generalExchange(response, exchange);
    else if (exchange % 3 == 1)
        commandExchange(response);
    else
        registryExchange(response);
    return 0;
}
