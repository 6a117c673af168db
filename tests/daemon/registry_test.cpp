#include <KxQts/daemon/registry.h>

#include "daemon/moment.h"
#include "fakes/peer.h"
#include "fakes/sleeplessclock.h"

#include <QAbstractSocket>

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <future>
#include <memory>
#include <thread>

using KxTest::Connection;
using KxTest::Peer;
using KxTest::words;

namespace {

constexpr unsigned short registryPort = 12317;
constexpr std::size_t requestSize = 2332;

/// The record of a response.
std::string record(unsigned command, unsigned status, int length) {
    return words({command}) + "0123456789abcdef" + words({status, static_cast<unsigned>(length)});
}

_D_REG_REQUEST requestOf(unsigned command, int payloadLength) {
    _D_REG_REQUEST request{};
    request.command = command;
    std::memset(request.body, 'b', sizeof request.body);
    request.payloadLength = payloadLength;
    return request;
}

/// A daemon that answers every request of a size with the same bytes.
Peer answering(const std::string& response, std::size_t size = requestSize) {
    return {registryPort, [response, size](Connection& connection) {
                connection.read(size);
                connection.write(response);
                connection.readToEnd();
            }};
}

struct Outcome {
    int result = 0;
    _D_REG_RESPONSE response{};
    char* payload = nullptr;
    QString message = QStringLiteral("untouched");
    std::unique_ptr<char[]> owner;
};

Outcome call(unsigned command, unsigned seconds = 5) {
    Outcome outcome;
    outcome.result = CallDaemonRegistrySession(requestOf(command, 0), outcome.response, seconds,
                                               outcome.payload, nullptr, &outcome.message);
    outcome.owner.reset(outcome.payload);
    return outcome;
}

std::string sentFor(int payloadLength, const char* payload) {
    std::promise<std::string> received;
    const Peer peer(registryPort, [&](Connection& connection) {
        std::string bytes = connection.read(requestSize);
        connection.write(record(3, 0, 0));
        received.set_value(bytes + connection.readToEnd());
    });
    _D_REG_RESPONSE response{};
    char* answer = nullptr;
    EXPECT_EQ(CallDaemonRegistrySession(requestOf(3, payloadLength), response, 5, answer, payload,
                                        nullptr),
              0);
    EXPECT_EQ(answer, nullptr);
    return received.get_future().get();
}

std::string requestBytes(int payloadLength) {
    return words({3}) + std::string(2324, 'b') + words({static_cast<unsigned>(payloadLength)});
}

} // namespace

TEST(CallDaemonRegistrySession, SendsTheRecordAndThePayload) {
    EXPECT_EQ(sentFor(4, "data"), requestBytes(4) + "data");
    EXPECT_EQ(sentFor(0, "data"), requestBytes(0));
    EXPECT_EQ(sentFor(-5, "data"), requestBytes(-5));
    EXPECT_EQ(sentFor(4, nullptr), requestBytes(4));
}

TEST(CallDaemonRegistrySession, SendsLongPayloadsWhole) {
    const std::string payload(3'000'000, 'p');
    const int size = static_cast<int>(payload.size());
    std::promise<std::size_t> received;
    const Peer peer(registryPort, [&](Connection& connection) {
        received.set_value(connection.read(requestSize + payload.size()).size());
        connection.write(record(3, 0, 0));
        connection.readToEnd();
    });
    _D_REG_RESPONSE response{};
    char* answer = nullptr;
    EXPECT_EQ(
        CallDaemonRegistrySession(requestOf(3, size), response, 5, answer, payload.data(), nullptr),
        0);
    EXPECT_EQ(received.get_future().get(), requestSize + payload.size());
}

TEST(CallDaemonRegistrySession, ReceivesTheRecordAndThePayload) {
    const Peer peer = answering(record(3, 0, 5) + "value");
    const Outcome outcome = call(3);
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.message, "untouched");
    EXPECT_EQ(outcome.response.command, 3u);
    EXPECT_EQ(std::memcmp(outcome.response.body, "0123456789abcdef", 16), 0);
    EXPECT_EQ(outcome.response.payloadLength, 5);
    ASSERT_NE(outcome.payload, nullptr);
    EXPECT_EQ(std::string(outcome.payload, 5), "value");
}

TEST(CallDaemonRegistrySession, AStatusComesWithoutPayload) {
    const Peer peer = answering(record(3, 5, 100));
    const Outcome outcome = call(3);
    EXPECT_EQ(outcome.result, 5);
    EXPECT_EQ(outcome.message, "(status =5)");
    EXPECT_EQ(outcome.payload, nullptr);
    EXPECT_EQ(outcome.response.payloadLength, 100);
}

TEST(CallDaemonRegistrySession, WithoutPayloadThePointerIsLeftAlone) {
    for (int length : {0, -1, -2147483647}) {
        const Peer peer = answering(record(3, 0, length));
        char here = 0;
        char* payload = &here;
        _D_REG_RESPONSE response{};
        EXPECT_EQ(
            CallDaemonRegistrySession(requestOf(3, 0), response, 5, payload, nullptr, nullptr), 0);
        EXPECT_EQ(payload, &here) << length;
    }
}

TEST(CallDaemonRegistrySession, LengthsThatCannotBeAreNotBelieved) {
    for (int length : {ZRDaemonRegistrySocket::longestPayload + 1, 2147483647}) {
        const Peer peer = answering(record(3, 0, length) + "some");
        const Outcome outcome = call(3);
        EXPECT_EQ(outcome.result, 28680);
        EXPECT_EQ(outcome.message, "getData failed(-1/28680)");
        EXPECT_EQ(outcome.payload, nullptr);
    }
}

