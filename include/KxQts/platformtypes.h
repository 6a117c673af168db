/// \file
/// The few types and numbers of the platform that the interface uses.
#pragma once

#include <stdint.h>

typedef int32_t OSErr; ///< 0, or a negative error number; 32 bits wide here
typedef int32_t OSStatus;

enum {
    noErr = 0,
    procNotFound = -600,      ///< There is no such process
    connectionInvalid = -609, ///< Nobody is there to take the request
    errAEEventNotHandled = -1708,
    errAETimeout = -1712,
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
