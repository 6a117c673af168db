/// \file
/// The few types and numbers of the platform that the interface uses.
#pragma once

#include <KxQts/export.h>

#include <stdint.h>

typedef int32_t OSErr; ///< 0, or a negative error number; 32 bits wide here
typedef int32_t OSStatus;

enum {
    noErr = 0,
    nsvErr = -35,             ///< There is no such volume
    procNotFound = -600,      ///< There is no such process
    connectionInvalid = -609, ///< Nobody is there to take the request
    errAEEventNotHandled = -1708,
    errAETimeout = -1712,
    pathTooLongErr = -2110,
    errAEEventFailed = -10000,
    errAEPrivilegeError = -10004,
};

/// What is asked of the system or of an application, as four characters.
enum {
    kAEQuitApplication = 0x71756974, ///< 'quit'
    kAERestart = 0x72657374,         ///< 'rest'
    kAEReallyLogOut = 0x726C676F,    ///< 'rlgo'
    kAEShutDown = 0x73687574,        ///< 'shut'
};

/// An authorisation: what a user has been asked for. Programs hold pointers to it only.
struct AuthorizationOpaqueRef;
typedef const struct AuthorizationOpaqueRef* AuthorizationRef;

enum {
    errAuthorizationSuccess = 0,
    errAuthorizationInvalidRef = -60002,
    errAuthorizationInvalidPointer = -60004,
    errAuthorizationDenied = -60005,
    errAuthorizationCanceled = -60006,              ///< By the user
    errAuthorizationInteractionNotAllowed = -60007, ///< The user must be asked, and cannot be
    errAuthorizationInternal = -60008,
    errAuthorizationToolExecuteFailure = -60031, ///< The program could not be started
};

enum {
    kAuthorizationFlagDefaults = 0,
    kAuthorizationFlagInteractionAllowed = 1,
    kAuthorizationFlagExtendRights = 2,
    kAuthorizationFlagPartialRights = 4,
    kAuthorizationFlagDestroyRights = 8,
    kAuthorizationFlagPreAuthorize = 16,
};

enum { MAXCOMLEN = 16 /**< Bytes of a command's name */ };

/// What stands first in the record of a process.
struct extern_proc {
    int32_t p_pid;
    char p_stat;                ///< `SRUN`, or `SZOMB` for one that has ended
    char p_comm[MAXCOMLEN + 1]; ///< The command's name, cut to 15 bytes on Linux; ends with a zero
};

enum { SRUN = 2, SZOMB = 5 };

/// What stands second.
struct eproc {
    int32_t e_ppid; ///< The parent's id
    uint32_t e_uid; ///< The effective user
};

/// The record of a process. It is the library's own on Linux: sizes and places of fields are not
/// those of other systems.
struct kinfo_proc {
    struct extern_proc kp_proc;
    struct eproc kp_eproc;
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
