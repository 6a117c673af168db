#include "platform/autoresetevent.h"
#include "platform/diskarbiter.h"
#include "platform/referencecounted.h"

#include <KxQts/disk/diskobjects.h>

#include <cstdio>
#include <mutex>
#include <set>

namespace Korvex {

namespace {

class MountWait;

/// Those who wait now. A waiting thread can be terminated: its record is gone then when the
/// arbiter calls back.
struct LiveWaits {
    std::mutex mutex;
    std::set<const void*> records;
};

LiveWaits& liveWaits() {
    static auto* const waits = new LiveWaits; // never destroyed: an arbiter may call back late
    return *waits;
}

/// What a synchronous call waits with, on its stack.
class MountWait {
public:
    MountWait() {
        const std::lock_guard guard(liveWaits().mutex);
        liveWaits().records.insert(this);
    }
    ~MountWait() {
        const std::lock_guard guard(liveWaits().mutex);
        liveWaits().records.erase(this);
    }
    MountWait(const MountWait&) = delete;
    MountWait& operator=(const MountWait&) = delete;

    /// Ends the waiting of a record, if it still waits. How it went is not kept: callers look at
    /// the volume, whose state tells it.
    static void end(void* context) {
        const std::lock_guard guard(liveWaits().mutex);
        if (!liveWaits().records.contains(context))
            return;
        auto& wait = *static_cast<MountWait*>(context);
        wait.result = 0;
        wait.event.set();
    }

    /// Waits and tells the user.
    int outcome() {
        const bool succeeded = event.wait() == AutoResetEvent::Result::Signalled;
        const int told = succeeded ? result : -1;
        // The same text whatever was waited for, which programs look for in the output.
        std::printf("--> mount result %d status %u!\n", succeeded ? 1 : 0,
                    static_cast<unsigned>(told));
        return told;
    }

private:
    AutoResetEvent event{false};
    int result = -1; // until it is over
};

} // namespace

void callback(__DADisk*, const __DADissenter*, void* context) {
    std::puts("***** EVENT!");
    if (context)
        MountWait::end(context);
}

WDiskManager::~WDiskManager() {
    disk->release();
    session->release();
}

int WDiskManager::retain() {
    return ++refCount;
}

int WDiskManager::release() {
    return giveUpReference(this);
}

int WDiskManager::unmount(unsigned long options) {
    MountWait wait;
    disk->unclaim();
    disk->unmount(options, callback, &wait);
    std::puts("--> unmountWait!");
    return wait.outcome();
}

int WDiskManager::mount(unsigned long options, const __CFURL* path) {
    MountWait wait;
    disk->mount(path, options, callback, &wait);
    std::puts("--> mountWait!");
    return wait.outcome();
}

void WDiskManager::unmount(DADiskCallback callback, void* context, unsigned long options) {
    disk->unmount(options, callback, context);
}

void WDiskManager::mount(DADiskCallback callback, void* context, unsigned long options,
                         const __CFURL* path) {
    disk->mount(path, options, callback, context);
}

} // namespace Korvex

DAReturn DADissenterGetStatus(DADissenterRef dissenter) {
    return dissenter ? dissenter->status : DAReturn{kDAReturnSuccess};
}
