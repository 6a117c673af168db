#include "platform/kernelchannel.h"

#include "platform/descriptor.h"
#include "platform/linux/kernelchannelwire.h"
#include "platform/replaceable.h"
#include "platform/runtimefolder.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <new>
#include <string>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <sys/un.h>

namespace Korvex {

namespace {

using namespace KernelWire;

constexpr timeval greetingTime{10, 0};

int makeSocket() {
    return socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
}

/// Repeats a call that a signal has interrupted.
template <class Call>
ssize_t untilDone(Call call) {
    ssize_t result = 0;
    do {
        result = call();
    } while (result < 0 && errno == EINTR);
    return result;
}

int failWith(int error) {
    errno = error;
    return -1;
}

/// Waits for what the driver says to a new connection. \return 0, or −1 with `errno`.
int awaitGreeting(int socket) {
    setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &greetingTime, sizeof greetingTime);
    Greeting greeting = ready;
    const ssize_t got = untilDone([&] { return recv(socket, &greeting, sizeof greeting, 0); });
    if (got < 0)
        return failWith(errno == EAGAIN ? ETIMEDOUT : errno);
    if (got == 0)
        return failWith(ECONNREFUSED);
    const timeval unlimited{};
    setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &unlimited, sizeof unlimited);
    return greeting == ready ? 0 : failWith(greeting);
}

class LinuxControl final : public KernelControl {
public:
    explicit LinuxControl(Descriptor controlFolder) : folder(std::move(controlFolder)) {}

    int connect(int socket, unsigned unit) override {
        // A socket that a driver has refused cannot be connected again, so each attempt has its
        // own.
        const Descriptor attempt(makeSocket());
        if (!attempt.isOpen() || connectTo(attempt.get(), unit) != 0 ||
            awaitGreeting(attempt.get()) != 0)
            return -1;
        return dup3(attempt.get(), socket, O_CLOEXEC) < 0 ? -1 : 0;
    }

private:
    [[nodiscard]] int connectTo(int socket, unsigned unit) const {
        // Through the descriptor: with a long control name the whole path would not fit.
        const std::string path =
            "/proc/self/fd/" + std::to_string(folder.get()) + '/' + std::to_string(unit);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        return ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    }

    Descriptor folder;
};

/// The locks of connections. Requests on one follow each other, so that each gets its own reply;
/// those on others never wait for it, for a driver may answer the one only after the other. A lock
/// is kept for the next connection of the same number.
class ConnectionLocks {
public:
    /// \return Null when there is no memory.
    std::mutex* of(int socket) {
        const std::lock_guard held(guard);
        try {
            return &locks[socket];
        } catch (const std::bad_alloc&) {
            return nullptr;
        }
    }

private:
    std::mutex guard;
    std::map<int, std::mutex> locks;
};

ConnectionLocks& connectionLocks() {
    static auto* const locks = new ConnectionLocks; // threads that outlive main may still use them
    return *locks;
}

/// Nobody would answer on what is no connection to a driver. \return 0, or −1 with `errno`.
int checkConnection(int socket) {
    int type = 0;
    socklen_t size = sizeof type;
    if (getsockopt(socket, SOL_SOCKET, SO_TYPE, &type, &size) != 0)
        return -1;
    return type == SOCK_SEQPACKET ? 0 : failWith(ENOPROTOOPT);
}

int sendRequest(int socket, const RequestHead& head, const void* value, std::size_t size) {
    std::array<iovec, 2> parts{
        {{const_cast<RequestHead*>(&head), sizeof head}, {const_cast<void*>(value), size}}};
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = parts.size();
    return untilDone([&] { return sendmsg(socket, &message, MSG_NOSIGNAL); }) < 0 ? -1 : 0;
}

/// Receives the reply to one request; replies to earlier ones, whose senders were terminated, are
/// passed over. \return 0, or −1 with `errno`.
int receiveReply(int socket, unsigned sequence, void* value, unsigned* size) {
    const std::size_t room = size ? *size : 0;
    ReplyHead head{};
    std::array<iovec, 2> parts{{{&head, sizeof head}, {value, room}}};
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = parts.size();
    do {
        const ssize_t got = untilDone([&] { return recvmsg(socket, &message, 0); });
        if (got <= 0)
            return got < 0 ? -1 : failWith(ECONNRESET);
        if (static_cast<std::size_t>(got) < sizeof head)
            return failWith(EPROTO);
        if (size)
            *size = static_cast<unsigned>(static_cast<std::size_t>(got) - sizeof head);
    } while (head.sequence != sequence);
    return head.error == 0 ? 0 : failWith(head.error);
}

int transfer(int socket, Kind kind, unsigned option, void* value, unsigned* size) {
    static std::atomic<std::uint32_t> sequences{0};
    const RequestHead head{kind, option, ++sequences};
    if (checkConnection(socket) != 0)
        return -1;
    std::mutex* const lock = connectionLocks().of(socket);
    if (!lock)
        return failWith(ENOMEM);
    const std::lock_guard guard(*lock);
    if (sendRequest(socket, head, value, size ? *size : 0) != 0)
        return -1;
    return receiveReply(socket, head.sequence, value, size);
}

class LinuxKernelChannel final : public KernelChannel {
public:
    int open() override { return makeSocket(); }

    std::unique_ptr<KernelControl> find(int, const char* name) override {
        if (*name == '\0' || *name == '.' || std::strchr(name, '/')) {
            errno = ENOENT;
            return nullptr;
        }
        const std::string path = runTimeFolder() + "/control/" + name;
        Descriptor folder(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        return folder.isOpen() ? std::make_unique<LinuxControl>(std::move(folder)) : nullptr;
    }

    int exchange(int socket, unsigned option, void* value, unsigned* size) override {
        if (!value || !size)
            return failWith(EFAULT);
        if (*size > longestTransfer)
            return failWith(EMSGSIZE);
        return transfer(socket, Kind::Exchange, option, value, size);
    }

    int command(int socket, unsigned number) override {
        std::uint32_t value = 0;
        unsigned size = sizeof value;
        return transfer(socket, Kind::Command, number, &value, &size);
    }
};

} // namespace

KernelChannel& kernelChannel() {
    static LinuxKernelChannel channel;
    return inForce<KernelChannel>(channel);
}

} // namespace Korvex
