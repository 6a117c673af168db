/// \file
/// A counting semaphore that processes share by a key or a path.
#pragma once

#include <KxQts/export.h>

namespace Korvex {

/// A System V semaphore set of one. It outlives the object and the process: nothing but \ref Remove
/// removes it. Any thread may call the operations, but \ref lastError then tells of anyone's.
class KXQTS_EXPORT Semaphore {
public:
    /// Makes or opens the set of a key, see \ref Create.
    explicit Semaphore(int key);

    /// Makes or opens the set of a file and a project number (its lower 8 bits count). With a null
    /// or empty path the set is new and private. When the file cannot be found the object is
    /// unusable.
    Semaphore(const char* path, int projId);

    /// Makes the set of a key or opens it if it exists; key 0 always makes a private one. A set
    /// that is made starts at **zero**: the first \ref Wait blocks until somebody calls \ref
    /// Release. \return The new \ref state.
    int Create(int key);

    /// Takes one; waits without limit until there is one. When the process ends, the system puts it
    /// back. \return False when that fails, also when a signal arrives meanwhile.
    bool Wait();

    /// Takes one if there is one. \return False with \ref lastError 35 if not.
    bool TryWait();

    /// Adds to the count.
    /// \param count 1 to 32767; 0 changes nothing, more fails.
    /// \param undo Whether the system takes it back when the process ends.
    bool Release(unsigned short count, bool undo);

    /// Removes the set; whoever waits for it goes on without success.
    bool Remove();

    int semId = -1;    ///< The set's identifier
    int state = 0;     ///< 0 unusable, 1 made by this object, 2 opened
    int lastError = 0; ///< The system's number for the last operation, 0 after success
};

} // namespace Korvex
