#include <KxQts/daemon/session.h>

#include "daemon/loopback.h"
#include "daemon/moment.h"
#include "fakes/peer.h"
#include "fakes/sleeplessclock.h"

#include <QHostAddress>
#include <QTcpSocket>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <future>
#include <mutex>
#include <thread>

using KxTest::Connection;
using KxTest::DeafPeer;
using KxTest::Peer;
using KxTest::words;

namespace {

constexpr std::size_t requestHead = 24;

void doNothing(Connection& connection) {
    connection.readToEnd();
}

/// A peer that answers every request without payload with the same bytes.
Peer answering(const std::string& response) {
    return {0, [response](Connection& connection) {
                connection.read(requestHead);
                connection.write(response);
                connection.readToEnd();
            }};
}

int sessionWith(const Peer& peer, unsigned cmd, unsigned char* out = nullptr,
                unsigned* outLen = nullptr) {
    return daemonSession(peer.port(), cmd, 5, nullptr, 0, nullptr, 0, out, outLen);
}

/// A port that nobody listens at.
unsigned short freePort() {
    return Peer(0, doNothing).port();
}

} // namespace

TEST(DaemonSession, SendsTheCommandTheParametersAndThePayload) {
    std::promise<std::string> request;
    const Peer peer(0, [&](Connection& connection) {
        const std::string bytes = connection.read(requestHead + 3);
        connection.write(words({9, 0, 0}));
        request.set_value(bytes + connection.readToEnd());
    });
    const unsigned parameters[] = {1, 0xFFFFFFFF, 3};
    const unsigned char payload[] = {'a', 0, 'b'};
    EXPECT_EQ(daemonSession(peer.port(), 9, 5, parameters, 3, payload, 3, nullptr, nullptr), 0);
    EXPECT_EQ(request.get_future().get(),
              words({9, 1, 0xFFFFFFFF, 3, 0, 3}) + std::string("a\0b", 3));
}

TEST(DaemonSession, WithoutDataTheLengthIsZeroWhateverTheCallerSays) {
    std::promise<std::string> request;
    const Peer peer(0, [&](Connection& connection) {
        const std::string bytes = connection.read(requestHead);
        connection.write(words({9, 0, 0}));
        request.set_value(bytes + connection.readToEnd());
    });
    EXPECT_EQ(daemonSession(peer.port(), 9, 5, nullptr, 77, nullptr, 5000, nullptr, nullptr), 0);
    EXPECT_EQ(request.get_future().get(), words({9, 0, 0, 0, 0, 0}));
}

TEST(DaemonSession, GivesTheDaemonsStatusAndData) {
    const Peer peer = answering(words({4, 0, 3}) + "xyz");
    std::array<unsigned char, 8> out{};
    unsigned size = out.size();
    EXPECT_EQ(sessionWith(peer, 4, out.data(), &size), 0);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(out, (std::array<unsigned char, 8>{'x', 'y', 'z'}));
}

TEST(DaemonSession, CopiesNoMoreDataThanThereIsRoom) {
    const Peer peer = answering(words({4, 0, 3}) + "xyz");
    std::array<unsigned char, 3> out{'-', '-', '-'};
    unsigned size = 2;
    EXPECT_EQ(sessionWith(peer, 4, out.data(), &size), 0);
    EXPECT_EQ(size, 2u);
    EXPECT_EQ(out, (std::array<unsigned char, 3>{'x', 'y', '-'}));
}

TEST(DaemonSession, CopiesNothingWithoutBothOutputs) {
    const Peer peer = answering(words({4, 0, 3}) + "xyz");
    std::array<unsigned char, 3> out{'-', '-', '-'};
    unsigned size = 2;
    EXPECT_EQ(sessionWith(peer, 4, out.data(), nullptr), 0);
    EXPECT_EQ(sessionWith(peer, 4, nullptr, &size), 0);
    EXPECT_EQ(size, 2u);
    EXPECT_EQ(out[0], '-');
}

TEST(DaemonSession, AFailedStatusComesWithoutData) {
    const Peer peer = answering(words({4, 13, 3}) + "xyz");
    std::array<unsigned char, 3> out{'-', '-', '-'};
    unsigned size = 3;
    EXPECT_EQ(sessionWith(peer, 4, out.data(), &size), 13);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(out[0], '-');
}

TEST(DaemonSession, AResponseMayBeAsLongAsItsBuffer) {
    const Peer peer = answering(words({4, 0, 1024}) + std::string(1024, 'd'));
    std::array<unsigned char, 2000> out{};
    unsigned size = out.size();
    EXPECT_EQ(sessionWith(peer, 4, out.data(), &size), 0);
    EXPECT_EQ(size, 1024u);
}

TEST(DaemonSession, ResponsesThatAreNoAnswerFail) {
    const std::string tooShort = words({4, 0, 0}).substr(0, 11);
    const std::string tooLong = words({4, 0, 1025}) + std::string(1025, 'd');
    const std::string lengthThatWraps = words({4, 0, 0xFFFFFFF4});
    for (const std::string& response :
         {tooShort, tooLong, lengthThatWraps, words({4, 0, 1}), words({4, 0, 0}) + "x",
          words({5, 0, 0}), words({4, 7, 2}) + "x"}) {
        const Peer peer = answering(response);
        EXPECT_EQ(sessionWith(peer, 4), 5) << response.size();
    }
}

