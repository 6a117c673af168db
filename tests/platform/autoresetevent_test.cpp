#include "platform/autoresetevent.h"

#include <gtest/gtest.h>

#include <pthread.h>
#include <thread>

using Korvex::AutoResetEvent;
using std::chrono::milliseconds;

TEST(AutoResetEvent, TakesASignalOnce) {
    AutoResetEvent event(true);
    EXPECT_TRUE(event.tryWait());
    EXPECT_FALSE(event.tryWait());
    EXPECT_EQ(event.wait(milliseconds(0)), AutoResetEvent::Result::TimedOut);
}

TEST(AutoResetEvent, ClosingEndsWaitingNowAndLater) {
    AutoResetEvent event(false);
    std::thread waiter([&] { EXPECT_EQ(event.wait(), AutoResetEvent::Result::Closed); });
    event.close();
    waiter.join();
    EXPECT_EQ(event.wait(), AutoResetEvent::Result::Closed);
    EXPECT_EQ(event.wait(milliseconds(0)), AutoResetEvent::Result::Closed);
    event.set();
    EXPECT_EQ(event.wait(), AutoResetEvent::Result::Closed);
}

TEST(AutoResetEvent, ASignalIsNotLostWithAThreadThatIsTerminatedInItsWait) {
    for (int round = 0; round < 200; ++round) {
        AutoResetEvent event(false);
        std::thread waiter([&] { (void)event.wait(); });
        const pthread_t id = waiter.native_handle();
        std::thread signaller([&] { event.set(); });
        pthread_cancel(id);
        waiter.join();
        signaller.join();
        // Either the thread took the signal before it ended, or the signal is still there; a second
        // one is never lost.
        event.set();
        EXPECT_EQ(event.wait(milliseconds(1000)), AutoResetEvent::Result::Signalled);
        EXPECT_FALSE(event.tryWait());
    }
}
