#include <KxQts/system/commandline.h>

#include "common/memorysearch.h"
#include "fakes/peer.h"

#include <gtest/gtest.h>

#include <fstream>
#include <future>
#include <sys/wait.h>
#include <unistd.h>

using KxTest::Connection;
using KxTest::Peer;
using KxTest::words;

namespace {

constexpr unsigned short commandPort = 12316;
constexpr std::size_t requestSize = 2068;

/// Whether something holds in a process of its own, which may become one in root mode.
bool holdsInAProcess(const std::function<bool()>& check) {
    const pid_t process = fork();
    if (process == 0)
        _exit(check() ? 0 : 1);
    int status = -1;
    waitpid(process, &status, 0);
    return status == 0;
}

} // namespace

TEST(ExecuteCommandLineTool, SendsTheJoinedLineToTheDaemon) {
    std::promise<std::string> received;
    const Peer peer(commandPort, [&](Connection& connection) {
        const std::string request = connection.read(requestSize);
        connection.write(words({6, 0}));
        connection.readToEnd();
        received.set_value(request);
    });
    QString output = QStringLiteral("untouched");
    EXPECT_EQ(executeCommandLineTool(QStringLiteral("a"), {"b", "c d", "", "'e"}, output, 10), 0);
    EXPECT_EQ(output, "untouched");
    const std::string request = received.get_future().get();
    EXPECT_EQ(request.substr(0, 20), words({6, 0, 0, 0, 0}));
    EXPECT_STREQ(request.c_str() + 20, "a b c d  'e");
}

TEST(ExecuteCommandLineTool, ReportsTheDaemonsStatus) {
    const Peer peer(commandPort, [&](Connection& connection) {
        connection.read(requestSize);
        connection.write(words({6, 512}));
        connection.readToEnd();
    });
    QString output;
    EXPECT_EQ(executeCommandLineTool(QStringLiteral("a"), {}, output, 10), 512);
    EXPECT_EQ(output, "(status =512)");
}

TEST(ExecuteCommandLineTool, WaitsForTheDaemonAsLongAsAskedFor) {
    const Peer peer(commandPort, [](Connection& connection) { connection.readToEnd(); });
    QString output;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(executeCommandLineTool(QStringLiteral("a"), {}, output, 0), 101);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(990));
}

TEST(ExecuteCommandLineTool, FailsWithoutADaemon) {
    QString output;
    EXPECT_EQ(executeCommandLineTool(QStringLiteral("a"), {}, output, 10), 30766);
    EXPECT_TRUE(output.startsWith("init failed("));
}

TEST(ExecuteCommandLineTool, InRootModeTheShellsStatusIsReturned) {
    EXPECT_TRUE(holdsInAProcess([] {
        setRootModeFor_executeCommandLineTool();
        QString output = QStringLiteral("untouched");
        return executeCommandLineTool(QStringLiteral("exit"), {"3"}, output, 0) == 3 * 256 &&
               executeCommandLineTool(QStringLiteral("true"), {}, output, 0) == 0 &&
               output == QLatin1String("untouched");
    }));
}

TEST(ExecuteCommandLineTool, InRootModeTheLineForTheShellIsWiped) {
    EXPECT_TRUE(holdsInAProcess([] {
        setRootModeFor_executeCommandLineTool();
        QString output;
        const KxTest::UnwrittenText secret(400);
        std::u16string argument;
        secret.writeTo(argument);
        executeCommandLineTool(QStringLiteral("true"), {QString::fromStdU16String(argument)},
                               output, 0);
        return secret.occurrences(sizeof(char)) == 0;
    }));
}

TEST(ExecuteCommandLineTool, InRootModeNothingIsQuotedAndTheLineIsLatinOne) {
    EXPECT_TRUE(holdsInAProcess([] {
        setRootModeFor_executeCommandLineTool();
        QString output;
        executeCommandLineTool(QStringLiteral("echo"), {"a  b", "\u00e9", ">", "written"}, output,
                               0);
        std::ifstream file("written");
        std::string line;
        std::getline(file, line);
        return line == "a b \xE9";
    }));
}
