// Process handles in programs without an event loop: waiting, closing, and what is left behind.

#include "system/children.h"

#include <cerrno>
#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using KxTest::becomes;
using KxTest::Child;
using KxTest::knownProcesses;
using KxTest::shell;
using KxTest::start;

namespace {

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr int manyChildren = 500;
#else
constexpr int manyChildren = 10'000;
#endif

/// Waits until a child has ended, without reaping it.
void awaitEnd(const Child& child) {
    siginfo_t info{};
    EXPECT_EQ(waitid(P_PID, child.information.dwProcessId, &info, WEXITED | WNOWAIT), 0);
}

bool runs(DWORD processId) {
    return kill(static_cast<pid_t>(processId), 0) == 0;
}

void end(DWORD processId) {
    kill(static_cast<pid_t>(processId), SIGKILL);
}

} // namespace

TEST(ProcessWait, IsTrueOnceWhenTheProcessEnds) {
    const Child child = start("true");
    EXPECT_EQ(knownProcesses(), 1u);
    errno = 55;
    EXPECT_TRUE(WProcess::wait(child.process(), INFINITE));
    EXPECT_EQ(errno, 55);
    EXPECT_EQ(knownProcesses(), 0u);
    EXPECT_EQ(child.process()->refCount, 0);
    EXPECT_FALSE(WProcess::wait(child.process(), INFINITE));
    EXPECT_FALSE(WProcess::dispose(child.process()));
    EXPECT_TRUE(CloseHandle(child.process()));
}

