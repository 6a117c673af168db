// Process handles in programs with an event loop.

#include "system/children.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QPointer>
#include <QTimer>

#include <csignal>
#include <future>
#include <memory>

using KxTest::becomes;
using KxTest::Child;
using KxTest::knownProcesses;
using KxTest::start;

namespace {

/// A program with an event loop.
class ProcessLoop : public testing::Test {
protected:
    /// Runs the loop until something is so.
    void runUntil(const std::function<bool()>& condition) {
        EXPECT_TRUE(becomes([&] {
            QTimer::singleShot(1, &loop, [&] { loop.quit(); });
            loop.exec();
            return condition();
        }));
    }

    static void end(const Child& child) {
        kill(static_cast<pid_t>(child.information.dwProcessId), SIGKILL);
    }

private:
    QCoreApplication& loop = *QCoreApplication::instance();
};

/// What gives the main thread its event dispatcher, for all tests.
class Application : public testing::Environment {
    void SetUp() override { application = std::make_unique<QCoreApplication>(count, arguments); }
    void TearDown() override { application.reset(); }

    int count = 1;
    char name[5] = "test";
    char* arguments[2] = {name, nullptr};
    std::unique_ptr<QCoreApplication> application;
};

const auto* const registered = testing::AddGlobalTestEnvironment(new Application);

/// Does something in the event loop of a thread, which ends with it. (No QThread: its own locks are
/// not seen by ThreadSanitizer.)
void inLoopThread(const std::function<void()>& task) {
    std::thread([&] {
        QEventLoop threadLoop;
        QTimer::singleShot(0, [&] {
            task();
            threadLoop.quit();
        });
        threadLoop.exec();
    }).join();
}

} // namespace

TEST_F(ProcessLoop, TheLoopNoticesTheEndOfAnOpenProcess) {
    const Child child = start("/bin/sh -c \"exit 4\"");
    int code = -1;
    QObject::connect(child.process(), &QProcess::finished, [&](int exitCode) { code = exitCode; });
    runUntil([&] { return code == 4; });
    EXPECT_EQ(knownProcesses(), 0u);
    EXPECT_FALSE(WProcess::wait(child.process(), 0));
    EXPECT_TRUE(CloseHandle(child.process()));
}

TEST_F(ProcessLoop, AProcessClosedInTheLoopIsFreedThere) {
    const Child child = start("/bin/cat");
    const QPointer<QObject> object(child.process());
    QTimer::singleShot(0, [&] {
        EXPECT_TRUE(CloseHandle(child.process()));
        end(child);
    });
    runUntil([&] { return object.isNull(); });
    EXPECT_EQ(knownProcesses(), 0u);
}

TEST_F(ProcessLoop, AProcessMayBeClosedByWhoeverIsToldOfItsEnd) {
    const Child child = start("/bin/true");
    const QPointer<QObject> object(child.process());
    QObject::connect(child.process(), &QProcess::finished,
                     [&] { EXPECT_TRUE(CloseHandle(child.process())); });
    runUntil([&] { return object.isNull(); });
}

TEST_F(ProcessLoop, ClosedByWhoeverIsToldOfItsEndWithinAWait) {
    const Child child = start("/bin/true");
    const QPointer<QObject> object(child.process());
    QObject::connect(child.process(), &QProcess::finished,
                     [&] { EXPECT_TRUE(CloseHandle(child.process())); });
    EXPECT_TRUE(WProcess::wait(child.process(), INFINITE));
    EXPECT_TRUE(object.isNull());
}

TEST_F(ProcessLoop, WithoutTheLoopRunningAClosedProcessIsCollectedAllTheSame) {
    const Child child = start("/bin/cat");
    EXPECT_TRUE(CloseHandle(child.process()));
    end(child);
    EXPECT_TRUE(becomes([] { return knownProcesses() == 0; }));
}

TEST_F(ProcessLoop, AnotherThreadMayClose) {
    const Child running = start("/bin/cat");
    const Child ended = start("/bin/true");
    EXPECT_TRUE(WProcess::wait(ended.process(), INFINITE));
    const QPointer<QObject> one(running.process());
    const QPointer<QObject> other(ended.process());
    std::thread([&] {
        EXPECT_TRUE(CloseHandle(running.process()));
        EXPECT_TRUE(CloseHandle(ended.process()));
    }).join();
    end(running);
    runUntil([&] { return one.isNull() && other.isNull(); });
    EXPECT_EQ(knownProcesses(), 0u);
}

TEST_F(ProcessLoop, AnotherThreadMayWait) {
    const Child child = start("/bin/cat");
    auto waiting =
        std::async(std::launch::async, [&] { return WProcess::wait(child.process(), 20'000); });
    auto tooShort =
        std::async(std::launch::async, [&] { return WProcess::wait(child.process(), 1); });
    EXPECT_FALSE(tooShort.get());
    end(child);
    EXPECT_TRUE(waiting.get());
    EXPECT_TRUE(CloseHandle(child.process()));
}

TEST_F(ProcessLoop, AThreadWithALoopMayEndBeforeItsClosedProcess) {
    Child child;
    inLoopThread([&] {
        child = start("/bin/cat");
        EXPECT_TRUE(CloseHandle(child.process()));
    });
    end(child);
    EXPECT_TRUE(becomes([] { return knownProcesses() == 0; }));
}

TEST_F(ProcessLoop, AThreadWithALoopMayEndBeforeItsOpenProcess) {
    Child child;
    inLoopThread([&] { child = start("/bin/cat"); });
    EXPECT_TRUE(CloseHandle(child.process()));
    end(child);
    EXPECT_TRUE(becomes([] { return knownProcesses() == 0; }));
}
