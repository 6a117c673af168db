// Libraries loaded by many threads at once, and libraries that ask for libraries while they are
// being loaded or unloaded. A test that hangs here has found a deadlock.

#include <KxQts/files/library.h>
#include <KxQts/winapi/modules.h>

#include "modules/moduleevents.h"
#include "modules/modulefolder.h"
#include "platform/lock.h"

#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <dlfcn.h>
#include <fstream>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

using Korvex::WLibrary;
using KxTest::isMapped;
using KxTest::ModuleEventsScope;
using KxTest::ModuleFolder;

namespace {

QString text(const std::string& path) {
    return QString::fromStdString(path);
}

void waitUntilAsleep(pid_t thread) {
    char state = 'R';
    while (state != 'S') {
        std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
        std::string number;
        std::string name;
        file >> number >> name >> state;
        std::this_thread::yield();
    }
}

} // namespace

TEST(LibraryThreads, OnePathIsOneLibraryForAllThreads) {
    constexpr int threads = 8;
    constexpr int rounds = 50;
    const ModuleFolder folder;
    const std::string path = folder.add("libShared.dylib", KXTEST_MODULE);
    std::atomic<int> initialised{0};
    const ModuleEventsScope events({[&] { ++initialised; }, {}});
    for (int round = 1; round <= rounds; ++round) {
        std::vector<HMODULE> modules(threads);
        std::barrier start(threads);
        std::vector<std::thread> workers;
        for (HMODULE& module : modules)
            workers.emplace_back([&] {
                start.arrive_and_wait();
                module = loadLibrary(text(path));
            });
        for (std::thread& worker : workers)
            worker.join();
        ASSERT_NE(modules.front(), nullptr);
        for (HMODULE module : modules) {
            EXPECT_EQ(module, modules.front());
            EXPECT_TRUE(FreeLibrary(module));
        }
        EXPECT_EQ(initialised, round);
        EXPECT_FALSE(isMapped(path));
    }
}

// Qt takes a library object that is made while the library is loaded for one that has loaded it: a
// load between another's last release and its unloading was not counted.
TEST(LibraryThreads, LoadingAndUnloadingOnePathSideBySideIsSafe) {
    constexpr int threads = 4;
    constexpr int rounds = 1000;
    const ModuleFolder folder;
    const std::string path = folder.add("libBusy.dylib", KXTEST_MODULE);
    std::vector<std::thread> workers;
    for (int i = 0; i < threads; ++i)
        workers.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                HMODULE module = loadLibrary(text(path));
                const FARPROC answer = GetProcAddress(module, "kxtestAnswer");
                ASSERT_NE(answer, nullptr);
                EXPECT_EQ(reinterpret_cast<int (*)()>(reinterpret_cast<void*>(answer))(), 42);
                EXPECT_TRUE(FreeLibrary(module));
            }
        });
    for (std::thread& worker : workers)
        worker.join();
    EXPECT_FALSE(isMapped(path));
    EXPECT_EQ(GetModuleHandleA(path.c_str()), nullptr);
}

TEST(LibraryThreads, InitialiserMayLoadItsOwnLibrary) {
    const ModuleFolder folder;
    const std::string path = folder.add("libSelf.dylib", KXTEST_MODULE);
    HMODULE inner = nullptr;
    FARPROC found = nullptr;
    const ModuleEventsScope events({[&] {
                                        inner = loadLibrary(text(path));
                                        found = GetProcAddress(inner, "kxtestAnswer");
                                    },
                                    {}});
    HMODULE outer = loadLibrary(text(path));
    ASSERT_NE(outer, nullptr);
    EXPECT_EQ(inner, outer);
    EXPECT_NE(found, nullptr);
    EXPECT_EQ(WLibrary::getWLibraryObject(outer)->refCount, 2);
    EXPECT_TRUE(FreeLibrary(outer));
    EXPECT_TRUE(isMapped(path));
    EXPECT_TRUE(FreeLibrary(outer));
    EXPECT_FALSE(isMapped(path));
}

TEST(LibraryThreads, InitialiserMayLoadAndFreeItsOwnLibrary) {
    const ModuleFolder folder;
    const std::string path = folder.add("libSelfFreed.dylib", KXTEST_MODULE);
    const ModuleEventsScope events(
        {[&] { EXPECT_TRUE(FreeLibrary(loadLibrary(text(path)))); }, {}});
    HMODULE module = loadLibrary(text(path));
    ASSERT_NE(module, nullptr);
    EXPECT_TRUE(isMapped(path));
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_FALSE(isMapped(path));
}