TEST(CallDaemonRegistrySession, WhatDoesNotArriveOfThePayloadIsZero) {
    const Peer peer = answering(record(3, 0, 8) + "half");
    const Outcome outcome = call(3);
    EXPECT_EQ(outcome.result, 0);
    ASSERT_NE(outcome.payload, nullptr);
    EXPECT_EQ(std::string(outcome.payload, 8), std::string("half\0\0\0\0", 8));
}

TEST(CallDaemonRegistrySession, TakesAPayloadThatIsSentBehindTheRecord) {
    const Peer peer(registryPort, [](Connection& connection) {
        connection.read(requestSize);
        connection.write(record(3, 0, 5));
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        connection.write("value");
        connection.readToEnd();
    });
    const KxTest::Moment enough(60'000);
    const Outcome outcome = call(3);
    ASSERT_NE(outcome.payload, nullptr);
    EXPECT_EQ(std::string(outcome.payload, 5), "value");
}

TEST(CallDaemonRegistrySession, ARecordThatIsTooShortHasNoPayload) {
    const Peer peer = answering(record(3, 0, 50).substr(0, 26));
    Outcome outcome;
    outcome.response.payloadLength = 1000; // the caller's own leavings are not believed
    outcome.result = CallDaemonRegistrySession(requestOf(3, 0), outcome.response, 5,
                                               outcome.payload, nullptr, &outcome.message);
    outcome.owner.reset(outcome.payload);
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.response.payloadLength, 50) << "two bytes of it came";
    EXPECT_EQ(std::string(outcome.payload, 50), std::string(50, '\0'));
}

TEST(CallDaemonRegistrySession, AnotherCommandsAnswerIsSuccessWithAMessage) {
    const Peer peer = answering(record(4, 9, 0));
    const Outcome outcome = call(3);
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.message, "getData failed(-1/0)");
    EXPECT_EQ(outcome.response.status, 9u);
}

TEST(CallDaemonRegistrySession, NobodyListening) {
    const Outcome outcome = call(3);
    EXPECT_EQ(outcome.result, 30766);
    EXPECT_EQ(outcome.message,
              QStringLiteral("init failed(%1)").arg(QAbstractSocket::ConnectionRefusedError));
}

TEST(CallDaemonRegistrySession, ASilentDaemonTimesOutAndLeavesTheResponseAlone) {
    const Peer peer(registryPort, [](Connection& connection) { connection.readToEnd(); });
    Outcome outcome;
    outcome.response.status = 77;
    const auto start = std::chrono::steady_clock::now();
    outcome.result = CallDaemonRegistrySession(requestOf(3, 0), outcome.response, 0,
                                               outcome.payload, nullptr, &outcome.message);
    EXPECT_EQ(outcome.result, 101);
    EXPECT_EQ(outcome.message,
              QStringLiteral("getData failed(%1/101)").arg(QAbstractSocket::SocketTimeoutError));
    EXPECT_EQ(outcome.response.status, 77u);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(990));
}

TEST(CallDaemonRegistrySession, GivesUpBehindAnotherSessionButNotBehindACommand) {
    std::promise<void> inSession;
    std::promise<void> goOn;
    const Peer peer(registryPort, [&](Connection& connection) {
        connection.read(requestSize);
        inSession.set_value();
        goOn.get_future().wait();
        connection.write(record(3, 0, 0));
        connection.readToEnd();
    });
    auto first = std::async(std::launch::async, [] { return call(3).result; });
    inSession.get_future().wait();
    {
        KxTest::SleeplessClock clock;
        const Outcome outcome = call(3);
        EXPECT_EQ(outcome.result, 30761);
        EXPECT_EQ(outcome.message, "ZRDaemonRegistrySocket locked");
        EXPECT_EQ(clock.sleeps(), std::vector(300, std::chrono::microseconds(100'000)));
    }
    goOn.set_value();
    EXPECT_EQ(first.get(), 0);
}

TEST(ZRDaemonRegistrySocket, TellsAMissingSocketFromOneThatIsNotConnected) {
    _D_REG_RESPONSE response{};
    char* payload = nullptr;
    ZRDaemonRegistrySocket socket;
    EXPECT_EQ(socket.lastError, -1);
    EXPECT_EQ(socket.sendDataToSocket(requestOf(1, 0), nullptr), 30761);
    EXPECT_EQ(socket.getDataFromSocket(response, 1, payload), 30761);
    EXPECT_EQ(socket.initSocket(), 30766);
    EXPECT_EQ(socket.lastError, QAbstractSocket::ConnectionRefusedError);
    EXPECT_EQ(socket.initSocket(), 0);
    EXPECT_EQ(socket.sendDataToSocket(requestOf(1, 0), nullptr), 30766);
    EXPECT_EQ(socket.lastError, -1);
    EXPECT_EQ(socket.getDataFromSocket(response, 1, payload), 30766);
}

TEST(ZRDaemonRegistrySocket, ReportsBytesThatCouldNotBeWritten) {
    std::promise<void> connected;
    std::promise<void> broken;
    const Peer peer(registryPort, [&](Connection& connection) {
        connected.get_future().wait();
        connection.reset();
        broken.set_value();
    });
    ZRDaemonRegistrySocket socket;
    ASSERT_EQ(socket.initSocket(), 0);
    connected.set_value();
    broken.get_future().wait();
    EXPECT_EQ(socket.sendDataToSocket(requestOf(1, 0), nullptr), 30768);
    EXPECT_EQ(socket.lastError, QAbstractSocket::RemoteHostClosedError);
}
