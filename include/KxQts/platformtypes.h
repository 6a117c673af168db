/// \file
/// The few types and numbers of the platform that the interface uses.
#pragma once

#include <KxQts/export.h>

#include <stdint.h>

typedef int32_t OSErr; ///< 0, or a negative error number; 32 bits wide here
typedef int32_t OSStatus;

enum {
    noErr = 0,
    nsvErr = -35,        ///< There is no such volume
    procNotFound = -600, ///< There is no such process
    pathTooLongErr = -2110
};

/// A disk, for mounting and unmounting.
typedef struct __DADisk* DADiskRef;
/// Why a disk was not mounted or unmounted.
typedef const struct __DADissenter* DADissenterRef;
typedef int32_t DAReturn;

/// What becomes of mounting or unmounting, in \ref DADissenterGetStatus.
enum {
    kDAReturnSuccess = 0,
    kDAReturnError = -119930879, ///< 0xF8DA0001, and so on
    kDAReturnBusy = -119930878,
    kDAReturnBadArgument = -119930877,
    kDAReturnExclusiveAccess = -119930876,
    kDAReturnNoResources = -119930875,
    kDAReturnNotFound = -119930874,
    kDAReturnNotMounted = -119930873,
    kDAReturnNotPermitted = -119930872,
    kDAReturnNotPrivileged = -119930871,
    kDAReturnNotReady = -119930870,
    kDAReturnNotWritable = -119930869,
    kDAReturnUnsupported = -119930868
};

/// Options of mounting and unmounting.
enum {
    kDADiskMountOptionDefault = 0,
    kDADiskMountOptionWhole = 1, ///< All volumes of the disk
    kDADiskUnmountOptionDefault = 0,
    kDADiskUnmountOptionWhole = 1,
    kDADiskUnmountOptionForce = 0x80000 ///< Also when the volume's service does not answer
};

/// Called once when mounting or unmounting is over, on a thread of the library's own. The disk and
/// the dissenter, null on success, are valid until it returns.
typedef void (*DADiskCallback)(DADiskRef disk, DADissenterRef dissenter, void* context);

/// Why a disk was not mounted or unmounted; `kDAReturnSuccess` for null.
KXQTS_C_API DAReturn DADissenterGetStatus(DADissenterRef dissenter);
