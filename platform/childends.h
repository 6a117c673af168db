#pragma once

#include "platform/descriptor.h"

#include <chrono>
#include <vector>

namespace Korvex {

/// Lets a thread sleep until one of some child processes ends, without touching the child: whoever
/// started it still has to reap it.
///
/// Where the system has no descriptor to spare, ends go unnoticed and the thread merely sleeps; so
/// whoever uses this also looks from time to time.
class ChildEnds {
public:
    ChildEnds();
    ~ChildEnds();
    ChildEnds(const ChildEnds&) = delete;
    ChildEnds& operator=(const ChildEnds&) = delete;

    /// Adds a child of this process that nobody has reaped yet.
    void watch(long long processId);

    /// Ends the sleep of the thread, or its next one. Any thread may call.
    void wake();

    /// Sleeps until a child ends, \ref wake is called or the time is over.
    /// \return The process ids of children that ended; each is watched no longer.
    std::vector<long long> sleep(std::chrono::milliseconds limit);

private:
    Descriptor poll;
    Descriptor wakeUps;
    std::vector<std::pair<long long, Descriptor>> watched;
};

} // namespace Korvex