TEST(DaemonSession, ReadsOnceAndWaitsForNoRest) {
    std::promise<void> finished;
    const Peer peer(0, [&](Connection& connection) {
        connection.read(requestHead);
        connection.write(words({4, 0}));
        finished.get_future().wait();
    });
    EXPECT_EQ(sessionWith(peer, 4), 5);
    finished.set_value();
}

TEST(DaemonSession, TakesAResponseThatIsSentInTwoPieces) {
    const Peer peer(0, [](Connection& connection) {
        connection.read(requestHead);
        connection.write(words({4, 0, 3}));
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        connection.write("xyz");
        connection.readToEnd();
    });
    const KxTest::Moment enough(60'000);
    EXPECT_EQ(sessionWith(peer, 4), 0);
}

TEST(DaemonSession, NobodyListening) {
    EXPECT_EQ(daemonSession(freePort(), 4, 1, nullptr, 0, nullptr, 0, nullptr, nullptr), 57);
}

TEST(DaemonSession, ASilentDaemonTimesOutAfterOneSecondWhenZeroIsAsked) {
    const Peer peer(0, doNothing);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(daemonSession(peer.port(), 4, 0, nullptr, 0, nullptr, 0, nullptr, nullptr), 101);
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::milliseconds(990));
    EXPECT_LT(waited, std::chrono::seconds(10));
}

TEST(DaemonSession, ADaemonThatClosesAtOnceIsNoAnswerInTime) {
    const Peer peer(0, [](Connection&) {});
    const auto start = std::chrono::steady_clock::now();
    const int result = daemonSession(peer.port(), 4, 60, nullptr, 0, nullptr, 0, nullptr, nullptr);
    EXPECT_TRUE(result == 101 || result == 5) << result; // 5 when it broke while sending
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

TEST(DaemonSession, BadArgumentsFailAfterTheConnectionIsMade) {
    std::promise<std::string> received;
    const Peer peer(0, [&](Connection& connection) { received.set_value(connection.readToEnd()); });
    const unsigned parameters[5] = {};
    EXPECT_EQ(daemonSession(peer.port(), 4, 1, parameters, 5, nullptr, 0, nullptr, nullptr), 22);
    EXPECT_EQ(received.get_future().get(), "");
}

TEST(DaemonSession, SessionsOfManyThreadsDoNotWaitForEachOther) {
    std::promise<void> second;
    const Peer held(0, [&](Connection& connection) {
        connection.read(requestHead);
        second.get_future().wait();
        connection.write(words({1, 0, 0}));
        connection.readToEnd();
    });
    const Peer other = answering(words({2, 0, 0}));
    auto waiting = std::async(std::launch::async, [&] { return sessionWith(held, 1); });
    EXPECT_EQ(sessionWith(other, 2), 0);
    second.set_value();
    EXPECT_EQ(waiting.get(), 0);
}

TEST(WDaemonSocket, ConnectsOnce) {
    const Peer peer(0, doNothing);
    WDaemonSocket socket;
    EXPECT_EQ(socket.init(peer.port()), 0);
    EXPECT_EQ(socket.port, peer.port());
    EXPECT_EQ(socket.init(peer.port()), 56);
    EXPECT_EQ(socket.init(static_cast<unsigned short>(peer.port() + 1)), 22);
    socket.close();
    EXPECT_EQ(socket.init(peer.port()), 0);
}

TEST(WDaemonSocket, AFailedConnectionLeavesASocketUntilItIsClosed) {
    const unsigned short port = freePort();
    WDaemonSocket socket;
    EXPECT_EQ(socket.init(port), 57);
    EXPECT_EQ(socket.port, 0);
    EXPECT_EQ(socket.init(port), 22);
    EXPECT_EQ(socket.init(0), 56);
    errno = 0;
    EXPECT_EQ(socket.send(1, nullptr, 0, nullptr, 0), -1);
    EXPECT_EQ(errno, 57);
    socket.close();
    EXPECT_EQ(socket.init(port), 57);
}

TEST(WDaemonSocket, NothingIsSentOrReceivedWithoutAConnection) {
    WDaemonSocket socket;
    wdaemon_response response{};
    EXPECT_EQ(socket.send(1, nullptr, 0, nullptr, 0), -1);
    EXPECT_EQ(errno, 57);
    errno = 0;
    EXPECT_EQ(socket.recv(&response, sizeof response, 1), -1);
    EXPECT_EQ(errno, 57);
    socket.close();
}

TEST(WDaemonSocket, ChecksWhatItIsAskedToSend) {
    const Peer peer(0, doNothing);
    const unsigned parameters[5] = {};
    const std::array<unsigned char, 1025> payload{};
    WDaemonSocket socket;
    ASSERT_EQ(socket.init(peer.port()), 0);
    EXPECT_EQ(socket.send(1, parameters, 5, nullptr, 0), -1);
    EXPECT_EQ(errno, 22);
    errno = 0;
    EXPECT_EQ(socket.send(1, nullptr, 0, payload.data(), 1025), -1);
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(socket.send(1, nullptr, 5, nullptr, 0), 24);
    EXPECT_EQ(socket.send(1, parameters, 4, payload.data(), 1024), 1048);
}

TEST(WDaemonSocket, WhatIsSentLeavesAtOnce) {
    std::promise<std::string> arrived;
    const Peer peer(0, [&](Connection& connection) {
        arrived.set_value(connection.read(requestHead));
        connection.readToEnd();
    });
    WDaemonSocket socket;
    ASSERT_EQ(socket.init(peer.port()), 0);
    EXPECT_EQ(socket.send(8, nullptr, 0, nullptr, 0), 24);
    EXPECT_EQ(arrived.get_future().get(), words({8, 0, 0, 0, 0, 0}));
}

TEST(WDaemonSocket, ReceivesAsMuchAsThereIsRoom) {
    const Peer peer = answering(words({1, 2, 3}));
    WDaemonSocket socket;
    ASSERT_EQ(socket.init(peer.port()), 0);
    ASSERT_EQ(socket.send(1, nullptr, 0, nullptr, 0), 24);
    wdaemon_response response{};
    EXPECT_EQ(socket.recv(nullptr, 8, 1), -1);
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(socket.recv(&response, 8, 5), 8);
    EXPECT_EQ(response.status, 2u);
    EXPECT_EQ(response.length, 0u);
    EXPECT_EQ(socket.recv(&response, sizeof response, 5), 4) << "the rest is there still";
    EXPECT_EQ(response.command, 3u);
}

TEST(WDaemonSocket, WaitsFourTimesItsTimeForTheConnection) {
    const DeafPeer peer(0);
    WDaemonSocket first;
    EXPECT_EQ(first.timeout, 2000u);
    EXPECT_EQ(first.init(peer.port()), 0);
    WDaemonSocket second;
    second.timeout = 50;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(second.init(peer.port()), 57);
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::milliseconds(195));
    EXPECT_LT(waited, std::chrono::seconds(7)) << "no default";
}

