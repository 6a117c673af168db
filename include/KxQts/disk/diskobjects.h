/// \file
/// Disks as objects: their properties, mounting and unmounting.
#pragma once

#include <KxQts/disk/volumeid.h>
#include <KxQts/export.h>
#include <KxQts/platformtypes.h>
#include <KxQts/refcounter.h>

#include <QString>

#include <atomic>

struct __CFDictionary;
struct __CFURL;
struct __DASession;

namespace Korvex {

/// The names of properties, by the numbers that `WDiskProps` takes. Numbers never change.
///
/// | Number | Name             | Type    | Number | Name             | Type    |
/// |--------|------------------|---------|--------|------------------|---------|
/// | 0      | DAMediaBlockSize | number  | 16     | DAMediaRemovable | boolean |
/// | 1      | DAMediaBSDName   | string  | 17     | DAMediaName      | string  |
/// | 2      | DADeviceUnit     | number  | 18     | DAAppearanceTime | –       |
/// | 3      | DADevicePath     | string  | 19     | DAMediaLeaf      | boolean |
/// | 4      | DAVolumeMountable| boolean | 20     | DAMediaBSDMinor  | number  |
/// | 5      | DABusPath        | string  | 21     | DAMediaKind      | string  |
/// | 6      | DADeviceModel    | string  | 22     | DAVolumeUUID     | string  |
/// | 7      | DAMediaEjectable | boolean | 23     | DADeviceProtocol | string  |
/// | 8      | DAMediaBSDMajor  | number  | 24     | DABusName        | string  |
/// | 9      | DAMediaContent   | string  | 25     | DADeviceInternal | boolean |
/// | 10     | DAMediaPath      | string  | 26     | DAVolumeKind     | string  |
/// | 11     | DAVolumeNetwork  | boolean | 27     | DADeviceRevision | string  |
/// | 12     | DAMediaSize      | number  | 28     | DAMediaIcon      | –       |
/// | 13     | DAMediaWhole     | boolean | 29     | DAMediaBSDUnit   | number  |
/// | 14     | DAMediaWritable  | boolean | 30     | DAVolumePath     | URL     |
/// | 15     | DAVolumeName     | string  |        |                  |         |
///
/// Sizes are in bytes. What is not known of a disk is absent; "–" is never known here.
extern KXQTS_EXPORT const char* const dpKeys[31];

/// The name of a property; the null string for a number that there is not.
KXQTS_EXPORT QString getPropName(int index);

/// What was known of a disk when the object was made. It never changes, so any thread may read it.
///
/// Reads return 0 or a Windows error number, and leave their output alone on failure: 1168 when the
/// property is not known, 66 when it has another type or does not fit.
class KXQTS_EXPORT WDiskProps : public IRefCounter {
public:
    /// Takes over a description, with one reference to the new object. Use the functions below.
    explicit WDiskProps(const __CFDictionary* ownedDescription) : description(ownedDescription) {}
    ~WDiskProps() override;
    WDiskProps(const WDiskProps&) = delete;
    WDiskProps& operator=(const WDiskProps&) = delete;

    /// Adds a reference. \return The count after it.
    int retain() override;
    /// Gives up a reference, and the object with the last one. \return The count after it.
    int release() override;

    /// Reads a number of 32 bits with a sign; 66 for a larger one (the size of a disk of more than
    /// 2 GiB).
    /// \return **1010** for a number above 30.
    virtual unsigned int getIntegerProperty(int index, unsigned int& value);

    /// Reads a boolean. \return **1611** for a number above 30.
    virtual unsigned int getBooleanProperty(int index, bool& value);

    /// Reads a string, or a URL as the path that it is, which has at most 259 bytes.
    /// \return **1611** for a number above 30.
    virtual unsigned int getQStringProperty(int index, QString& value);

    std::atomic<int> refCount{1};      ///< Changed by \ref retain and \ref release only
    const __CFDictionary* description; ///< Owned
};

/// Mounts and unmounts a disk or slice.
///
/// Options are those of `KxQts/platformtypes.h`: 1 stands for all volumes of the disk, 0x80000
/// forces unmounting. A volume in use is refused. Without a path a volume is mounted at
/// "/Volumes/NAME", a folder that is made for it and removed after unmounting (behind the prefix
/// `KXQTS_ROOT`), without programs that change rights and without devices; at a path that the
/// caller names, the volume is mounted with all that is on it. All volumes of a disk are mounted
/// without a path, whatever is given. Root mounts itself; for other users the system's UDisks2
/// service does, which chooses the place itself and refuses a path.
/// Any thread may use an object. Requests are served one after the other; those that a callback
/// makes are served at once, so that it may wait for them.
class KXQTS_EXPORT WDiskManager : public IRefCounter {
public:
    /// Takes over a disk and the session that it was made in. Use the functions below.
    WDiskManager(__DADisk* ownedDisk, __DASession* ownedSession)
        : disk(ownedDisk), session(ownedSession) {}
    ~WDiskManager() override;
    WDiskManager(const WDiskManager&) = delete;
    WDiskManager& operator=(const WDiskManager&) = delete;

    /// Adds a reference. \return The count after it.
    int retain() override;
    /// Gives up a reference, and the object with the last one. \return The count after it.
    int release() override;

    /// Unmounts and waits until that is over, without limit. Prints three lines about it to
    /// standard output.
    /// \return 0, **also when it was refused**: look whether the volume is still mounted.
    virtual int unmount(unsigned long options);

    /// Mounts and waits until that is over. \param path Where; null leaves the choice to the
    /// system.
    /// \return 0, **also when it was refused**, as \ref unmount.
    virtual int mount(unsigned long options, const __CFURL* path);

    /// Starts unmounting. \a callback is called once, on another thread, or on this one where the
    /// system has no more threads to give; the object may be gone by then. It may be null.
    virtual void unmount(DADiskCallback callback, void* context, unsigned long options);

    /// Starts mounting, as the form above.
    virtual void mount(DADiskCallback callback, void* context, unsigned long options,
                       const __CFURL* path);

    std::atomic<int> refCount{1}; ///< Changed by \ref retain and \ref release only
    __DADisk* disk;               ///< Owned
    __DASession* session;         ///< Owned; what \ref disk was made in
};

/// \name Making objects
/// Null when there is no such disk. The caller owns the object and gives it up with `release()`.
/// @{

/// \param bsdName "disk1" or "disk1s2", without a folder.
KXQTS_EXPORT WDiskProps* createFromBSDName(const char* bsdName);
/// \param bsdName "disk1" or "disk1s2", without a folder.
KXQTS_EXPORT WDiskProps* createFromBSDName(const QString& bsdName);
/// \param id The volume number 0 means the whole disk.
KXQTS_EXPORT WDiskProps* createFromDvID(KX_DEV_VOL_UNION id);

/// \param bsdName "disk1" or "disk1s2", without a folder.
KXQTS_EXPORT WDiskManager* diskManagerFromBSDName(const char* bsdName);
/// \param bsdName "disk1" or "disk1s2", without a folder.
KXQTS_EXPORT WDiskManager* diskManagerFromBSDName(const QString& bsdName);
/// \param id The volume number 0 means the whole disk.
KXQTS_EXPORT WDiskManager* diskManagerFromDvID(KX_DEV_VOL_UNION id);
/// @}

/// What ends the waiting of the synchronous calls. Prints a line to standard output, and does
/// nothing else for a context that no such call waits with, null included.
KXQTS_EXPORT void callback(__DADisk* disk, const __DADissenter* dissenter, void* context);

} // namespace Korvex
