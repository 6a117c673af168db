#include "platform/linux/filepreferences.h"

#include "common/objects.h"
#include "common/termination.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <pthread.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace KxTest;
using Korvex::FilePreferences;
using Korvex::PreferenceDomain;
using Korvex::PropertyList::Editor;
using Korvex::PropertyList::Node;
using Korvex::PropertyList::none;
using Korvex::PropertyList::Tree;
using Scope = PreferenceDomain::Scope;
namespace fs = std::filesystem;

// What other processes, their deaths, full disks and planted links do to a domain.

namespace {

/// When the process is to die: that many of the calls below from now. Never for 0.
int callsLeft = 0;
/// What the next random bytes are, to plant something under the name that they make.
bool randomIsKnown = false;

void countCall() {
    if (callsLeft > 0 && --callsLeft == 0)
        kill(getpid(), SIGKILL);
}

} // namespace

// The calls that change something on the way to a stored value, each with a moment before it in
// which the process may die, the writing of the file with many.
extern "C" ssize_t writev(int descriptor, const iovec* parts, int count) {
    countCall();
    if (callsLeft > 0) { // in pieces
        const iovec& part = parts[parts[0].iov_len == 0 ? 1 : 0];
        return write(descriptor, part.iov_base, (part.iov_len + 2) / 3);
    }
    return syscall(SYS_writev, descriptor, parts, count);
}
extern "C" int renameat(int from, const char* name, int to, const char* place) {
    countCall();
    const auto result = static_cast<int>(syscall(SYS_renameat2, from, name, to, place, 0));
    countCall();
    return result;
}
extern "C" int fchmod(int descriptor, mode_t mode) {
    countCall();
    return static_cast<int>(syscall(SYS_fchmod, descriptor, mode));
}
extern "C" ssize_t getrandom(void* buffer, size_t length, unsigned flags) {
    countCall();
    if (!randomIsKnown)
        return syscall(SYS_getrandom, buffer, length, flags);
    std::fill_n(static_cast<char*>(buffer), length, '\x11');
    return static_cast<ssize_t>(length);
}

namespace {

class PreferenceSafety : public testing::Test {
protected:
    PreferenceSafety() { fs::remove_all(root / "Library"); }
    ~PreferenceSafety() override { fs::remove_all(root / "Library"); }

    /// Runs a function in a child process. \return How the child ended, as `waitpid` tells it.
    static int inChild(const std::function<bool()>& function) {
        const pid_t child = start(function);
        int status = -1;
        waitpid(child, &status, 0);
        return status;
    }

    static pid_t start(const std::function<bool()>& function) {
        const pid_t child = fork();
        if (child == 0)
            _exit(function() ? 0 : 1);
        return child;
    }

    static bool endedWell(int status) { return WIFEXITED(status) && WEXITSTATUS(status) == 0; }

