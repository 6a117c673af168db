#include "fakes/kernelcontrolhost.h"

#include "platform/runtimefolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <unistd.h>

namespace KxTest {

using namespace Korvex::KernelWire;
using Korvex::Descriptor;

namespace {

/// Listens at an endpoint, reached through its folder because of the length of the path.
Descriptor listenAt(const std::string& folder, unsigned unit) {
    const Descriptor opened(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const std::string path =
        "/proc/self/fd/" + std::to_string(opened.get()) + '/' + std::to_string(unit);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    Descriptor listener(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    EXPECT_EQ(bind(listener.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0)
        << folder << ' ' << strerror(errno);
    EXPECT_EQ(listen(listener.get(), 16), 0);
    return listener;
}

} // namespace

KernelControlHost::KernelControlHost(const std::string& controlName,
                                     const std::vector<unsigned>& units, Driver driver)
    : folder(Korvex::runTimeFolder() + "/control/" + controlName), answerTo(std::move(driver)) {
    std::filesystem::create_directories(folder);
    for (unsigned unit : units)
        listeners.emplace(unit, listenAt(folder, unit));
    int ends[2] = {-1, -1};
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    stopRead.reset(ends[0]);
    stopWrite.reset(ends[1]);
    server = std::thread(&KernelControlHost::serve, this);
}

KernelControlHost::~KernelControlHost() {
    stopWrite.reset();
    server.join();
    std::filesystem::remove_all(Korvex::runTimeFolder());
}

void KernelControlHost::setBusy(unsigned unit, bool busy) {
    const std::lock_guard guard(lock);
    if (busy)
        busyUnits.insert(unit);
    else
        busyUnits.erase(unit);
}

void KernelControlHost::refuseWith(Greeting error) {
    const std::lock_guard guard(lock);
    refusal = error;
}

std::vector<unsigned> KernelControlHost::attempts() {
    const std::lock_guard guard(lock);
    return asked;
}

std::size_t KernelControlHost::connections() {
    const std::lock_guard guard(lock);
    return connected.size();
}

void KernelControlHost::serve() {
    for (;;) {
        std::vector<pollfd> polled{{stopRead.get(), POLLIN, 0}};
        for (const auto& [unit, listener] : listeners)
            polled.push_back({listener.get(), POLLIN, 0});
        {
            const std::lock_guard guard(lock);
            for (const auto& [unit, connection] : connected)
                polled.push_back({connection.get(), POLLIN, 0});
        }
        poll(polled.data(), polled.size(), -1);
        if (polled[0].revents != 0)
            return;
        for (const auto& [unit, listener] : listeners) {
            for (const pollfd& entry : polled) {
                if (entry.fd == listener.get() && entry.revents != 0)
                    accept(unit, listener.get());
            }
        }
        for (const pollfd& entry : polled) {
            const auto isIt = [&](const auto& item) { return item.second.get() == entry.fd; };
            const bool isConnection = [&] {
                const std::lock_guard guard(lock);
                return std::any_of(connected.begin(), connected.end(), isIt);
            }();
            if (!isConnection || entry.revents == 0 || answer(entry.fd))
                continue;
            const std::lock_guard guard(lock);
            std::erase_if(connected, isIt);
        }
    }
}

void KernelControlHost::accept(unsigned unit, int listener) {
    Descriptor accepted(accept4(listener, nullptr, nullptr, SOCK_CLOEXEC));
    const std::lock_guard guard(lock);
    asked.push_back(unit);
    const bool taken = connected.contains(unit) || busyUnits.contains(unit);
    const Greeting greeting = taken ? busy : refusal;
    send(accepted.get(), &greeting, sizeof greeting, MSG_NOSIGNAL);
    if (greeting == ready)
        connected.emplace(unit, std::move(accepted));
}

bool KernelControlHost::answer(int connection) {
    std::string packet(sizeof(RequestHead) + longestTransfer, '\0');
    const ssize_t got = recv(connection, packet.data(), packet.size(), 0);
    if (got < static_cast<ssize_t>(sizeof(RequestHead)))
        return false;
    RequestHead head{};
    std::memcpy(&head, packet.data(), sizeof head);
    packet.resize(static_cast<std::size_t>(got));
    Reply reply = answerTo(head.kind, head.option, packet.substr(sizeof head));
    ReplyHead replyHead{head.sequence, reply.error};
    std::array<iovec, 2> parts{
        {{&replyHead, sizeof replyHead}, {reply.bytes.data(), reply.bytes.size()}}};
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = parts.size();
    return sendmsg(connection, &message, MSG_NOSIGNAL) >= 0;
}

} // namespace KxTest