TEST(WDaemonSocket, ABrokenConnectionIsAnErrorAndNoSignal) {
    std::promise<void> connected;
    std::promise<void> broken;
    std::once_flag first; // the socket may connect again
    const std::shared_future<void> mayBreak = connected.get_future().share();
    const Peer peer(0, [&](Connection& connection) {
        mayBreak.wait();
        connection.reset();
        std::call_once(first, [&] { broken.set_value(); });
    });
    ASSERT_NE(std::signal(SIGPIPE, SIG_DFL), SIG_ERR);
    WDaemonSocket socket;
    const int initialised = socket.init(peer.port());
    connected.set_value();
    ASSERT_EQ(initialised, 0);
    broken.get_future().wait();
    int sent = 24;
    for (int i = 0; i < 3 && sent == 24; ++i)
        sent = socket.send(1, nullptr, 0, nullptr, 0);
    EXPECT_EQ(sent, -1);
    EXPECT_TRUE(errno == 5 || errno == 57) << errno;
}

TEST(Loopback, WaitsForTheRestOfWhatHasBegunToArrive) {
    std::promise<void> goOn;
    std::promise<void> end;
    const Peer peer(0, [&](Connection& connection) {
        connection.write("ab");
        goOn.get_future().wait();
        connection.write("cde");
        end.get_future().wait();
    });
    QTcpSocket socket;
    ASSERT_TRUE(Korvex::Loopback::connect(socket, peer.port(), 10'000));
    ASSERT_TRUE(Korvex::Loopback::waitForData(socket, 10));
    Korvex::Loopback::awaitRest(socket, 5);
    EXPECT_EQ(socket.bytesAvailable(), 2) << "not for long";
    goOn.set_value();
    const KxTest::Moment enough(60'000);
    Korvex::Loopback::awaitRest(socket, 5);
    EXPECT_EQ(socket.bytesAvailable(), 5);
    end.set_value();
    const auto start = std::chrono::steady_clock::now();
    Korvex::Loopback::awaitRest(socket, 6);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30))
        << "the end of the connection ends it";
}

TEST(Loopback, ASocketInUseGetsTimeToBecomeIdle) {
    KxTest::SleeplessClock clock;
    QTcpSocket idle;
    EXPECT_TRUE(Korvex::Loopback::becomesIdle(idle, 2000));
    EXPECT_TRUE(clock.sleeps().empty());
    const Peer peer(0, doNothing);
    QTcpSocket used;
    used.connectToHost(QHostAddress(QHostAddress::LocalHost), peer.port());
    EXPECT_FALSE(Korvex::Loopback::becomesIdle(used, 2000));
    EXPECT_EQ(clock.sleeps().size(), 1u);
    clock.onSleep = [&] { used.abort(); };
    EXPECT_TRUE(Korvex::Loopback::becomesIdle(used, 2000));
    EXPECT_EQ(clock.sleeps().back(), std::chrono::seconds(2));
}
