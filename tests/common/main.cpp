// The main program of every test executable: a world of its own for the tests, and a check behind
// each test that it left nothing behind.

#include "common/resources.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <thread>

namespace {

/// Compares what the process holds before and after each test. What ends on its own, such as a
/// thread that is not joined, gets a moment to do so.
class LeakCheck : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override { before = KxTest::Resources::now(); }

    void OnTestEnd(const testing::TestInfo&) override {
        constexpr auto patience = std::chrono::seconds(5);
        const auto deadline = std::chrono::steady_clock::now() + patience;
        std::string difference;
        while (!(difference = before.differenceTo(KxTest::Resources::now())).empty() &&
               std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        if (!difference.empty())
            ADD_FAILURE() << difference;
    }

    KxTest::Resources before;
};

/// A folder that is gone when the program ends.
class ScratchFolder {
public:
    ScratchFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "kxqts-test-XXXXXX").string();
        path = mkdtemp(name.data());
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::filesystem::path path;
};

/// Where the rights suffice, semaphores and mounts are this process's own, so that test programs
/// may run side by side.
void leaveSharedNamespaces() {
    if (unshare(CLONE_NEWIPC | CLONE_NEWNS) != 0)
        return;
    mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
    mount("none", "/dev/shm", "tmpfs", 0, nullptr);
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    leaveSharedNamespaces();
    const ScratchFolder scratch;
    setenv("HOME", (scratch.path / "home").c_str(), 1);
    setenv("KXQTS_ROOT", (scratch.path / "root").c_str(), 1);
    std::filesystem::create_directory(scratch.path / "home");
    std::filesystem::create_directory(scratch.path / "root");
    std::filesystem::current_path(scratch.path);
    std::thread([] {}).join(); // a sanitizer starts a thread of its own beside the first one
    testing::UnitTest::GetInstance()->listeners().Append(new LeakCheck);
    const int result = RUN_ALL_TESTS();
    std::filesystem::current_path("/");
    return result;
}
