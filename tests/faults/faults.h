/* What the preloaded shim offers to the test program: letting one call fail.
 *
 * Calls count while a fault is armed, in the process that armed it (not in what it forks), and on
 * the arming thread unless all threads are asked for. */
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/** What is let fail: a family of functions that do the same. */
enum KxFaultCall {
    KX_FAULT_OPEN,    /**< open, openat */
    KX_FAULT_STREAM,  /**< fopen */
    KX_FAULT_LISTING, /**< opendir, fdopendir */
    KX_FAULT_READ,    /**< read, pread */
    KX_FAULT_WRITE,   /**< write, pwrite, writev */
    KX_FAULT_SEEK,
    KX_FAULT_CLOSE, /**< Closes and yet fails, as a file system does that could not write */
    KX_FAULT_RENAME,
    KX_FAULT_LINK,
    KX_FAULT_UNLINK, /**< unlink, remove */
    KX_FAULT_MKDIR,
    KX_FAULT_RMDIR,
    KX_FAULT_SYNC,  /**< fsync, fdatasync */
    KX_FAULT_STAT,  /**< stat, lstat, fstat, fstatat, statx, access */
    KX_FAULT_CHMOD, /**< chmod, fchmod, fchown */
    KX_FAULT_TIMES,
    KX_FAULT_LOCK, /**< flock */
    KX_FAULT_FORK, /**< fork, clone, posix_spawn, system */
    KX_FAULT_WAIT, /**< waitpid, wait4, waitid */
    KX_FAULT_THREAD,
    KX_FAULT_PIPE, /**< pipe, eventfd */
    KX_FAULT_DUP,  /**< dup, fcntl where it does the same */
    KX_FAULT_POLL, /**< epoll_create, epoll_ctl, epoll_wait, poll */
    KX_FAULT_SOCKET,
    KX_FAULT_CONNECT,
    KX_FAULT_SEND,
    KX_FAULT_RECV,
    KX_FAULT_SOCKETOPTION, /**< setsockopt, getsockopt, ioctl */
    KX_FAULT_SEMAPHORE,    /**< semget, semop, semctl, sem_open */
    KX_FAULT_RANDOM,
    KX_FAULT_LOAD, /**< dlopen */
    KX_FAULT_MEMORY,
    KX_FAULT_CALLS /**< How many there are */
};

/** Which call is let fail, and how. */
struct KxFault {
    enum KxFaultCall call;
    unsigned nth; /**< From 1 on */
    int error;    /**< What errno is then; 0: a transfer of a single byte instead */
    int on_all_threads;
};

/** The shim, for who finds it. */
struct KxFaults {
    void (*arm)(const struct KxFault* fault);

    /** Ends it. \return How many calls there were, the failed one among them. */
    unsigned (*disarm)(void);

    /** Whence the call that failed came. \return How many addresses. */
    int (*origin)(void** addresses, int room);

    /** Has allocations not counted that are made by a function whose name, as exported, contains
     * this. Null: all are counted again. */
    void (*exempt)(const char* part_of_name);

    /** The blocks that were allocated while a fault was armed and are there still; forgets them
     * with \a forget. \param origins Receives whence, up to \a room blocks, 16 addresses each. */
    size_t (*blocks)(void** origins, size_t room, int forget);
};

/** The name under which the shim is found. */
#define KX_FAULTS_SYMBOL "kxqts_faults"

#ifdef __cplusplus
}
#endif