    static std::string contents(const fs::path& path) {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    bool set(const QString& name, long long value) {
        return storage.setValue(domain, name, number(value).get());
    }
    long long get(const QString& name) {
        FilePreferences fresh;
        const Object found(fresh.copyValue(domain, name));
        long long value = -1;
        CFNumberGetValue(static_cast<CFNumberRef>(found.get()), kCFNumberLongLongType, &value);
        return value;
    }

    const fs::path root = std::getenv("KXQTS_ROOT");
    const fs::path folder = root / "Library/Preferences";
    const fs::path file = folder / "com.example.safe.plist";
    const PreferenceDomain domain{"com.example.safe", Scope::AnyUser};
    FilePreferences storage{FilePreferences::PowerLoss::Unsafe};
};

bool addBelow(FilePreferences& storage, const PreferenceDomain& domain, const QString& name) {
    return storage.change(domain, [&](Editor& editor) {
        const Node shared = editor.makeDictionary(editor.top(), u"shared");
        return shared != none && editor.set(shared, name, number(1).get());
    });
}

} // namespace

TEST_F(PreferenceSafety, EveryAcknowledgedWriteOfManyProcessesIsThere) {
    constexpr int processes = 4;
    constexpr int values = 60;
    std::vector<pid_t> children;
    for (int process = 0; process < processes; ++process)
        children.push_back(start([&] {
            bool all = true;
            for (int i = 0; i < values; ++i) {
                const QString name = QStringLiteral("%1-%2").arg(process).arg(i);
                all = set(name, i) && addBelow(storage, domain, name) && all;
            }
            return all;
        }));
    // A reader beside them always finds a whole file, in which nothing is lost again.
    std::size_t seen = 0;
    for (int i = 0; i < 200; ++i) {
        EXPECT_TRUE(storage.read(domain, [&](const Tree& tree) {
            const std::size_t now = tree.count(tree.member(tree.top(), u"shared"));
            EXPECT_GE(now, seen);
            seen = now;
        }));
    }
    for (const pid_t child : children) {
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_TRUE(endedWell(status));
    }
    storage.read(domain, [&](const Tree& tree) {
        EXPECT_EQ(tree.count(tree.top()), std::size_t(processes * values + 1));
        EXPECT_EQ(tree.count(tree.member(tree.top(), u"shared")), std::size_t(processes * values));
    });
}

TEST_F(PreferenceSafety, AProcessKilledAtAnyStepLeavesAWholeFile) {
    ASSERT_TRUE(set("kept", 42));
    ASSERT_TRUE(set("value", 0));
    bool finished = false;
    int steps = 0;
    while (!finished) {
        ++steps;
        const long long before = get("value");
        const int status = inChild([&] {
            callsLeft = steps;
            const bool done = set("value", 1000 + steps);
            callsLeft = 0;
            return done;
        });
        finished = endedWell(status);
        ASSERT_TRUE(finished || (WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL));
        const long long now = get("value");
        EXPECT_TRUE(now == before || now == 1000 + steps) << steps;
        EXPECT_EQ(get("kept"), 42);
        // And the domain is not locked for ever.
        ASSERT_TRUE(set("after", steps));
        ASSERT_LT(steps, 1000);
    }
    EXPECT_GT(steps, 6) << "every step was one at which it died";
    EXPECT_EQ(get("value"), 1000 + steps);
    FilePreferences next;
    ASSERT_TRUE(next.setValue(domain, u"after", number(0).get()));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 2)
        << "the file and its lock; what the dead left is gone";
}

TEST_F(PreferenceSafety, AcknowledgedWritesOfAKilledProcessAreThere) {
    for (int round = 0; round < 15; ++round) {
        std::array<int, 2> pipe{};
        ASSERT_EQ(pipe2(pipe.data(), O_CLOEXEC), 0);
        const pid_t child = start([&] {
            for (int i = 0;; ++i) {
                if (!set("counter", i) || write(pipe[1], &i, sizeof i) != sizeof i)
                    return false;
            }
        });
        close(pipe[1]);
        int acknowledged = -1;
        for (int i = 0; i < 5 + round * 3; ++i)
            ASSERT_EQ(read(pipe[0], &acknowledged, sizeof acknowledged), ssize_t(sizeof(int)));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        while (read(pipe[0], &acknowledged, sizeof acknowledged) == sizeof acknowledged)
            continue;
        close(pipe[0]);
        EXPECT_GE(get("counter"), acknowledged);
        EXPECT_LE(get("counter"), acknowledged + 1);
    }
}

TEST_F(PreferenceSafety, AFullDiskFailsAndLeavesTheOldFile) {
    fs::create_directories(folder);
    ASSERT_EQ(mount("none", folder.c_str(), "tmpfs", 0, "size=64k"), 0)
        << "needs the right to mount";
    ASSERT_TRUE(set("kept", 42));
    const std::string before = contents(file);
    const Object large = data(QByteArray(100000, 'x'));
    EXPECT_FALSE(storage.setValue(domain, u"large", large.get()));
    EXPECT_EQ(contents(file), before);
    EXPECT_EQ(get("kept"), 42);
    EXPECT_FALSE(Object(storage.copyValue(domain, u"large"))) << "nor in memory";
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 2)
        << "and no half file";
    EXPECT_TRUE(set("small", 1)) << "what has room is written";
    EXPECT_EQ(umount(folder.c_str()), 0);
}

TEST_F(PreferenceSafety, WithoutTheRightToWriteAWriteFailsAndAReadDoesNot) {
    ASSERT_TRUE(set("kept", 42));
    fs::permissions(root.parent_path(), fs::perms(0755));
    const std::string before = contents(file);
    const int status = inChild([&] {
        constexpr uid_t nobody = 65534;
        if (geteuid() == 0 && (setgid(nobody) != 0 || setuid(nobody) != 0))
            return false;
        if (geteuid() != nobody)
            fs::permissions(folder, fs::perms(0555));
        FilePreferences own;
        return own.synchronize(domain) && get("kept") == 42 &&
               !own.setValue(domain, u"kept", number(1).get()) &&
               !own.removeValue(domain, u"kept") &&
               !own.setValue({"com.example.new", Scope::AnyUser}, u"a", number(1).get()) &&
               get("kept") == 42;
    });
    EXPECT_TRUE(endedWell(status));
    fs::permissions(folder, fs::perms(0755));
    EXPECT_EQ(contents(file), before);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 2);
}

