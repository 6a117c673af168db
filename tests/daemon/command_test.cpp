#include <KxQts/daemon/command.h>

#include "daemon/moment.h"
#include "fakes/peer.h"
#include "fakes/sleeplessclock.h"

#include <QAbstractSocket>

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>

using KxTest::Connection;
using KxTest::Peer;
using KxTest::words;

namespace {

constexpr unsigned short commandPort = 12316;
constexpr std::size_t requestSize = 2068;
constexpr std::size_t textOffset = 20;

/// A daemon that answers every command with the same bytes.
Peer answering(const std::string& response) {
    return {commandPort, [response](Connection& connection) {
                connection.read(requestSize);
                connection.write(response);
                connection.readToEnd();
            }};
}

struct Outcome {
    int result;
    QString message;
};

Outcome call(unsigned cmd, const QString& text = QString(), unsigned seconds = 5) {
    QString message = QStringLiteral("untouched");
    const int result = CallDaemonSession(cmd, seconds, &text, nullptr, 0, &message);
    return {result, message};
}

std::string requestFor(const QString* text, const unsigned* parameters, unsigned count) {
    std::string request;
    {
        std::promise<std::string> received;
        const Peer peer(commandPort, [&](Connection& connection) {
            std::string bytes = connection.read(requestSize);
            connection.write(words({7, 0}));
            bytes += connection.readToEnd();
            received.set_value(bytes);
        });
        EXPECT_EQ(CallDaemonSession(7, 5, text, parameters, count, nullptr), 0);
        request = received.get_future().get();
    }
    return request;
}

} // namespace

TEST(CallDaemonSession, SendsTheCommandTheParametersAndTheText) {
    const QString text = QStringLiteral("ls -l");
    const unsigned parameters[] = {1, 2, 3, 4, 5, 6};
    const std::string request = requestFor(&text, parameters, 6);
    ASSERT_EQ(request.size(), requestSize);
    EXPECT_EQ(request.substr(0, textOffset), words({7, 1, 2, 3, 4}));
    EXPECT_EQ(request.substr(textOffset), "ls -l" + std::string(2048 - 5, '\0'));
}

TEST(CallDaemonSession, UnusedSlotsAreZeroAndSoIsTheTextThatIsNotThere) {
    const unsigned parameters[] = {1, 2};
    EXPECT_EQ(requestFor(nullptr, parameters, 2), words({7, 1, 2, 0, 0}) + std::string(2048, '\0'));
    EXPECT_EQ(requestFor(nullptr, nullptr, 4), words({7}) + std::string(2064, '\0'));
}

TEST(CallDaemonSession, LongTextsAreCutAndLatinOne) {
    const QString text(3000, QChar(0xE9));
    const std::string request = requestFor(&text, nullptr, 0);
    EXPECT_EQ(request.substr(textOffset), std::string(2047, '\xE9') + std::string(1, '\0'));
}

TEST(CallDaemonSession, SuccessLeavesTheMessageAlone) {
    const Peer peer = answering(words({6, 0}));
    const Outcome outcome = call(6, QStringLiteral("true"));
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.message, "untouched");
}

TEST(CallDaemonSession, AStatusIsTheResultAndReported) {
    const Peer peer = answering(words({6, 256}));
    const Outcome outcome = call(6, QStringLiteral("false"));
    EXPECT_EQ(outcome.result, 256);
    EXPECT_EQ(outcome.message, "(status =256)");
    EXPECT_EQ(CallDaemonSession(6, 5, nullptr, nullptr, 0, nullptr), 256);
}

TEST(CallDaemonSession, AStatusIsReportedWithoutASign) {
    const Peer peer = answering(words({6, 0xFFFFFFFF}));
    const Outcome outcome = call(6);
    EXPECT_EQ(outcome.result, -1);
    EXPECT_EQ(outcome.message, "(status =4294967295)");
}

TEST(CallDaemonSession, AnotherCommandsAnswerIsSuccessWithAMessage) {
    const Peer peer = answering(words({5, 3}));
    const Outcome outcome = call(6);
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.message, "getData failed(-1/5)");
}

TEST(CallDaemonSession, AResponseThatIsTooShortCountsAsFarAsItGoes) {
    const Peer peer = answering(words({6}));
    const Outcome outcome = call(6);
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.message, "untouched");
}

TEST(CallDaemonSession, TakesAResponseThatIsSentInTwoPieces) {
    const Peer peer(commandPort, [](Connection& connection) {
        connection.read(requestSize);
        connection.write(words({6}));
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        connection.write(words({3}));
        connection.readToEnd();
    });
    const KxTest::Moment enough(60'000);
    EXPECT_EQ(call(6).result, 3);
}

TEST(CallDaemonSession, NobodyListening) {
    const Outcome outcome = call(6);
    EXPECT_EQ(outcome.result, 30766);
    EXPECT_EQ(outcome.message,
              QStringLiteral("init failed(%1)").arg(QAbstractSocket::ConnectionRefusedError));
}

TEST(CallDaemonSession, ASilentDaemonTimesOutAfterASecondWhenZeroIsAsked) {
    const Peer peer(commandPort, [](Connection& connection) { connection.readToEnd(); });
    const auto start = std::chrono::steady_clock::now();
    const Outcome outcome = call(6, QString(), 0);
    EXPECT_EQ(outcome.result, 101);
    EXPECT_EQ(outcome.message,
              QStringLiteral("getData failed(%1/0)").arg(QAbstractSocket::SocketTimeoutError));
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::milliseconds(990));
    EXPECT_LT(waited, std::chrono::seconds(10));
}

