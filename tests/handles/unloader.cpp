// Loads the library, and has it run threads that nobody waits for:
//   unloader LIBRARY exit      returns from main while threads use it
//   unloader LIBRARY unload    unloads it while threads use it, and lets them run on for a while
//   unloader LIBRARY collect   unloads it while it waits for the end of a process

#include <KxQts/winapi/handles.h>
#include <KxQts/winapi/processes.h>
#include <KxQts/winapi/threads.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <dlfcn.h>
#include <string>
#include <thread>

namespace {

struct Calls {
    decltype(&CreateThread) createThread;
    decltype(&CreateProcessA) createProcess;
    decltype(&CreateEventA) createEvent;
    decltype(&SetEvent) setEvent;
    decltype(&CloseHandle) closeHandle;
};

Calls calls;
std::atomic<int> turns{0};

DWORD workWithoutEnd(LPVOID) {
    for (;;) {
        HANDLE event = calls.createEvent(nullptr, FALSE, FALSE, nullptr);
        calls.setEvent(event);
        calls.closeHandle(event);
        ++turns;
    }
}

DWORD endSoon(LPVOID) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return 0;
}

template <class Call>
void find(void* library, const char* name, Call& call) {
    call = reinterpret_cast<Call>(dlsym(library, name));
}

void findCalls(void* library) {
    find(library, "CreateThread", calls.createThread);
    find(library, "CreateProcessA", calls.createProcess);
    find(library, "CreateEventA", calls.createEvent);
    find(library, "SetEvent", calls.setEvent);
    find(library, "CloseHandle", calls.closeHandle);
}

void startThreads() {
    for (int i = 0; i < 4; ++i) {
        HANDLE thread = calls.createThread(nullptr, 0, workWithoutEnd, nullptr, 0, nullptr);
        if (i % 2 == 0)
            calls.closeHandle(thread);
        calls.closeHandle(calls.createThread(nullptr, 0, endSoon, nullptr, 0, nullptr));
    }
}

void waitForTurns(int more) {
    const int target = turns + more;
    while (turns < target)
        std::this_thread::yield();
}

/// \return Its process id.
pid_t startProcess() {
    std::string line = "sleep 0.2";
    STARTUPINFOA startup{};
    PROCESS_INFORMATION process{};
    if (!calls.createProcess(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                             &startup, &process))
        return 0;
    calls.closeHandle(process.hProcess);
    return static_cast<pid_t>(process.dwProcessId);
}

/// Also one that has ended is there until somebody collects it.
void waitUntilCollected(pid_t process) {
    while (kill(process, 0) == 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

int collect(void* library) {
    const pid_t process = startProcess();
    dlclose(library);
    if (process <= 0)
        return 1;
    waitUntilCollected(process);
    return 0;
}

int useThreads(void* library, bool unload) {
    startThreads();
    // Some of the threads may not have come to their first instruction yet.
    if (unload)
        dlclose(library);
    waitForTurns(1000);
    return 0;
}

} // namespace

int main(int, char** arguments) {
    void* library = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    findCalls(library);
    const std::string how = arguments[2];
    return how == "collect" ? collect(library) : useThreads(library, how == "unload");
}
