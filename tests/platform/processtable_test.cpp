#include "platform/linux/processtable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

using Korvex::LinuxProcessTable;
using Korvex::ProcessEntry;

namespace {

/// A folder of processes that a test writes down.
class ProcessFolder : public testing::Test {
protected:
    ~ProcessFolder() override { std::filesystem::remove_all(folder); }

    void write(int id, const std::string& file, const std::string& text) const {
        const std::filesystem::path place = std::filesystem::path(folder) / std::to_string(id);
        std::filesystem::create_directories(place);
        std::ofstream(place / file) << text;
    }
    /// A process as the kernel shows it.
    void write(int id, const std::string& name, char state, const std::string& flags) const {
        write(id, "stat",
              std::to_string(id) + " (" + name + ") " + state + " 3 1 1 0 -1 " + flags +
                  " 7 0 0 0 0 0 0 0 20 0 1 0 123456 0 0\n");
        write(id, "status", "Name:\tx\nUid:\t1000\t1001\t1002\t1003\n");
        write(id, "cgroup", "0::/user.slice/app.scope\n");
    }
    [[nodiscard]] ProcessEntry only() {
        std::vector<ProcessEntry> all;
        EXPECT_EQ(table.read(all), 0);
        EXPECT_EQ(all.size(), 1u);
        return all.empty() ? ProcessEntry() : all.front();
    }

    const std::string folder = "processes";
    LinuxProcessTable table{folder.c_str()};
};

/// A child that does nothing.
struct Child {
    Child() : id(fork()) {
        if (id == 0) {
            pause();
            _exit(0);
        }
    }
    [[nodiscard]] int end() const {
        int status = 0;
        return waitpid(id, &status, 0) == id ? status : -1;
    }
    const pid_t id;
};

} // namespace

TEST_F(ProcessFolder, TellsWhatTheKernelShows) {
    write(42, "tool", 'S', "4194304");
    const ProcessEntry process = only();
    EXPECT_EQ(process.id, 42);
    EXPECT_EQ(process.parent, 3);
    EXPECT_EQ(process.name, "tool");
    EXPECT_EQ(process.user, 1001u) << "whom it acts for";
    EXPECT_EQ(process.startTime, 123456u);
    EXPECT_FALSE(process.hasEnded || process.isKernelThread || process.isService);
}

TEST_F(ProcessFolder, NamesMayHoldAnything) {
    write(42, "a) S 1 (b\n)", 'S', "0");
    EXPECT_EQ(only().name, "a) S 1 (b\n)");
    EXPECT_EQ(only().parent, 3);
}

TEST_F(ProcessFolder, MarksTheEndedAndKernelThreads) {
    write(42, "tool", 'Z', "2129984");
    EXPECT_TRUE(only().hasEnded);
    EXPECT_TRUE(only().isKernelThread);
}

TEST_F(ProcessFolder, MarksWhatTheServiceManagerRuns) {
    write(42, "tool", 'S', "0");
    write(42, "cgroup", "1:name=systemd:/\n0::/system.slice/ssh.service\n");
    EXPECT_TRUE(only().isService);
    write(42, "cgroup", "0::/system.slice\n");
    EXPECT_TRUE(only().isService);
    write(42, "cgroup", "0::/system.slices/x\n");
    EXPECT_FALSE(only().isService);
}

TEST_F(ProcessFolder, LeavesOutWhoVanishesAndWhatIsNoProcess) {
    write(42, "tool", 'S', "0");
    std::filesystem::create_directories(folder + "/43"); // its files are gone already
    std::filesystem::create_directories(folder + "/self");
    std::filesystem::create_directories(folder + "/4x");
    write(44, "stat", "44 (cut off) S 1");
    EXPECT_EQ(only().id, 42);
}

TEST_F(ProcessFolder, IsSortedById) {
    write(300, "c", 'S', "0");
    write(20, "b", 'S', "0");
    write(1, "a", 'S', "0");
    std::vector<ProcessEntry> all;
    EXPECT_EQ(table.read(all), 0);
    EXPECT_TRUE(std::ranges::is_sorted(all, {}, &ProcessEntry::id));
    EXPECT_EQ(all.size(), 3u);
}

TEST_F(ProcessFolder, ThatIsMissingIsTheSystemsError) {
    std::vector<ProcessEntry> all(3);
    EXPECT_EQ(table.read(all), ENOENT);
    EXPECT_TRUE(all.empty());
}

TEST(ProcessTable, HasTheCaller) {
    const auto self = LinuxProcessTable().find(getpid());
    ASSERT_TRUE(self.has_value());
    EXPECT_EQ(self->name, "test_platform");
    EXPECT_EQ(self->user, geteuid());
    EXPECT_EQ(self->parent, getppid());
    EXPECT_FALSE(self->isKernelThread || self->hasEnded);
}

TEST(ProcessTable, AsksAProcessToEnd) {
    const Child child;
    const auto process = LinuxProcessTable().find(child.id);
    ASSERT_TRUE(process.has_value());
    EXPECT_EQ(Korvex::processTable().askToEnd(*process), 0);
    EXPECT_EQ(child.end(), SIGTERM);
    EXPECT_EQ(Korvex::processTable().askToEnd(*process), ESRCH) << "it is gone";
}

TEST(ProcessTable, NeverAsksAnotherProcessOfTheSameId) {
    const Child child;
    auto process = LinuxProcessTable().find(child.id);
    ASSERT_TRUE(process.has_value());
    ++process->startTime;
    EXPECT_EQ(Korvex::processTable().askToEnd(*process), ESRCH);
    EXPECT_EQ(kill(child.id, SIGKILL), 0);
    EXPECT_EQ(child.end(), SIGKILL);
}
