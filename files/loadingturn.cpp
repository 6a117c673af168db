#include "files/loadingturn.h"

#include <map>

namespace Korvex {

struct LoadingTurn::Queue {
    int threads = 0; ///< Those that have a turn or wait for one; guarded by the lock of all queues
    Lock turn;
    bool unloading KXQTS_GUARDED_BY(turn) = false;
};

namespace {

constinit Lock queuesLock;

/// The queues that are in use. Never deleted: libraries are unloaded to the very end of a process.
std::map<QString, LoadingTurn::Queue>& queues() KXQTS_REQUIRES(queuesLock) {
    static auto* const all = new std::map<QString, LoadingTurn::Queue>;
    return *all;
}

LoadingTurn::Queue& join(const QString& path) {
    const LockGuard guard(queuesLock);
    LoadingTurn::Queue& queue = queues()[path];
    ++queue.threads;
    return queue;
}

void leave(const QString& path) {
    const LockGuard guard(queuesLock);
    const auto queue = queues().find(path);
    if (--queue->second.threads == 0)
        queues().erase(queue);
}

} // namespace

LoadingTurn::LoadingTurn(const QString& toLoad)
    : path(toLoad), queue(join(toLoad)), unloadingBefore((queue.turn.lock(), queue.unloading)) {}

LoadingTurn::~LoadingTurn() {
    queue.unloading = unloadingBefore;
    queue.turn.unlock();
    leave(path);
}

void LoadingTurn::startUnloading() KXQTS_UNCHECKED_LOCKING {
    queue.unloading = true;
}

bool LoadingTurn::isUnloading() const KXQTS_UNCHECKED_LOCKING {
    return queue.unloading;
}

} // namespace Korvex
