#include <KxQts/daemon/kernelcontrol.h>
#include <KxQts/winapi/kernelcontrol.h>

#include "fakes/kernelcontrolhost.h"
#include "fakes/scriptedkernelchannel.h"
#include "fakes/sleeplessclock.h"
#include "platform/descriptor.h"
#include "platform/runtimefolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <sys/socket.h>
#include <sys/time.h>
#include <thread>

using Korvex::Descriptor;
using Korvex::KernelWire::Kind;
using Korvex::KernelWire::ReplyHead;
using Korvex::KernelWire::RequestHead;
using KxTest::KernelControlHost;
using KxTest::ScriptedKernelChannel;
using KxTest::SleeplessClock;
using Reply = KernelControlHost::Reply;

namespace {

constexpr const char* name = "com.example.control";

/// Sends back what it gets, behind the option number.
Reply echo(Kind kind, unsigned option, const std::string& request) {
    return {0, (kind == Kind::Command ? "command " : "") + std::to_string(option) + ':' + request};
}

Descriptor connectTo(unsigned unit) {
    int socket = -1;
    EXPECT_EQ(KextConnect(name, unit, socket), 0);
    return Descriptor(socket);
}

std::vector<unsigned> operator*(std::vector<unsigned> values, int times) {
    std::vector<unsigned> all;
    for (int i = 0; i < times; ++i)
        all.insert(all.end(), values.begin(), values.end());
    return all;
}

} // namespace

TEST(KextConnect, NeedsAName) {
    int socket = 5;
    EXPECT_EQ(KextConnect(nullptr, 1, socket), 22);
    EXPECT_EQ(socket, -1);
}

TEST(KextConnect, FailsWhereNoSocketCanBeMade) {
    ScriptedKernelChannel channel;
    channel.openError = 24;
    int socket = 5;
    EXPECT_EQ(KextConnect(name, 1, socket), 24);
    EXPECT_EQ(socket, -1);
    EXPECT_TRUE(channel.names.empty());
}

TEST(KextConnect, FailsForAnUnknownName) {
    ScriptedKernelChannel channel;
    channel.findError = 2;
    int socket = 5;
    EXPECT_EQ(KextConnect(name, 1, socket), 2);
    EXPECT_EQ(socket, -1);
    EXPECT_TRUE(channel.units.empty());
}

TEST(KextConnect, LooksUpNinetySixCharactersOfTheName) {
    ScriptedKernelChannel channel;
    int socket = -1;
    EXPECT_EQ(KextConnect(std::string(200, 'n').c_str(), 1, socket), 0);
    const Descriptor owner(socket);
    EXPECT_EQ(channel.names, std::vector{std::string(96, 'n')});
}

TEST(KextConnect, SuccessLeavesZeroInErrno) {
    ScriptedKernelChannel channel;
    int socket = -1;
    errno = 7;
    EXPECT_EQ(KextConnect(name, 0xFFFFFC05, socket), 0);
    EXPECT_EQ(errno, 0);
    const Descriptor owner(socket);
    EXPECT_TRUE(owner.isOpen());
    EXPECT_EQ(channel.units, std::vector{0xFFFFFC05u});
}

TEST(KextConnect, TakesTheFirstFreeSlot) {
    ScriptedKernelChannel channel;
    const SleeplessClock clock;
    channel.onConnect = [](unsigned unit) { return unit == 0x205 ? 0 : EBUSY; };
    int socket = -1;
    EXPECT_EQ(KextConnect(name, 5, socket), 0);
    const Descriptor owner(socket);
    EXPECT_EQ(channel.units, (std::vector{0x005u, 0x105u, 0x205u}));
}

