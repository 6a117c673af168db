// What the three daemon exchanges make of any response. The first byte of the input chooses the
// exchange; the rest is what the daemon answers. As root the program has a loopback interface of
// its own.

#include <KxQts/daemon/command.h>
#include <KxQts/daemon/registry.h>
#include <KxQts/daemon/session.h>

#include <algorithm>
#include <arpa/inet.h>
#include <cstdint>
#include <cstdlib>
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

namespace {

constexpr unsigned code = 6;

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
        if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            listen(listener, 16) != 0)
            std::abort();
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

void require(bool condition) {
    if (!condition)
        std::abort();
}

void generalExchange(Peer& peer, const std::string& response) {
    peer.answerWith(response);
    unsigned char out[64];
    unsigned size = sizeof out;
    const int result = daemonSession(12315, code, 1, nullptr, 0, nullptr, 0, out, &size);
    require(size <= sizeof out);
    require(result != 0 || response.size() >= 12);
}

void commandExchange(Peer& peer, const std::string& response) {
    peer.answerWith(response);
    QString message;
    (void)CallDaemonSession(code, 1, nullptr, nullptr, 0, &message);
}

void registryExchange(Peer& peer, const std::string& response) {
    peer.answerWith(response);
    _D_REG_REQUEST request{};
    request.command = code;
    _D_REG_RESPONSE received{};
    char* payload = nullptr;
    QString message;
    (void)CallDaemonRegistrySession(request, received, 1, payload, nullptr, &message);
    const std::unique_ptr<char[]> owner(payload);
    // All of the payload must be readable.
    if (payload)
        require(std::count(payload, payload + received.payloadLength, 'x') <=
                received.payloadLength);
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
    static auto* const general = new Peer(12315, 24);
    static auto* const command = new Peer(12316, 2068);
    static auto* const registry = new Peer(12317, 2332);
    if (size == 0)
        return 0;
    const std::string response(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 3) {
    case 0:
        generalExchange(*general, response);
        break;
    case 1:
        commandExchange(*command, response);
        break;
    default:
        registryExchange(*registry, response);
        break;
    }
    return 0;
}
