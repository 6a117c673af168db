#pragma once

#include "platform/lock.h"

#include <QString>

namespace Korvex {

/// A thread's turn at loading or unloading the library of a path. Others that want the same path
/// wait for theirs.
///
/// No lock but this is held while the loader works. It runs initialisers and finalisers with a lock
/// of its own, and these ask about libraries themselves or wait for threads that do: a lock that
/// all those calls needed would close the circle. Only a thread inside the loader that wants just
/// the path which another thread is waiting to load would still do so.
class LoadingTurn {
public:
    /// Waits for the turn. Throws `std::bad_alloc` when there is no memory.
    explicit LoadingTurn(const QString& toLoad) KXQTS_UNCHECKED_LOCKING;
    ~LoadingTurn() KXQTS_UNCHECKED_LOCKING;

    LoadingTurn(const LoadingTurn&) = delete;
    LoadingTurn& operator=(const LoadingTurn&) = delete;

    /// Says that the library is being unloaded from now on.
    void startUnloading();

    /// Whether this thread is just unloading the library: a finaliser of it asks for it.
    [[nodiscard]] bool isUnloading() const;

    struct Queue; ///< The turns at one path

private:
    const QString path;
    Queue& queue;
    const bool unloadingBefore;
};

} // namespace Korvex
