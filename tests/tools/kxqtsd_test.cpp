// The root daemon's command exchange, and what both exchanges have in common.

#include "common/program.h"
#include "common/unprivileged.h"
#include "tools/runningdaemon.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <list>
#include <sys/mount.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;

using KxTest::commandRequest;
using KxTest::RawConnection;
using KxTest::RunningDaemon;
using KxTest::runProgram;
using KxTest::runThroughDaemon;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr unsigned short commandPort = 12316;
constexpr unsigned short registryPort = 12317;

bool becomes(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

std::string contentsOf(const fs::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// An absolute path in the test's folder, which the daemon's commands can write.
std::string here(const std::string& name) {
    return fs::absolute(name).string();
}

std::string words(unsigned first, unsigned second) {
    const unsigned values[] = {first, second};
    return {reinterpret_cast<const char*>(values), sizeof values};
}

/// Every test has a folder of its own for what its commands write.
class Kxqtsd : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directory(folder);
        fs::current_path(folder);
    }
    void TearDown() override { fs::current_path(folder.parent_path()); }

private:
    fs::path folder =
        fs::current_path() / testing::UnitTest::GetInstance()->current_test_info()->name();
};

bool runs(const std::string& processId) {
    return fs::exists("/proc/" + processId.substr(0, processId.find('\n')));
}

} // namespace

TEST_F(Kxqtsd, RunsCommandLinesAndAnswersWithTheShellsStatus) {
    const RunningDaemon daemon;
    EXPECT_EQ(runThroughDaemon("true"), 0);
    EXPECT_EQ(runThroughDaemon("exit 3"), 3 * 256);
    EXPECT_EQ(runThroughDaemon("kill -TERM $$"), SIGTERM);
    EXPECT_EQ(runThroughDaemon("no-such-tool 2> /dev/null"), 127 * 256);
    EXPECT_EQ(runThroughDaemon(""), 0);
    EXPECT_EQ(runThroughDaemon("echo \"a  b\" > '" + here("written") + "'"), 0);
    EXPECT_EQ(contentsOf("written"), "a  b\n");
}

TEST_F(Kxqtsd, ReportsTheStatusInTheClientsMessage) {
    const RunningDaemon daemon;
    QString message;
    const QString line = QStringLiteral("exit 1");
    EXPECT_EQ(CallDaemonSession(6, 10, &line, nullptr, 0, &message), 256);
    EXPECT_EQ(message, "(status =256)");
}

TEST_F(Kxqtsd, RefusesOtherCodesAndTextsThatWereCut) {
    const RunningDaemon daemon;
    for (unsigned code : {0u, 5u, 7u, 0xFFFFFFFFu}) {
        const RawConnection connection(commandPort);
        connection.send(commandRequest(code, "touch '" + here("ran") + "'"));
        EXPECT_EQ(connection.readToEnd(), words(code, 22));
    }
    const RawConnection connection(commandPort);
    connection.send(commandRequest(6, "touch '" + here("ran") + "' " + std::string(2048, 'x')));
    EXPECT_EQ(connection.readToEnd(), words(6, 22));
    const auto lineOf = [](const std::string& path, std::size_t size) {
        const std::string line = "touch '" + path + "' #";
        return line + std::string(size - line.size(), 'x');
    };
    EXPECT_EQ(runThroughDaemon(lineOf(here("ran"), 3000)), 22) << "the library cuts it";
    EXPECT_EQ(runThroughDaemon(lineOf(here("ran"), 2047)), 22);
    EXPECT_FALSE(fs::exists("ran"));
    EXPECT_EQ(runThroughDaemon(lineOf(here("longest"), 2046)), 0);
    EXPECT_TRUE(fs::exists("longest"));
}

TEST_F(Kxqtsd, GivesCommandsSurroundingsOfTheirOwn) {
    const RunningDaemon daemon;
    EXPECT_EQ(
        runThroughDaemon("{ pwd; wc -c < /dev/stdin; env | sort | cut -d= -f1; ls -x "
                         "/proc/self/fd; umask; ps -o pgid= -p $$ | tr -d ' '; echo $$; } > '" +
                         here("seen") + "' 2> '" + here("errors") + "'"),
        0);
    std::istringstream seen(contentsOf("seen"));
    std::vector<std::string> lines;
    for (std::string line; std::getline(seen, line);)
        lines.push_back(line);
    ASSERT_EQ(lines.size(), 10u) << contentsOf("seen") << contentsOf("errors");
    EXPECT_EQ(lines[0], "/");
    EXPECT_EQ(lines[1], "0");
    EXPECT_EQ(lines[2], "HOME");
    EXPECT_EQ(lines[3], "KXQTS_ROOT");
    EXPECT_EQ(lines[4], "PATH");
    EXPECT_EQ(lines[5], "PWD");
    EXPECT_THAT(lines[6], StartsWith("0  1  2  3"));
    EXPECT_EQ(lines[7], "0022");
    EXPECT_EQ(lines[8], lines[9]) << "the shell leads its process group";
}