TEST(CallDaemonSession, ADaemonThatEndsWithoutAnswerIsNoAnswerInTime) {
    const Peer peer(commandPort, [](Connection& connection) { connection.read(requestSize); });
    const Outcome outcome = call(6, QString(), 60);
    EXPECT_EQ(outcome.result, 101);
    EXPECT_EQ(outcome.message,
              QStringLiteral("getData failed(%1/0)").arg(QAbstractSocket::RemoteHostClosedError));
}

TEST(CallDaemonSession, AConnectionThatBreaksBeforeTheRequestIsReported) {
    // Behind the connecting and, mostly, before the conversion of such a long text has ended.
    const Peer peer(commandPort, [](Connection& connection) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        connection.reset();
    });
    const QString text(20'000'000, 'x');
    Outcome outcome{0, {}};
    for (int i = 0; i < 100 && outcome.result != 30768; ++i)
        outcome = call(6, text);
    EXPECT_EQ(outcome.result, 30768);
    EXPECT_EQ(outcome.message,
              QStringLiteral("sendData failed(%1)").arg(QAbstractSocket::RemoteHostClosedError));
}

TEST(CallDaemonSession, GivesUpAfterThirtySecondsBehindAnotherSession) {
    std::promise<void> inSession;
    std::promise<void> goOn;
    const Peer peer(commandPort, [&](Connection& connection) {
        connection.read(requestSize);
        inSession.set_value();
        goOn.get_future().wait();
        connection.write(words({6, 0}));
        connection.readToEnd();
    });
    auto first = std::async(std::launch::async, [] { return call(6); });
    inSession.get_future().wait();
    {
        KxTest::SleeplessClock clock;
        const Outcome outcome = call(6);
        EXPECT_EQ(outcome.result, 30761);
        EXPECT_EQ(outcome.message, "socket locked");
        EXPECT_EQ(clock.sleeps(), std::vector(300, std::chrono::microseconds(100'000)));
    }
    goOn.set_value();
    EXPECT_EQ(first.get().result, 0);
    EXPECT_EQ(peer.connections(), 1);
}

TEST(CallDaemonSession, WaitsForTheSessionBefore) {
    std::promise<void> inSession;
    std::promise<void> goOn;
    std::atomic<bool> firstOne{true};
    const Peer peer(commandPort, [&](Connection& connection) {
        connection.read(requestSize);
        if (firstOne.exchange(false)) {
            inSession.set_value();
            goOn.get_future().wait();
        }
        connection.write(words({6, 0}));
        connection.readToEnd();
    });
    auto first = std::async(std::launch::async, [] { return call(6).result; });
    inSession.get_future().wait();
    KxTest::SleeplessClock clock;
    bool released = false;
    clock.onSleep = [&] {
        if (!std::exchange(released, true)) {
            goOn.set_value();
            EXPECT_EQ(first.get(), 0);
        }
    };
    EXPECT_EQ(call(6).result, 0);
    EXPECT_TRUE(released);
    EXPECT_EQ(clock.sleeps().size(), 1u);
}

TEST(CallDaemonSession, ManyThreadsAreServedOneAfterTheOther) {
    const Peer peer = answering(words({6, 0}));
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] { EXPECT_EQ(call(6).result, 0); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(peer.connections(), 4);
}

TEST(ZRDaemonSocket, TellsAMissingSocketFromOneThatIsNotConnected) {
    unsigned response[2] = {};
    ZRDaemonSocket socket;
    EXPECT_EQ(socket.lastError, -1);
    EXPECT_EQ(socket.timeout, 2000u);
    EXPECT_EQ(socket.sendDataToSocket(6, nullptr, nullptr, 0), 30761);
    EXPECT_EQ(socket.getDataFromSocket(response, 1), 30761);
    EXPECT_EQ(socket.initSocket(), 30766);
    EXPECT_EQ(socket.lastError, QAbstractSocket::ConnectionRefusedError);
    EXPECT_EQ(socket.initSocket(), 0) << "there is a socket, connected or not";
    EXPECT_EQ(socket.sendDataToSocket(6, nullptr, nullptr, 0), 30766);
    EXPECT_EQ(socket.lastError, -1);
    socket.lastError = 5;
    EXPECT_EQ(socket.getDataFromSocket(response, 1), 30766);
    EXPECT_EQ(socket.lastError, -1);
    socket.closeSocket();
    EXPECT_EQ(socket.sendDataToSocket(6, nullptr, nullptr, 0), 30761);
}

TEST(ZRDaemonSocket, WaitsFiveTimesItsTimeForTheConnection) {
    const KxTest::DeafPeer peer(commandPort);
    ZRDaemonSocket first;
    EXPECT_EQ(first.initSocket(), 0);
    ZRDaemonSocket second;
    second.timeout = 50;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(second.initSocket(), 30766);
    EXPECT_EQ(second.lastError, QAbstractSocket::SocketTimeoutError);
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::milliseconds(245));
    EXPECT_LT(waited, std::chrono::seconds(9)) << "no default";
}

TEST(ZRDaemonSocket, ReportsBytesThatCouldNotBeWritten) {
    std::promise<void> connected;
    std::promise<void> broken;
    const Peer peer(commandPort, [&](Connection& connection) {
        connected.get_future().wait();
        connection.reset();
        broken.set_value();
    });
    ZRDaemonSocket socket;
    ASSERT_EQ(socket.initSocket(), 0);
    connected.set_value();
    broken.get_future().wait();
    EXPECT_EQ(socket.sendDataToSocket(6, nullptr, nullptr, 0), 30768);
    EXPECT_EQ(socket.lastError, QAbstractSocket::RemoteHostClosedError);
}
