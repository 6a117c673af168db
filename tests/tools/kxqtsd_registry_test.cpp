// The root daemon's registry exchange.

#include <KxQts/daemon/registryclient.h>
#include <KxQts/registry/prefs.h>

#include "common/unprivileged.h"
#include "tools/runningdaemon.h"

#include <gtest/gtest.h>

#include <cstring>

namespace Registry = Korvex::DaemonRegistry;

using Korvex::WPrefs;
using KxTest::RawConnection;
using KxTest::RunningDaemon;

namespace {

constexpr unsigned short registryPort = 12317;
/// Every test has a key of its own.
QString key;

class KxqtsdRegistry : public testing::Test {
protected:
    void SetUp() override {
        const char* name = testing::UnitTest::GetInstance()->current_test_info()->name();
        key = QStringLiteral("Software/Ünï/") + QString::fromLatin1(name);
    }
};

/// A value as the library itself reads it from the machine-wide store.
QByteArray stored(const QString& name, unsigned& type) {
    QByteArray data;
    WPrefs prefs(nullptr, &key, true);
    return prefs.queryValue(name, &type, data) ? data : QByteArray("none");
}

/// The status of the answer to bytes that are no proper request.
unsigned statusFor(const _D_REG_REQUEST& request, const std::string& payload = {}) {
    const RawConnection connection(registryPort);
    connection.send(std::string(reinterpret_cast<const char*>(&request), sizeof request) + payload);
    const std::string answer = connection.readToEnd();
    _D_REG_RESPONSE response{};
    EXPECT_EQ(answer.size(), sizeof response);
    std::memcpy(&response, answer.data(), std::min(answer.size(), sizeof response));
    EXPECT_EQ(response.command, request.command);
    EXPECT_EQ(response.payloadLength, 0);
    return response.status;
}

_D_REG_REQUEST requestFor(unsigned command, const QString& name = QStringLiteral("v")) {
    Registry::Exchange exchange;
    EXPECT_TRUE(exchange.fill(Registry::ReadValue, key, name));
    exchange.request.command = command;
    return exchange.request;
}

} // namespace

TEST_F(KxqtsdRegistry, SetsReadsAndDeletesValues) {
    const RunningDaemon daemon;
    const QString name = QStringLiteral("naïve");
    unsigned type = 0;
    QByteArray data;
    EXPECT_EQ(Registry::readValue(key, name, type, data), 2);
    EXPECT_EQ(Registry::setValue(key, name, 3, QByteArray("a\0b", 3)), 0);
    EXPECT_EQ(stored(name, type), QByteArray("a\0b", 3));
    EXPECT_EQ(type, 3u);
    EXPECT_EQ(Registry::readValue(key, name, type, data), 0);
    EXPECT_EQ(type, 3u);
    EXPECT_EQ(data, QByteArray("a\0b", 3));
    EXPECT_EQ(Registry::deleteValue(key, name), 0);
    EXPECT_EQ(Registry::deleteValue(key, name), 2);
    EXPECT_EQ(stored(name, type), "none");
}

TEST_F(KxqtsdRegistry, KeepsEveryType) {
    const RunningDaemon daemon;
    const QByteArray text("t\0e\0x\0t\0", 8);
    const QByteArray number("\x78\x56\x34\x12", 4);
    const QByteArray longNumber("12345678");
    unsigned type = 0;
    QByteArray data;
    EXPECT_EQ(Registry::setValue(key, "s", 1, text), 0);
    EXPECT_EQ(Registry::setValue(key, "n", 4, number), 0);
    EXPECT_EQ(Registry::setValue(key, "q", 11, longNumber), 0);
    EXPECT_EQ(Registry::setValue(key, "empty", 3, QByteArray()), 0);
    EXPECT_EQ(Registry::readValue(key, "s", type, data), 0);
    EXPECT_EQ(type, 1u);
    EXPECT_EQ(data, text);
    EXPECT_EQ(Registry::readValue(key, "n", type, data), 0);
    EXPECT_EQ(type, 4u);
    EXPECT_EQ(data, number);
    EXPECT_EQ(Registry::readValue(key, "q", type, data), 0);
    EXPECT_EQ(type, 3u);
    EXPECT_EQ(data, longNumber);
    EXPECT_EQ(Registry::readValue(key, "empty", type, data), 0);
    EXPECT_EQ(data, QByteArray());
    EXPECT_EQ(Registry::setValue(key, "n", 4, QByteArray("123")), 5) << "too short for a number";
    EXPECT_EQ(Registry::setValue(key, "n", 7, text), 5) << "no type of the store";
}