TEST_F(Kxqtsd, ServesNobodyButRootAndAdministrators) {
    RunningDaemon daemon;
    const std::string line = "touch '" + here("ran") + "'";
    EXPECT_TRUE(KxTest::asOrdinaryUser([&] { EXPECT_EQ(runThroughDaemon(line), 1); }));
    EXPECT_FALSE(fs::exists("ran"));
    EXPECT_EQ(daemon.nextLine(),
              "<4>kxqtsd: command refused to user " + std::to_string(KxTest::ordinaryUser));
}

TEST_F(Kxqtsd, ServesMembersOfTheAdministratorsGroup) {
    std::ofstream("passwd") << "root:x:0:0::/root:/bin/sh\nann:x:" << KxTest::ordinaryUser
                            << ":100::/:/bin/sh\n";
    std::ofstream("group") << "root:x:0:\nadmin:x:80:bob,ann\n";
    ASSERT_EQ(mount(here("passwd").c_str(), "/etc/passwd", nullptr, MS_BIND, nullptr), 0);
    ASSERT_EQ(mount(here("group").c_str(), "/etc/group", nullptr, MS_BIND, nullptr), 0);
    {
        const RunningDaemon daemon;
        EXPECT_TRUE(KxTest::asOrdinaryUser([] { EXPECT_EQ(runThroughDaemon("exit 2"), 512); }));
    }
    umount("/etc/group");
    umount("/etc/passwd");
}

TEST_F(Kxqtsd, APeerThatIsGoneIsNobody) {
    // The kernel shows the socket of a process that has closed it as root's.
    RunningDaemon daemon;
    ASSERT_EQ(kill(daemon.id(), SIGSTOP), 0);
    const std::string request = commandRequest(6, "touch '" + here("ran") + "'");
    const auto sendAndLeave = [&] {
        const RawConnection connection(commandPort);
        connection.send(request);
    };
    EXPECT_TRUE(KxTest::asOrdinaryUser(sendAndLeave));
    sendAndLeave();
    ASSERT_EQ(kill(daemon.id(), SIGCONT), 0);
    EXPECT_THAT(daemon.nextLine(), HasSubstr("command refused to nobody known"));
    EXPECT_EQ(runThroughDaemon("true"), 0) << "those before have been looked at";
    EXPECT_FALSE(fs::exists("ran"));
}

TEST_F(Kxqtsd, SilentAndSlowPeersHoldNobodyUp) {
    const RunningDaemon daemon;
    std::list<RawConnection> silent;
    for (int i = 0; i < 50; ++i) {
        silent.emplace_back(commandPort);
        silent.emplace_back(registryPort);
        silent.back().send(std::string(100, 'x'));
    }
    EXPECT_EQ(runThroughDaemon("true"), 0);
}

TEST_F(Kxqtsd, SilentPeersThatAreNotServedTakeNobodysPlace) {
    const RunningDaemon daemon;
    EXPECT_TRUE(KxTest::asOrdinaryUser([] {
        std::list<RawConnection> silent;
        for (int i = 0; i < 300; ++i)
            silent.emplace_back(commandPort);
        EXPECT_EQ(runThroughDaemon("true", 5), 101) << "their own have their places";
    }));
    EXPECT_EQ(runThroughDaemon("true"), 0);
}

TEST_F(Kxqtsd, ASilentPeerIsLeftAfterTenSeconds) {
    const RunningDaemon daemon;
    const RawConnection connection(commandPort);
    const auto begin = std::chrono::steady_clock::now();
    connection.send("x");
    EXPECT_EQ(connection.readToEnd(), "");
    const auto waited = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(waited, std::chrono::milliseconds(9900));
    EXPECT_LT(waited, std::chrono::seconds(15));
}

TEST_F(Kxqtsd, ServesManyAtTheSameTime) {
    const RunningDaemon daemon;
    constexpr int peers = 64;
    std::list<RawConnection> connections;
    for (int i = 0; i < peers; ++i) {
        connections.emplace_back(commandPort);
        connections.back().send(commandRequest(6, "touch '" + here("peer-" + std::to_string(i)) +
                                                      "'; while [ ! -e '" + here("go-on") +
                                                      "' ]; do sleep 0.05; done; exit 5"));
    }
    // Every one of them is under way before any may end.
    EXPECT_TRUE(becomes([] { return fs::exists("peer-0") && fs::exists("peer-63"); }));
    const std::ofstream sign("go-on");
    for (const RawConnection& connection : connections)
        EXPECT_EQ(connection.readToEnd(), words(6, 5 * 256));
}