TEST(ProcessWait, TimesOut) {
    const Child child = start("/bin/cat");
    const auto begin = std::chrono::steady_clock::now();
    errno = 55;
    EXPECT_FALSE(WProcess::wait(child.process(), 30));
    EXPECT_EQ(errno, 55);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(29));
    EXPECT_FALSE(WProcess::wait(child.process(), 0));
    child.process()->closeWriteChannel();
    EXPECT_TRUE(WProcess::wait(child.process(), 10'000));
    EXPECT_TRUE(CloseHandle(child.process()));
}

TEST(ProcessWait, RefusesWhatIsNoProcess) {
    EXPECT_FALSE(WProcess::wait(nullptr, 0));
    EXPECT_FALSE(WProcess::wait(static_cast<WProcess*>(INVALID_HANDLE_VALUE), 0));
    HANDLE event = CreateEventA(nullptr, FALSE, TRUE, nullptr);
    EXPECT_FALSE(WProcess::wait(static_cast<WProcess*>(event), 0));
    EXPECT_FALSE(WProcess::dispose(static_cast<WProcess*>(event)));
    EXPECT_FALSE(WProcess::dispose(nullptr));
    EXPECT_TRUE(CloseHandle(event));
}

TEST(ProcessWait, SeveralThreadsMayWaitAtOnce) {
    const Child child = start("/bin/cat");
    std::vector<std::thread> waiters;
    std::atomic<int> waiting{0};
    for (int i = 0; i < 4; ++i)
        waiters.emplace_back([&] {
            ++waiting;
            EXPECT_TRUE(WProcess::wait(child.process(), 20'000));
        });
    EXPECT_TRUE(becomes([&] { return waiting == 4; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(20)); // so that most of them do wait
    end(child.information.dwProcessId);
    for (std::thread& waiter : waiters)
        waiter.join();
    EXPECT_TRUE(CloseHandle(child.process()));
}

TEST(ProcessWait, TheObjectOutlivesACloseMeanwhile) {
    const Child child = start("/bin/cat");
    std::atomic<bool> waits{false};
    std::thread waiter([&] {
        waits = true;
        EXPECT_TRUE(WProcess::wait(child.process(), INFINITE));
    });
    EXPECT_TRUE(becomes([&] { return waits.load(); }));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_TRUE(CloseHandle(child.process()));
    EXPECT_TRUE(runs(child.information.dwProcessId));
    end(child.information.dwProcessId);
    waiter.join();
    EXPECT_EQ(knownProcesses(), 0u);
}

TEST(ProcessHandle, IsNotWaitedForByTheGeneralWait) {
    const Child child = start("true");
    EXPECT_EQ(WaitForSingleObject(child.process(), INFINITE), WAIT_FAILED);
    DWORD code = 77;
    errno = 0;
    EXPECT_FALSE(GetExitCodeProcess(child.process(), &code));
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(code, 77u);
    EXPECT_TRUE(WProcess::wait(child.process(), INFINITE));
    EXPECT_FALSE(GetExitCodeProcess(child.process(), &code));
    EXPECT_EQ(WaitForSingleObject(child.process(), INFINITE), WAIT_FAILED);
    EXPECT_TRUE(CloseHandle(child.process()));
}

TEST(ProcessHandle, WithTheOtherTagItIsWaitedFor) {
    const Child child = start("/bin/cat");
    child.process()->setObjectName(QStringLiteral("QProcess"));
    EXPECT_EQ(WaitForSingleObject(child.process(), 0), WAIT_TIMEOUT);
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeProcess(child.process(), &code));
    EXPECT_EQ(code, 259u);
    EXPECT_FALSE(GetExitCodeProcess(child.process(), nullptr));
    EXPECT_EQ(errno, 22);
    errno = 0;
    EXPECT_FALSE(CloseHandle(child.process()));
    EXPECT_EQ(errno, 22);
    child.process()->closeWriteChannel();
    EXPECT_EQ(WaitForSingleObject(child.process(), 20'000), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeProcess(child.process(), &code));
    EXPECT_EQ(code, 0u);
    child.process()->setObjectName(WProcess::sObjName);
    EXPECT_TRUE(CloseHandle(child.process()));
}

TEST(ProcessHandle, APlainProcessObjectIsNeverSeenToEnd) {
    QProcess process;
    process.setObjectName(QStringLiteral("QProcess"));
    process.startCommand(QStringLiteral("/bin/sh -c \"exit 9\""));
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(WaitForSingleObject(&process, 0), WAIT_TIMEOUT);
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeProcess(&process, &code));
    EXPECT_EQ(code, 9u);
    EXPECT_FALSE(GetExitCodeProcess(nullptr, &code));
}

TEST(ProcessClose, NoticesAndReapsAProcessThatHasEnded) {
    const Child child = start("true");
    awaitEnd(child);
    EXPECT_EQ(knownProcesses(), 1u) << "nobody has looked yet";
    EXPECT_TRUE(CloseHandle(child.process()));
    EXPECT_FALSE(runs(child.information.dwProcessId));
    EXPECT_EQ(knownProcesses(), 0u);
    errno = 0;
    EXPECT_FALSE(CloseHandle(child.process()));
    EXPECT_EQ(errno, 22);
}

TEST(ProcessClose, ARunningProcessGoesOnAndIsKnownUntilItEnds) {
    const Child child = start("/bin/cat");
    EXPECT_TRUE(CloseHandle(child.process()));
    EXPECT_TRUE(runs(child.information.dwProcessId));
    EXPECT_EQ(knownProcesses(), 1u);
    EXPECT_FALSE(CloseHandle(child.process())) << "there is no reference left";
    EXPECT_FALSE(WProcess::wait(child.process(), 0));
    end(child.information.dwProcessId);
    EXPECT_TRUE(becomes([] { return knownProcesses() == 0; }));
    EXPECT_TRUE(becomes([&] { return !runs(child.information.dwProcessId); }));
}

TEST(ProcessClose, AClosedProcessCanBeWaitedForStill) {
    const Child child = start("/bin/cat");
    EXPECT_TRUE(CloseHandle(child.process()));
    std::thread killer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100)); // so that the wait has begun
        end(child.information.dwProcessId);
    });
    EXPECT_TRUE(WProcess::wait(child.process(), 20'000));
    killer.join();
    EXPECT_TRUE(becomes([] { return knownProcesses() == 0; }));
}

TEST(ProcessClose, AnyThreadMayClose) {
    const Child running = start("/bin/cat");
    const Child ended = start("true");
    awaitEnd(ended);
    std::thread([&] {
        EXPECT_TRUE(CloseHandle(running.process()));
        EXPECT_TRUE(CloseHandle(ended.process()));
    }).join();
    EXPECT_FALSE(runs(ended.information.dwProcessId));
    end(running.information.dwProcessId);
    EXPECT_TRUE(becomes([] { return knownProcesses() == 0; }));
}

TEST(ProcessClose, TheThreadThatMadeItMayBeGone) {
    Child child;
    std::thread([&] { child = start("/bin/cat"); }).join();
    EXPECT_TRUE(CloseHandle(child.process()));
    end(child.information.dwProcessId);
    EXPECT_TRUE(becomes([] { return knownProcesses() == 0; }));
}

TEST(ProcessClose, WhatIsWrittenAfterwardsHoldsNobodyUp) {
    const Child child = start(shell("head -c 5000000 /dev/zero; echo done >&2"));
    EXPECT_TRUE(CloseHandle(child.process()));
    EXPECT_TRUE(becomes([] { return knownProcesses() == 0; }));
}

TEST(ProcessClose, ManyChildrenLeaveNothingBehind) {
    for (int i = 0; i < manyChildren; ++i) {
        const Child child = start("/bin/true");
        ASSERT_TRUE(child.started) << i;
        ASSERT_TRUE(CloseHandle(child.process()));
    }
    EXPECT_TRUE(becomes([] { return knownProcesses() == 0; }));
}

TEST(ProcessClose, ChildrenOfOthersAreNotReaped) {
    pid_t own = 0;
    char name[] = "/bin/true";
    char* const arguments[] = {name, nullptr};
    ASSERT_EQ(posix_spawn(&own, name, nullptr, nullptr, arguments, environ), 0);
    for (int i = 0; i < 20; ++i)
        EXPECT_TRUE(CloseHandle(start("/bin/true").process()));
    EXPECT_TRUE(becomes([] { return knownProcesses() == 0; }));
    int status = -1;
    EXPECT_EQ(waitpid(own, &status, 0), own);
    EXPECT_EQ(status, 0);
}

TEST(ProcessClose, SignalHandlersStayAsTheProgramSetThem) {
    struct sigaction before {};
    sigaction(SIGCHLD, nullptr, &before);
    EXPECT_TRUE(CloseHandle(start("/bin/true").process()));
    EXPECT_TRUE(becomes([] { return knownProcesses() == 0; }));
    struct sigaction after {};
    sigaction(SIGCHLD, nullptr, &after);
    EXPECT_EQ(before.sa_handler, after.sa_handler);
}

TEST(ProcessClose, TheEndOfTheProgramNeitherWaitsForChildrenNorEndsThem) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t program = fork();
    if (program == 0) {
        const Child child = start("/bin/sleep 1000");
        CloseHandle(child.process());
        const DWORD id = child.information.dwProcessId;
        (void)!write(ends[1], &id, sizeof id);
        std::exit(0);
    }
    close(ends[1]);
    DWORD child = 0;
    EXPECT_EQ(read(ends[0], &child, sizeof child), static_cast<ssize_t>(sizeof child));
    close(ends[0]);
    int status = -1;
    EXPECT_EQ(waitpid(program, &status, 0), program);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(runs(child));
    end(child);
}

TEST(WProcess, AnObjectThatIsNotStartedIsUnknown) {
    auto* process = new WProcess({}, {});
    EXPECT_FALSE(WProcess::wait(process, 0));
    EXPECT_FALSE(WProcess::dispose(process));
    delete process;
}

TEST(WProcess, CanBeDrivenByItsClient) {
    auto* process = new WProcess({QStringLiteral("X=1")}, QStringLiteral("/"));
    EXPECT_EQ(process->invoke(QStringLiteral("/bin/sh -c \"echo $X; pwd; cat\"")), 0);
    EXPECT_TRUE(process->waitForStarted());
    EXPECT_EQ(process->write("in"), 2);
    process->closeWriteChannel();
    EXPECT_TRUE(process->waitForFinished());
    EXPECT_EQ(process->readAllStandardOutput(), "1\n/\nin");
    EXPECT_FALSE(WProcess::wait(process, 0)) << "the end was noticed before";
    EXPECT_TRUE(CloseHandle(process));
}

TEST(WProcess, EmitsAndNotesWhatItsClientTells) {
    WProcess process({}, {});
    int starts = 0;
    int code = 0;
    QObject::connect(&process, &QProcess::started, [&] { ++starts; });
    QObject::connect(&process, &QProcess::finished, [&](int exitCode) { code = exitCode; });
    process.started();
    EXPECT_EQ(starts, 1);
    process.finished(5, QProcess::NormalExit);
    EXPECT_EQ(code, 5);
    const Korvex::LockGuard guard(WProcess::sCritSect);
    EXPECT_TRUE(process.hasStarted);
    EXPECT_TRUE(process.hasFinished);
    EXPECT_EQ(process.refCount, 0);
}

TEST(WProcess, ThatIsSaidToHaveFinishedIsCollectedWhenItEnds) {
    const Child child = start("/bin/cat");
    child.process()->finished(0, QProcess::NormalExit);
    EXPECT_EQ(child.process()->refCount, 0) << "one reference was given up";
    EXPECT_EQ(knownProcesses(), 0u);
    EXPECT_FALSE(WProcess::wait(child.process(), 0));
    child.process()->closeWriteChannel();
    EXPECT_TRUE(child.process()->waitForFinished());
    EXPECT_EQ(child.process()->refCount, 0) << "and no other at the end";
    EXPECT_TRUE(CloseHandle(child.process()));
}

TEST(WProcess, ThatIsSaidToHaveFinishedMayBeClosedWhileItRuns) {
    const Child child = start("/bin/cat");
    child.process()->finished(0, QProcess::NormalExit);
    EXPECT_TRUE(CloseHandle(child.process()));
    EXPECT_TRUE(runs(child.information.dwProcessId));
    end(child.information.dwProcessId);
    EXPECT_TRUE(becomes([&] { return !runs(child.information.dwProcessId); }));
}

TEST(WProcess, AFailedInvocationIsFreedByDisposing) {
    auto* process = new WProcess({}, {});
    EXPECT_EQ(process->invoke(QStringLiteral("/no/such/program")), 14);
    EXPECT_EQ(knownProcesses(), 1u);
    EXPECT_TRUE(WProcess::dispose(process));
    EXPECT_EQ(knownProcesses(), 0u);
}