TEST_F(KxqtsdRegistry, EnumeratesValuesWithoutKeys) {
    const RunningDaemon daemon;
    QStringList names;
    EXPECT_EQ(Registry::enumerateValues(key, names), 2);
    EXPECT_EQ(Registry::setValue(key, "one", 3, "1"), 0);
    EXPECT_EQ(Registry::setValue(key, "zwei ü", 3, "2"), 0);
    EXPECT_EQ(Registry::setValue(key + "/below", "three", 3, "3"), 0);
    EXPECT_EQ(Registry::enumerateValues(key, names), 0);
    names.sort();
    EXPECT_EQ(names, QStringList({"one", "zwei ü"}));
    EXPECT_EQ(Registry::deleteValue(key, "one"), 0);
    EXPECT_EQ(Registry::deleteValue(key, "zwei ü"), 0);
    EXPECT_EQ(Registry::enumerateValues(key, names), 0);
    EXPECT_TRUE(names.isEmpty());
}

TEST_F(KxqtsdRegistry, TheLongestPayloadArrivesWhole) {
    const RunningDaemon daemon;
    const QByteArray longest(Registry::longestPayload, 'x');
    unsigned type = 0;
    QByteArray data;
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(Registry::setValue(key, "v", 3, longest), 0);
        EXPECT_EQ(Registry::readValue(key, "v", type, data), 0);
        EXPECT_EQ(data, longest);
    }
    EXPECT_EQ(Registry::setValue(key, "v", 3, longest + 'x'), 22);
}

TEST_F(KxqtsdRegistry, AnswersThatAreTooLongAreNotGiven) {
    const RunningDaemon daemon;
    WPrefs prefs(nullptr, &key, true);
    ASSERT_TRUE(prefs.setValue("big", 3, QByteArray(Registry::longestPayload + 1, 'x')));
    unsigned type = 0;
    QByteArray data;
    EXPECT_EQ(Registry::readValue(key, "big", type, data), 122);
}

TEST_F(KxqtsdRegistry, RefusesWhatIsNoRequest) {
    const RunningDaemon daemon;
    EXPECT_EQ(statusFor(requestFor(0)), 22u);
    EXPECT_EQ(statusFor(requestFor(5)), 22u);
    _D_REG_REQUEST request = requestFor(Registry::ReadValue);
    request.payloadLength = -1;
    EXPECT_EQ(statusFor(request), 22u);
    request.payloadLength = Registry::longestPayload + 1;
    EXPECT_EQ(statusFor(request), 22u);
    request.payloadLength = 3;
    EXPECT_EQ(statusFor(request, "abc"), 2u) << "a payload that means nothing is passed over";
    for (std::size_t field : {12, 1292}) { // the key, the name
        request = requestFor(Registry::SetValue);
        std::memset(request.body + field, 'x', sizeof request.body - field);
        EXPECT_EQ(statusFor(request), 22u) << "no end";
        request = requestFor(Registry::SetValue);
        request.body[field] = 0xFF;
        EXPECT_EQ(statusFor(request), 22u) << "no UTF-8";
    }
    request = requestFor(Registry::SetValue);
    request.body[12] = 0;
    EXPECT_EQ(statusFor(request), 22u) << "no key";
}

TEST_F(KxqtsdRegistry, TextsThatDoNotFitAreNotSent) {
    unsigned type = 0;
    QByteArray data;
    EXPECT_EQ(Registry::readValue(QString(1280, 'k'), "v", type, data), 22);
    EXPECT_EQ(Registry::readValue("k", QString(1032, 'v'), type, data), 22);
    EXPECT_EQ(Registry::readValue(QString(QChar(0)), "v", type, data), 22);
    EXPECT_EQ(Registry::readValue("k", "v", type, data), 30766) << "there is no daemon";
}

TEST_F(KxqtsdRegistry, ServesNobodyButRootAndAdministrators) {
    RunningDaemon daemon;
    EXPECT_EQ(Registry::setValue(key, "v", 3, "root's"), 0);
    EXPECT_TRUE(KxTest::asOrdinaryUser([&] {
        unsigned type = 0;
        QByteArray data;
        EXPECT_EQ(Registry::setValue(key, "v", 3, "other"), 1);
        EXPECT_EQ(Registry::readValue(key, "v", type, data), 1);
    }));
    unsigned type = 0;
    EXPECT_EQ(stored("v", type), "root's");
    EXPECT_EQ(daemon.nextLine(), "<4>kxqtsd: registry request refused to user " +
                                     std::to_string(KxTest::ordinaryUser));
}

TEST_F(KxqtsdRegistry, ManyClientsLoseNothing) {
    const RunningDaemon daemon;
    std::vector<std::string> requests;
    for (int i = 0; i < 40; ++i) {
        _D_REG_REQUEST request = requestFor(Registry::SetValue, QString::number(i));
        request.payloadLength = 1;
        request.body[0] = 3;
        requests.push_back(std::string(reinterpret_cast<const char*>(&request), sizeof request) +
                           "v");
    }
    std::vector<std::unique_ptr<RawConnection>> connections;
    for (const std::string& request : requests) {
        connections.push_back(std::make_unique<RawConnection>(registryPort));
        connections.back()->send(request);
    }
    for (const auto& connection : connections)
        EXPECT_EQ(connection->readToEnd().size(), sizeof(_D_REG_RESPONSE));
    QStringList names;
    EXPECT_EQ(Registry::enumerateValues(key, names), 0);
    EXPECT_EQ(names.size(), 40);
}