TEST_F(PreferenceSafety, AUsersDomainIsReadableByThatUserOnly) {
    const PreferenceDomain own{"com.example.safe", Scope::CurrentUser};
    ASSERT_TRUE(storage.setValue(own, u"a", number(1).get()));
    fs::permissions(root.parent_path(), fs::perms(0755));
    const fs::path home = std::getenv("HOME");
    // Also where the folders themselves let everyone in.
    fs::permissions(home / "Library", fs::perms(0755));
    fs::permissions(home / "Library/Preferences", fs::perms(0755));
    if (geteuid() == 0) {
        const int status = inChild([&] {
            constexpr uid_t nobody = 65534;
            FilePreferences other;
            return setgid(nobody) == 0 && setuid(nobody) == 0 && !other.synchronize(own) &&
                   !Object(other.copyValue(own, u"a"));
        });
        EXPECT_TRUE(endedWell(status));
    }
    fs::remove_all(home / "Library");
}

TEST_F(PreferenceSafety, APlantedLinkIsNotFollowed) {
    ASSERT_TRUE(set("kept", 42));
    const fs::path victim = root / "victim";
    std::ofstream(victim) << "precious";
    const Korvex::DomainFile names(file.string().c_str(), Scope::AnyUser);
    const fs::path planted = folder / (names.temporaryName + "1111111111111111").toStdString();
    randomIsKnown = true;
    ASSERT_TRUE(set("kept", 43)) << "the name is free";
    fs::create_symlink(victim, planted);
    EXPECT_FALSE(set("kept", 44));
    fs::remove(planted);
    fs::create_symlink(root / "nowhere", planted);
    EXPECT_FALSE(set("kept", 44));
    randomIsKnown = false;
    EXPECT_EQ(contents(victim), "precious");
    EXPECT_FALSE(fs::exists(root / "nowhere"));
    EXPECT_EQ(get("kept"), 43);
    EXPECT_TRUE(set("kept", 45)) << "no name is taken twice";
    fs::remove(victim);
}

TEST_F(PreferenceSafety, APlantedLockIsNotFollowed) {
    fs::create_directories(folder);
    const fs::path planted = folder / ".com.example.safe.lock";
    fs::create_symlink(root / "nowhere", planted);
    EXPECT_FALSE(set("a", 1));
    EXPECT_FALSE(fs::exists(root / "nowhere"));
    fs::remove(planted);
    ASSERT_EQ(mkfifo(planted.c_str(), 0600), 0);
    (void)set("a", 1); // it may lock a pipe as well as a file; it may not wait for a reader
    fs::remove(planted);
    EXPECT_TRUE(set("a", 2));
}

TEST_F(PreferenceSafety, AThreadThatIsTerminatedLeavesTheDomainUsable) {
    ASSERT_TRUE(set("kept", 42));
    std::atomic<int> written{0};
    for (int round = 0; round < 60; ++round) {
        const int before = written;
        std::thread writer([&] {
            const TerminatedThread ends;
            for (int i = 0;; ++i) {
                if (storage.setValue(domain, u"value", number(i).get()))
                    ++written;
                pthread_testcancel();
            }
        });
        while (written < before + 1 + round % 3)
            std::this_thread::yield();
        pthread_cancel(writer.native_handle());
        writer.join();
        ASSERT_TRUE(set("after", round));
        ASSERT_EQ(get("kept"), 42);
        ASSERT_EQ(get("after"), round);
    }
}

TEST_F(PreferenceSafety, AChildThatWasForkedMeanwhileDoesNotKeepTheLock) {
    pid_t child = 0;
    std::array<int, 2> pipe{};
    ASSERT_EQ(pipe2(pipe.data(), O_CLOEXEC), 0);
    ASSERT_TRUE(storage.change(domain, [&](Editor& editor) {
        child = start([&] {
            char byte = 0;
            close(pipe[1]);
            return read(pipe[0], &byte, 1) == 0; // until the parent has finished
        });
        return editor.set(editor.top(), u"a", number(1).get());
    }));
    FilePreferences other;
    EXPECT_TRUE(other.setValue(domain, u"a", number(2).get())) << "no wait";
    close(pipe[0]);
    close(pipe[1]);
    int status = 0;
    waitpid(child, &status, 0);
}