TEST_F(Kxqtsd, PeersBeyondItsPlacesWaitForTheirTurn) {
    const RunningDaemon daemon;
    std::list<RawConnection> silent;
    for (int i = 0; i < 256; ++i)
        silent.emplace_back(commandPort);
    auto waiting = std::async(std::launch::async, [] { return runThroughDaemon("true"); });
    silent.pop_front();
    EXPECT_EQ(waiting.get(), 0);
}

TEST_F(Kxqtsd, ACommandRunsOnWithoutItsClient) {
    const RunningDaemon daemon;
    {
        const RawConnection connection(commandPort);
        connection.send(commandRequest(6, "touch '" + here("begun") + "'; while [ ! -e '" +
                                              here("left") + "' ]; do sleep 0.05; done; touch '" +
                                              here("done") + "'"));
        EXPECT_TRUE(becomes([] { return fs::exists("begun"); }));
    }
    const std::ofstream sign("left");
    EXPECT_TRUE(becomes([] { return fs::exists("done"); }));
    EXPECT_EQ(runThroughDaemon("true"), 0);
}

TEST_F(Kxqtsd, LeavesNothingOfACommandsProcessGroup) {
    const RunningDaemon daemon;
    EXPECT_EQ(runThroughDaemon("sleep 1000 & echo $! > '" + here("left") + "'"), 0);
    const std::string left = contentsOf("left");
    ASSERT_FALSE(left.empty());
    EXPECT_TRUE(becomes([&] { return !runs(left); }));
}

TEST_F(Kxqtsd, EndsACommandWhenItsTimeIsOver) {
    const RunningDaemon daemon({"--command-time=1"});
    EXPECT_EQ(runThroughDaemon("echo $$ > '" + here("shell") + "'; sleep 1000"), SIGTERM);
    EXPECT_FALSE(runs(contentsOf("shell")));
}

TEST_F(Kxqtsd, KillsACommandThatDoesNotEndWhenAsked) {
    const RunningDaemon daemon({"--command-time=1"});
    EXPECT_EQ(runThroughDaemon("trap '' TERM; while :; do sleep 1; done"), SIGKILL);
}

TEST_F(Kxqtsd, EndsWithItsCommands) {
    RunningDaemon daemon;
    auto running = std::async(std::launch::async, [&] {
        return runThroughDaemon("trap 'exit 7' TERM; touch '" + here("begun") +
                                "'; while :; do sleep 0.05; done");
    });
    EXPECT_TRUE(becomes([] { return fs::exists("begun"); }));
    EXPECT_EQ(daemon.stop(), 0);
    EXPECT_EQ(running.get(), 7 * 256);
    EXPECT_FALSE(RawConnection(commandPort).isOpen());
    EXPECT_FALSE(RawConnection(registryPort).isOpen());
}

TEST_F(Kxqtsd, ListensAtTheLoopbackAddressOnly) {
    const RunningDaemon daemon;
    for (unsigned short port : {commandPort, registryPort}) {
        EXPECT_TRUE(RawConnection(port, "127.0.0.1").isOpen());
        EXPECT_FALSE(RawConnection(port, "127.0.0.2").isOpen());
    }
}

TEST_F(Kxqtsd, ThereIsOneAtATime) {
    const RunningDaemon daemon;
    const auto second = runProgram({KXQTSD_PROGRAM, "--foreground"});
    EXPECT_EQ(second.status, 1);
    EXPECT_THAT(second.errors, HasSubstr("cannot listen at port 12316"));
    EXPECT_EQ(runProgram({KXQTSD_PROGRAM}).status, 1) << "also when it goes to the background";
}

TEST_F(Kxqtsd, CanBeStartedAnewAtOnce) {
    for (int i = 0; i < 3; ++i) {
        const RunningDaemon daemon;
        EXPECT_EQ(runThroughDaemon("true"), 0);
    }
}

TEST_F(Kxqtsd, IsReadyWhenItHasGoneToTheBackground) {
    const auto started = runProgram({KXQTSD_PROGRAM});
    EXPECT_EQ(started.status, 0);
    EXPECT_EQ(started.output + started.errors, "");
    EXPECT_EQ(runThroughDaemon("echo $PPID > '" + here("daemon") + "'"), 0);
    const pid_t daemon = std::stoi(contentsOf("daemon"));
    EXPECT_EQ(getsid(daemon), daemon);
    kill(daemon, SIGTERM);
    EXPECT_TRUE(becomes([&] { return kill(daemon, 0) != 0; }));
}

TEST_F(Kxqtsd, TellsAboutItself) {
    EXPECT_THAT(runProgram({KXQTSD_PROGRAM, "--help"}).output, HasSubstr("--foreground"));
    EXPECT_THAT(runProgram({KXQTSD_PROGRAM, "--version"}).output, StartsWith("kxqtsd (KxQts) "));
    for (const char* wrong : {"--command-time=0", "--command-time=1x", "--port=3", "operand"})
        EXPECT_EQ(runProgram({KXQTSD_PROGRAM, wrong}).status, 2) << wrong;
}
