#pragma once

#include <sys/types.h>

/// System V semaphore sets of one semaphore. Calls that fail leave the system's number in `errno`.
namespace Korvex::SemaphoreSet {

/// Makes a set that everybody may use.
/// \return Its identifier; −1 on failure, for instance when there is one of that key already. Some
/// systems number sets from 0 on, which callers take for none: such a set is not kept.
[[nodiscard]] int make(key_t key);

/// Changes the semaphore's value by one `semop` with these flags. A cancellation point where it may
/// block; a thread that is terminated there may have been given what it waited for.
/// \return 0, or −1.
int change(int set, short by, short flags);

/// \return Whether the semaphore has this value now.
[[nodiscard]] bool setValue(int set, int value);

/// Removes a set; whoever waits for it goes on without success. \return 0, or −1.
int remove(int set);

} // namespace Korvex::SemaphoreSet
