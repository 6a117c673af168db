// The means themselves: what is asked for fails, once, and nothing else.

#include "faults/faults.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

const KxFaults& shim() {
    return *static_cast<const KxFaults*>(dlsym(RTLD_DEFAULT, KX_FAULTS_SYMBOL));
}

void arm(KxFaultCall call, unsigned nth, int error, bool onAllThreads = false) {
    const KxFault fault{call, nth, error, onAllThreads ? 1 : 0};
    shim().arm(&fault);
}

bool opens() {
    const int file = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (file >= 0)
        close(file);
    return file >= 0;
}

} // namespace

TEST(FaultShim, LetsTheCallFailThatWasAskedFor) {
    arm(KX_FAULT_OPEN, 2, EMFILE);
    const bool first = opens();
    const bool second = opens();
    const int error = errno;
    const bool third = opens();
    EXPECT_EQ(shim().disarm(), 3U);
    EXPECT_TRUE(first);
    EXPECT_FALSE(second);
    EXPECT_EQ(error, EMFILE);
    EXPECT_TRUE(third);
    std::array<void*, 4> origin{};
    EXPECT_EQ(shim().origin(origin.data(), origin.size()), 4);
}

TEST(FaultShim, CountsOnlyWhileArmedAndWhatIsAskedFor) {
    arm(KX_FAULT_CONNECT, 1, EIO);
    EXPECT_TRUE(opens());
    EXPECT_EQ(shim().disarm(), 0U);
    EXPECT_TRUE(opens());
}

TEST(FaultShim, ShortensATransfer) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    arm(KX_FAULT_WRITE, 1, 0);
    const ssize_t done = write(ends[1], "abc", 3);
    shim().disarm();
    EXPECT_EQ(done, 1);
    close(ends[0]);
    close(ends[1]);
}

TEST(FaultShim, CountsOtherThreadsOnRequest) {
    bool opened = false;
    const auto openThere = [&] { std::thread([&] { opened = opens(); }).join(); };
    arm(KX_FAULT_OPEN, 1, EIO);
    openThere();
    EXPECT_EQ(shim().disarm(), 0U);
    EXPECT_TRUE(opened);
    arm(KX_FAULT_OPEN, 1, EIO, true);
    openThere();
    EXPECT_EQ(shim().disarm(), 1U);
    EXPECT_FALSE(opened);
}

TEST(FaultShim, LeavesForkedProcessesAlone) {
    arm(KX_FAULT_OPEN, 1, EIO);
    const pid_t child = fork();
    if (child == 0)
        _exit(opens() ? 0 : 1);
    EXPECT_EQ(shim().disarm(), 0U);
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(FaultShim, RemembersWhatWasAllocatedUntilItIsFreed) {
    shim().blocks(nullptr, 0, 1);
    arm(KX_FAULT_MEMORY, 2, ENOMEM);
    void* volatile kept = std::malloc(10);
    void* volatile refused = std::malloc(10);
    shim().disarm();
    EXPECT_NE(kept, nullptr);
    EXPECT_EQ(refused, nullptr);
    EXPECT_EQ(shim().blocks(nullptr, 0, 0), 1U);
    std::free(kept);
    EXPECT_EQ(shim().blocks(nullptr, 0, 0), 0U);
}
#endif
