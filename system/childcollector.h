#pragma once

#include "platform/childends.h"

#include <KxQts/system/process.h>

#include <chrono>
#include <mutex>
#include <vector>

namespace Korvex {

/// Waits for the ends of processes whose handles were closed while they ran, and frees them. What
/// they write until then is thrown away, so that none waits for a reader.
///
/// This takes one thread, which exists only while there is such a process. It blocks all signals,
/// and the end of the program waits neither for it nor for the processes.
class ChildCollector {
public:
    static ChildCollector& instance();

    /// Sees to it that so many processes can be taken over without memory being asked for: closing
    /// a handle cannot fail. Throws `std::bad_alloc`.
    void makeRoomFor(std::size_t processes);

    /// Takes a process over that nobody else works with. Any thread may call.
    void take(WProcess& process);

private:
    using Clock = std::chrono::steady_clock;

    /// A process that is waited for.
    struct Charge {
        WProcess* process;
        long long childId;
        std::chrono::milliseconds pause;
        Clock::time_point nextLook;
    };

    void startThread();
    void run();
    bool admitArrivals(std::vector<Charge>& charges, ChildEnds& ends);
    static void collect(std::vector<Charge>& charges, ChildEnds& ends);
    static bool hasEnded(Charge& charge);

    std::mutex lock;
    std::vector<WProcess*> arrivals; ///< Guarded by the lock
    ChildEnds* sleeper = nullptr;    ///< That of the thread, if it runs; guarded by the lock
    bool isRunning = false;          ///< Guarded by the lock
};

} // namespace Korvex