TEST(LibraryThreads, InitialiserMayWaitForAThreadThatUsesModules) {
    const ModuleFolder folder;
    const std::string other = folder.add("libOther.dylib", KXTEST_MODULE);
    const std::string path = folder.add("libWaiting.dylib", KXTEST_MODULE);
    HMODULE known = loadLibrary(text(other));
    DWORD nameLength = 0;
    const ModuleEventsScope events(
        {[&] {
             std::thread([&] {
                 EXPECT_EQ(GetModuleHandleA(other.c_str()), known);
                 EXPECT_EQ(GetModuleHandleA(path.c_str()), nullptr) << "not loaded yet";
                 char buffer[1024];
                 nameLength = GetModuleFileNameA(known, buffer, sizeof buffer);
                 EXPECT_TRUE(FreeLibrary(known)) << "not the last reference";
             }).join();
         },
         {}});
    HMODULE module = loadLibrary(text(path));
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(nameLength, other.size());
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_TRUE(FreeLibrary(known));
}

TEST(LibraryThreads, InitialiserOfALibraryLoadedBySystemCallsMayLoadWhileOthersDo) {
    // Qt takes the first thread that it sees for the main one, and never frees what it keeps of the
    // real one then.
    ASSERT_NE(QThread::currentThread(), nullptr);
    const ModuleFolder folder;
    const std::string direct = folder.add("libDirect.dylib", KXTEST_MODULE);
    const std::string wanted = folder.add("libWanted.dylib", KXTEST_MODULE);
    const std::string others = folder.add("libOthers.dylib", KXTEST_MODULE);
    HMODULE othersModule = nullptr;
    HMODULE wantedModule = nullptr;
    std::thread loader;
    std::atomic<bool> first{true};
    const ModuleEventsScope events({[&] {
                                        if (!first.exchange(false))
                                            return;
                                        // The other thread gets as far as the system's loader,
                                        // which this thread holds.
                                        std::atomic<pid_t> thread{0};
                                        loader = std::thread([&] {
                                            thread = gettid();
                                            othersModule = loadLibrary(text(others));
                                        });
                                        while (thread == 0)
                                            std::this_thread::yield();
                                        waitUntilAsleep(thread);
                                        wantedModule = loadLibrary(text(wanted));
                                    },
                                    {}});
    void* image = dlopen(direct.c_str(), RTLD_NOW);
    loader.join();
    ASSERT_NE(image, nullptr);
    EXPECT_NE(wantedModule, nullptr);
    EXPECT_NE(othersModule, nullptr);
    EXPECT_TRUE(FreeLibrary(wantedModule));
    EXPECT_TRUE(FreeLibrary(othersModule));
    dlclose(image);
}

TEST(LibraryThreads, FinaliserFindsItsLibraryGoneAndOthersThere) {
    const ModuleFolder folder;
    const std::string other = folder.add("libStays.dylib", KXTEST_MODULE);
    const std::string path = folder.add("libGoes.dylib", KXTEST_MODULE);
    HMODULE stays = loadLibrary(text(other));
    HMODULE goes = loadLibrary(text(path));
    int finalised = 0;
    const ModuleEventsScope events({{}, [&] {
                                        if (finalised++ != 0)
                                            return;
                                        EXPECT_EQ(GetModuleHandleA(path.c_str()), nullptr);
                                        EXPECT_EQ(loadLibrary(text(path)), nullptr);
                                        EXPECT_FALSE(FreeLibrary(goes));
                                        EXPECT_EQ(GetModuleHandleA(other.c_str()), stays);
                                    }});
    EXPECT_TRUE(FreeLibrary(goes));
    EXPECT_EQ(finalised, 1);
    EXPECT_FALSE(isMapped(path));
    HMODULE again = loadLibrary(text(path));
    EXPECT_NE(again, nullptr) << "it can be loaded again afterwards";
    EXPECT_TRUE(FreeLibrary(again));
    EXPECT_TRUE(FreeLibrary(stays));
    EXPECT_TRUE(FreeLibrary(stays));
}
