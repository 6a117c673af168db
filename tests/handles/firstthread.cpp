// The first Qt thread of a process makes event machinery that stays to the end, with one
// descriptor. It is made before the first test, so that no test seems to have left it behind.

#include "common/resources.h"

#include <gtest/gtest.h>

#include <QThread>

#include <thread>

namespace {

class IdleThread : public QThread {
    void run() override {}
};

class FirstThread : public testing::Environment {
    void SetUp() override {
        const std::size_t before = KxTest::Resources::now().threads.size();
        IdleThread thread;
        thread.start();
        thread.wait();
        while (KxTest::Resources::now().threads.size() > before)
            std::this_thread::yield(); // it is still on its way out
    }
};

[[maybe_unused]] const testing::Environment* const firstThread =
    testing::AddGlobalTestEnvironment(new FirstThread);

} // namespace
