// Real processes that are asked to quit.

#include "common/resources.h"
#include "session/ownprocesses.h"

#include <KxQts/system/sessioncontrol.h>

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <string>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

class Quit : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(KxTest::isOnItsOwn());
        fs::copy_file("/bin/sleep", name);
    }
    void TearDown() override { fs::remove(name); }

    /// Starts the program; returns when it runs under its name.
    pid_t start() const {
        std::array<int, 2> started{};
        EXPECT_EQ(pipe2(started.data(), O_CLOEXEC), 0);
        const pid_t child = fork();
        if (child == 0) {
            execl(name, name, "1000", nullptr);
            _exit(127);
        }
        close(started[1]);
        char none = 0;
        EXPECT_EQ(read(started[0], &none, 1), 0); // closed by the program's start
        close(started[0]);
        return child;
    }

    /// Starts it as a child of someone who has ended.
    pid_t startAsOrphan() const {
        std::array<int, 2> told{};
        EXPECT_EQ(pipe2(told.data(), O_CLOEXEC), 0);
        const pid_t child = fork();
        if (child == 0) {
            const pid_t running = start();
            _exit(write(told[1], &running, sizeof running) == sizeof running ? 0 : 1);
        }
        pid_t running = 0;
        EXPECT_EQ(read(told[0], &running, sizeof running), static_cast<ssize_t>(sizeof running));
        close(told[0]);
        close(told[1]);
        waitpid(child, nullptr, 0);
        return running;
    }

    static constexpr const char* name = "./QuitMeTool";
};

/// Whether a process has ended, within a time that is long enough for every machine.
bool ends(pid_t process) {
    const int descriptor = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    if (descriptor < 0)
        return true;
    pollfd wait{descriptor, POLLIN, 0};
    const bool ended = poll(&wait, 1, 30000) == 1;
    close(descriptor);
    return ended;
}

} // namespace

TEST_F(Quit, AsksAProcessOfOthersAndDoesNotWait) {
    const pid_t running = startAsOrphan();
    testing::internal::CaptureStdout();
    EXPECT_EQ(forceApplicationQuit("quitmetool.app"), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_TRUE(ends(running));
}

TEST_F(Quit, WaitsForAChildAndTellsHowItEnded) {
    const pid_t child = start();
    testing::internal::CaptureStdout();
    EXPECT_EQ(forceApplicationQuit("QuitMe"), 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Wait for <QuitMe> termination: pid " +
                                                          std::to_string(child) +
                                                          ", status 15, errno 0.\n");
    EXPECT_EQ(kill(child, 0), -1) << "it was collected";
}

TEST_F(Quit, FindsNobodyElse) {
    EXPECT_EQ(forceApplicationQuit("QuitMeTool"), -600);
    EXPECT_EQ(forceApplicationQuit(""), -600);
}

TEST_F(Quit, NeverAsksTheCallerOrTheFirstProcess) {
    EXPECT_EQ(forceApplicationQuit("test_session"), -600) << "its own name";
    EXPECT_EQ(forceApplicationQuit("sh"), -600) << "process 1 here";
}
