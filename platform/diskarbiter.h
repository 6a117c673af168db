#pragma once

#include <KxQts/corefoundation.h>
#include <KxQts/platformtypes.h>
#include <KxQts/refcounter.h>

#include <memory>

/// Why a disk was not mounted or unmounted.
struct __DADissenter {
    DAReturn status;
};

/// A disk or slice, for as long as the object is held. Any thread may use it.
struct __DADisk : Korvex::IRefCounter {
    /// What is known of it now, as a dictionary that the caller releases. Null when it is gone, or
    /// there is no memory.
    virtual CFDictionaryRef copyDescription() = 0;

    /// Starts mounting and returns. \a callback, unless it is null, is called exactly once, with a
    /// dissenter on failure and null on success, on another thread than any that calls operations
    /// here; not before this call has begun, perhaps before it returns. The disk lives until then
    /// whoever holds it.
    /// \param path Where; null leaves the choice to the system.
    virtual void mount(CFURLRef path, unsigned long options, DADiskCallback callback,
                       void* context) = 0;

    /// Starts unmounting, in the same manner.
    virtual void unmount(unsigned long options, DADiskCallback callback, void* context) = 0;

    /// Gives up what this program has reserved the disk for. Cannot fail.
    virtual void unclaim() = 0;
};

/// A connection to the arbiter.
struct __DASession : Korvex::IRefCounter {
    /// The disk of a name ("disk1", "disk1s2"), which the caller releases; null when there is none.
    virtual __DADisk* createDisk(const char* name) = 0;
};

namespace Korvex {

/// Knows disks, and mounts and unmounts what lies on them. Any thread may ask.
class DiskArbiter {
public:
    virtual ~DiskArbiter() = default;

    /// A connection, which the caller releases; null when there is none to be had.
    virtual __DASession* createSession() = 0;
};

/// The arbiter in force.
DiskArbiter& diskArbiter();

/// Gives a counted object up at the end of a scope.
struct ReferenceReleaser {
    void operator()(IRefCounter* object) const { object->release(); }
};
template <class Counted>
using Reference = std::unique_ptr<Counted, ReferenceReleaser>;

} // namespace Korvex