TEST(KextConnect, LaterPassesStartFromTheFirstSlot) {
    ScriptedKernelChannel channel;
    SleeplessClock clock;
    channel.onConnect = [&](unsigned) { return channel.units.size() < 10 ? EBUSY : 0; };
    int socket = -1;
    EXPECT_EQ(KextConnect(name, 0x105, socket), 0);
    const Descriptor owner(socket);
    EXPECT_EQ(channel.units, (std::vector{0x105u, 0x205u, 0x305u, 0x005u, 0x105u, 0x205u, 0x305u,
                                          0x005u, 0x105u, 0x205u}));
    EXPECT_EQ(clock.sleeps(), std::vector(2, std::chrono::microseconds(100'000)));
}

TEST(KextConnect, GivesUpAfterThreeHundredPasses) {
    ScriptedKernelChannel channel;
    SleeplessClock clock;
    channel.onConnect = [](unsigned) { return EBUSY; };
    int socket = 5;
    EXPECT_EQ(KextConnect(name, 7, socket), 16);
    EXPECT_EQ(socket, -1);
    EXPECT_EQ(channel.units, (std::vector{0x007u, 0x107u, 0x207u, 0x307u} * 300));
    EXPECT_EQ(clock.sleeps().size(), 299u);
}

TEST(KextConnect, OtherFailuresEndItAtOnce) {
    ScriptedKernelChannel channel;
    channel.onConnect = [](unsigned unit) { return unit == 0x105 ? 13 : EBUSY; };
    int socket = 5;
    EXPECT_EQ(KextConnect(name, 5, socket), 13);
    EXPECT_EQ(socket, -1);
    EXPECT_EQ(channel.units, (std::vector{0x005u, 0x105u}));
}

TEST(KextConnect, AFailureWithoutANumberIsSuccess) {
    ScriptedKernelChannel channel;
    channel.onConnect = [](unsigned) { return ScriptedKernelChannel::failsWithoutError; };
    int socket = -1;
    EXPECT_EQ(KextConnect(name, 5, socket), 0);
    const Descriptor owner(socket);
    EXPECT_TRUE(owner.isOpen());
}

TEST(KernelChannel, ConnectsToTheFreeSlotOfARealHost) {
    KernelControlHost host(name, {0x005, 0x105, 0x205, 0x305}, echo);
    host.setBusy(0x005, true);
    const Descriptor first = connectTo(5);
    const Descriptor second = connectTo(5);
    EXPECT_EQ(host.attempts(), (std::vector{0x005u, 0x105u, 0x005u, 0x105u, 0x205u}));
    EXPECT_EQ(host.connections(), 2u);
    EXPECT_EQ(fcntl(first.get(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST(KernelChannel, ASlotThatComesFreeIsTakenInALaterPass) {
    KernelControlHost host(name, {0x005, 0x105, 0x205, 0x305}, echo);
    for (unsigned unit : {0x005u, 0x105u, 0x205u, 0x305u})
        host.setBusy(unit, true);
    SleeplessClock clock;
    clock.onSleep = [&] { host.setBusy(0x205, false); };
    const Descriptor socket = connectTo(0x305);
    EXPECT_EQ(host.attempts(), (std::vector{0x305u, 0x005u, 0x105u, 0x205u}));
}

TEST(KernelChannel, UnknownNamesUnitsAndDeadHosts) {
    int socket = 5;
    EXPECT_EQ(KextConnect(name, 5, socket), 2);
    {
        const KernelControlHost host(name, {6}, echo);
        EXPECT_EQ(KextConnect(name, 5, socket), 2);
        EXPECT_EQ(KextConnect("com.example", 6, socket), 2);
        for (const char* other : {"", ".", "..", ".hidden", "../control/com.example.control",
                                  "/com.example.control", "com.example.control/"})
            EXPECT_EQ(KextConnect(other, 6, socket), 2) << other;
        EXPECT_EQ(socket, -1);
        const std::ofstream stale(Korvex::runTimeFolder() + "/control/" + name + "/9");
        EXPECT_EQ(KextConnect(name, 9, socket), ECONNREFUSED);
    }
}

TEST(KernelChannel, ADriverMayRefuseWithAnyError) {
    KernelControlHost host(name, {5}, echo);
    host.refuseWith(EPERM);
    int socket = 5;
    EXPECT_EQ(KextConnect(name, 5, socket), EPERM);
    EXPECT_EQ(socket, -1);
    host.refuseWith(0);
    EXPECT_EQ(KextConnect(name, 5, socket), 0) << "nothing is left of the refusals";
    close(socket);
}

TEST(KernelChannel, TheLongestNameCanBeReached) {
    const std::string longest(96, 'x');
    const KernelControlHost host(longest, {0xFFFFFFFF}, echo);
    int socket = -1;
    EXPECT_EQ(KextConnect(longest.c_str(), 0xFFFFFFFF, socket), 0);
    close(socket);
}

TEST(KextControl, ExchangesRequestAndReplyInOneBuffer) {
    const KernelControlHost host(name, {5}, echo);
    const Descriptor socket = connectTo(5);
    std::array<char, 32> buffer{'a', 'b', 'c'};
    unsigned size = 3;
    EXPECT_EQ(KextControl(socket.get(), 12, buffer.data(), &size), 0);
    EXPECT_EQ(size, 3u) << "as much as there was room";
    EXPECT_EQ(std::string(buffer.data()), "12:");
    size = buffer.size();
    EXPECT_EQ(KextControl(socket.get(), 7, buffer.data(), &size), 0);
    EXPECT_EQ(std::string(buffer.data(), 5), "7:12:");
}

TEST(KextControl, FailsAsTheDriverSays) {
    const KernelControlHost host(name, {5}, [](Kind, unsigned option, const std::string&) {
        return Reply{static_cast<int>(option), "partly"};
    });
    const Descriptor socket = connectTo(5);
    char value = 0;
    unsigned size = 1;
    EXPECT_EQ(KextControl(socket.get(), 34, &value, &size), -1);
    EXPECT_EQ(errno, 34);
    EXPECT_EQ(KextCommand(socket.get(), 35), -1);
    EXPECT_EQ(errno, 35);
}

TEST(KextControl, FailsWithoutAHost) {
    auto host = std::make_unique<KernelControlHost>(name, std::vector{5u}, echo);
    const Descriptor socket = connectTo(5);
    host.reset();
    char value = 0;
    unsigned size = 1;
    EXPECT_EQ(KextControl(socket.get(), 1, &value, &size), -1);
    EXPECT_TRUE(errno == ECONNRESET || errno == EPIPE) << errno;
    EXPECT_EQ(KextControl(-1, 1, &value, &size), -1);
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(KextControl(socket.get(), 1, nullptr, &size), -1);
    EXPECT_EQ(KextControl(socket.get(), 1, &value, nullptr), -1);
}

TEST(KextControl, FailsAtOnceOnWhatIsNoConnectionToADriver) {
    int pair[2] = {-1, -1};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair), 0);
    const Descriptor one(pair[0]);
    const Descriptor other(pair[1]);
    char value = 0;
    unsigned size = 1;
    EXPECT_EQ(KextControl(one.get(), 1, &value, &size), -1);
    EXPECT_EQ(errno, ENOPROTOOPT);
    EXPECT_EQ(KextCommand(one.get(), 1), -1);
    EXPECT_FALSE(DeviceIoControl(one.get(), 1, &value, 1, nullptr, 0, nullptr, nullptr));
    EXPECT_EQ(errno, -1);
    const Descriptor file(open("/dev/null", O_RDWR | O_CLOEXEC));
    EXPECT_EQ(KextCommand(file.get(), 1), -1);
    EXPECT_EQ(errno, ENOTSOCK);
}

TEST(KextControl, LongTransfersAndTheirLimit) {
    const KernelControlHost host(name, {5}, [](Kind, unsigned, const std::string& request) {
        return Reply{0, request};
    });
    const Descriptor socket = connectTo(5);
    std::string buffer(131'072, 'x');
    auto size = static_cast<unsigned>(buffer.size());
    EXPECT_EQ(KextControl(socket.get(), 1, buffer.data(), &size), 0);
    EXPECT_EQ(size, buffer.size());
    ++size;
    EXPECT_EQ(KextControl(socket.get(), 1, buffer.data(), &size), -1);
    EXPECT_EQ(errno, EMSGSIZE);
}

TEST(KextControl, ThreadsOnOneConnectionGetTheirOwnReplies) {
    const KernelControlHost host(name, {5}, echo);
    const Descriptor socket = connectTo(5);
    std::vector<std::thread> threads;
    for (unsigned option = 1; option <= 4; ++option)
        threads.emplace_back([&, option] {
            for (int i = 0; i < 200; ++i) {
                std::array<char, 16> buffer{};
                unsigned size = buffer.size();
                ASSERT_EQ(KextControl(socket.get(), option, buffer.data(), &size), 0);
                ASSERT_EQ(std::string(buffer.data(), 2), std::to_string(option) + ":");
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST(KextControl, ConnectionsDoNotWaitForEachOther) {
    // Many of them, so that none shares anything with the first by its number either.
    constexpr std::size_t count = 70;
    std::vector<std::pair<Descriptor, Descriptor>> ends;
    for (std::size_t i = 0; i < count; ++i) {
        int pair[2] = {-1, -1};
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, pair), 0);
        ends.emplace_back(pair[0], pair[1]);
    }
    std::vector<std::thread> callers;
    for (const auto& [client, driver] : ends)
        callers.emplace_back([&client = client] { EXPECT_EQ(KextCommand(client.get(), 7), 0); });
    std::vector<RequestHead> requests;
    for (auto& [client, driver] : ends) {
        const timeval patience{20, 0};
        RequestHead request{};
        setsockopt(driver.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        if (recv(driver.get(), &request, sizeof request, 0) > 0)
            requests.push_back(request);
        else
            break;
    }
    EXPECT_EQ(requests.size(), count) << "all ask before any is answered";
    for (std::size_t i = 0; i < count; ++i) {
        const ReplyHead reply{i < requests.size() ? requests[i].sequence : 0, 0};
        send(ends[i].second.get(), &reply, sizeof reply, MSG_NOSIGNAL);
        ends[i].second.reset();
    }
    for (std::thread& caller : callers)
        caller.join();
}

TEST(KextCommand, SendsTheNumberAndFourZeroBytes) {
    std::vector<std::string> received;
    {
        const KernelControlHost host(
            name, {5}, [&](Kind kind, unsigned option, const std::string& request) {
                received.push_back((kind == Kind::Command ? "command " : "exchange ") +
                                   std::to_string(option) + ' ' + std::to_string(request.size()));
                EXPECT_EQ(request, std::string(4, '\0'));
                return Reply{};
            });
        const Descriptor socket = connectTo(5);
        EXPECT_EQ(KextCommand(socket.get(), 77), 0);
    }
    EXPECT_EQ(received, std::vector<std::string>{"command 77 4"});
}

TEST(DeviceIoControl, NeedsARequest) {
    char buffer = 0;
    unsigned returned = 99;
    for (const auto& [in, size] : {std::pair<void*, unsigned>{nullptr, 1}, {&buffer, 0}}) {
        errno = 0;
        EXPECT_FALSE(DeviceIoControl(-1, 1, in, size, &buffer, 1, &returned, nullptr));
        EXPECT_EQ(errno, 87);
    }
    EXPECT_EQ(returned, 99u);
}

TEST(DeviceIoControl, CopiesTheReplyAsFarAsItFits) {
    const KernelControlHost host(name, {5}, echo);
    const Descriptor socket = connectTo(5);
    std::array<char, 8> in{'i', 'n', 'p', 'u', 't'};
    std::array<char, 4> out{'-', '-', '-', '-'};
    unsigned returned = 99;
    errno = 5;
    EXPECT_TRUE(DeviceIoControl(socket.get(), 3, in.data(), 8, out.data(), 3, &returned, nullptr));
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(returned, 3u);
    EXPECT_EQ(out, (std::array<char, 4>{'3', ':', 'i', '-'}));
    EXPECT_EQ(std::string(in.data(), 7), "3:input") << "the reply is in the in-buffer too";
}

TEST(DeviceIoControl, ALongReplyIsCutToTheInBuffer) {
    const KernelControlHost host(name, {5}, echo);
    const Descriptor socket = connectTo(5);
    std::array<char, 4> in{'w', 'x', 'y', 'z'};
    std::array<char, 16> out{};
    unsigned returned = 99;
    EXPECT_TRUE(DeviceIoControl(socket.get(), 3, in.data(), 4, out.data(), 16, &returned, nullptr));
    EXPECT_EQ(returned, 4u);
    EXPECT_EQ(std::string(out.data()), "3:wx");
    EXPECT_TRUE(DeviceIoControl(socket.get(), 3, in.data(), 4, out.data(), 16, nullptr, nullptr));
}

TEST(DeviceIoControl, WithoutOutputTheReplyStaysInTheInBuffer) {
    const KernelControlHost host(name, {5}, echo);
    const Descriptor socket = connectTo(5);
    std::array<char, 4> in{'w', 'x', 'y', 'z'};
    unsigned returned = 99;
    EXPECT_TRUE(DeviceIoControl(socket.get(), 3, in.data(), 4, nullptr, 4, &returned, nullptr));
    EXPECT_EQ(in, (std::array<char, 4>{'3', ':', 'w', 'x'}));
    EXPECT_EQ(returned, 99u);
    EXPECT_TRUE(DeviceIoControl(socket.get(), 4, in.data(), 4, in.data(), 0, &returned, nullptr));
    EXPECT_EQ(in, (std::array<char, 4>{'4', ':', '3', ':'}));
    EXPECT_EQ(returned, 99u);
}

TEST(DeviceIoControl, AFailedExchangeLeavesItsResultInErrno) {
    char in = 0;
    unsigned returned = 99;
    EXPECT_FALSE(DeviceIoControl(-1, 3, &in, 1, &in, 1, &returned, nullptr));
    EXPECT_EQ(errno, -1);
    EXPECT_EQ(returned, 99u);
}
