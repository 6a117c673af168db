#pragma once

#include "platform/lock.h"

#include <KxQts/handles/registry.h>
#include <KxQts/system/process.h>
#include <KxQts/winapi/handles.h>
#include <KxQts/winapi/processes.h>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>

/// Child processes for tests.
namespace KxTest {

/// What starting a command line gave.
struct Child {
    BOOL started = FALSE;
    PROCESS_INFORMATION information{};

    [[nodiscard]] WProcess* process() const { return static_cast<WProcess*>(information.hProcess); }
};

inline Child start(std::string commandLine, const void* environment = nullptr,
                   const char* directory = nullptr) {
    STARTUPINFOA startupInfo{};
    Child child;
    child.started =
        CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0,
                       const_cast<void*>(environment), directory, &startupInfo, &child.information);
    return child;
}

/// A command line that has a shell run a script.
inline std::string shell(const std::string& script) {
    return "/bin/sh -c \"" + script + '"';
}

/// What a command line writes until its end, with a line feed for each end of a line.
inline std::string outputOf(std::string commandLine, const void* environment = nullptr,
                            const char* directory = nullptr) {
    const Child child = start(std::move(commandLine), environment, directory);
    EXPECT_TRUE(child.started);
    if (!child.started)
        return {};
    EXPECT_TRUE(WProcess::wait(child.process(), INFINITE));
    std::string output = child.process()->readAllStandardOutput().toStdString();
    EXPECT_TRUE(CloseHandle(child.process()));
    return output;
}

/// Waits until something is so that cannot be waited for in another way.
inline bool becomes(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

inline std::size_t knownProcesses() {
    const Korvex::LockGuard guard(WProcess::sCritSect);
    return WProcess::sObjectList.size();
}

} // namespace KxTest
