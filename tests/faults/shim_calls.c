/* The functions that stand in front of the C library's, one row each. Their headers are left out on
 * purpose: these declare some of them under other names, and differ in what they promise. */
#include "shim.h"

#include <errno.h>
#include <stdarg.h>
#include <stdint.h>

typedef long Size; /* as a signed count of bytes */
typedef long ShortOffset;
typedef long long LongOffset;

/* Types and lists of parameters are no expressions. NOLINTBEGIN(bugprone-macro-parentheses) */

/* A function that fails by giving a result and errno. */
#define CALL(family, failure, result, name, parameters, arguments)                                 \
    __attribute__((visibility("default"))) result name parameters;                                 \
    result name parameters {                                                                       \
        static result(*following) parameters;                                                      \
        if (!following)                                                                            \
            following = (result(*) parameters)kx_following(#name);                                 \
        if (kx_fails(KX_FAULT_##family))                                                           \
            return failure;                                                                        \
        return following arguments;                                                                \
    }

/* A transfer, of which less may be done than was asked for. */
#define TRANSFER(family, name, parameters, arguments)                                              \
    __attribute__((visibility("default"))) Size name parameters;                                   \
    Size name parameters {                                                                         \
        static Size(*following) parameters;                                                        \
        if (!following)                                                                            \
            following = (Size(*) parameters)kx_following(#name);                                   \
        if (kx_fails_or_shortens(KX_FAULT_##family, &count))                                       \
            return -1;                                                                             \
        return following arguments;                                                                \
    }

/* A function that is given one more argument sometimes. Reading it always does no harm. */
#define CALL_WITH_MORE(family, failure, result, name, parameters, last, arguments)                 \
    __attribute__((visibility("default"))) result name parameters;                                 \
    result name parameters {                                                                       \
        static result(*following) parameters;                                                      \
        if (!following)                                                                            \
            following = (result(*) parameters)kx_following(#name);                                 \
        va_list list;                                                                              \
        va_start(list, last);                                                                      \
        uintptr_t more = va_arg(list, uintptr_t);                                                  \
        va_end(list);                                                                              \
        if (kx_fails(KX_FAULT_##family))                                                           \
            return failure;                                                                        \
        return following arguments;                                                                \
    }

/* NOLINTEND(bugprone-macro-parentheses) */

/* A function whose result is the error. */
#define CALL_GIVING_ERROR(family, name, parameters, arguments)                                     \
    CALL(family, errno, int, name, parameters, arguments)

struct Entry;
struct Status;
struct Address;
struct Message;

CALL_WITH_MORE(OPEN, -1, int, open, (const char* path, int flags, ...), flags, (path, flags, more))
CALL_WITH_MORE(OPEN, -1, int, open64, (const char* path, int flags, ...), flags,
               (path, flags, more))
CALL_WITH_MORE(OPEN, -1, int, openat, (int folder, const char* path, int flags, ...), flags,
               (folder, path, flags, more))
CALL_WITH_MORE(OPEN, -1, int, openat64, (int folder, const char* path, int flags, ...), flags,
               (folder, path, flags, more))
CALL(STREAM, 0, void*, fopen, (const char* path, const char* mode), (path, mode))
CALL(STREAM, 0, void*, fopen64, (const char* path, const char* mode), (path, mode))
CALL(LISTING, 0, void*, opendir, (const char* path), (path))
CALL(LISTING, 0, void*, fdopendir, (int folder), (folder))

TRANSFER(READ, read, (int file, void* bytes, size_t count), (file, bytes, count))
TRANSFER(READ, pread, (int file, void* bytes, size_t count, ShortOffset place),
         (file, bytes, count, place))
TRANSFER(READ, pread64, (int file, void* bytes, size_t count, LongOffset place),
         (file, bytes, count, place))
TRANSFER(WRITE, write, (int file, const void* bytes, size_t count), (file, bytes, count))
TRANSFER(WRITE, pwrite, (int file, const void* bytes, size_t count, ShortOffset place),
         (file, bytes, count, place))
TRANSFER(WRITE, pwrite64, (int file, const void* bytes, size_t count, LongOffset place),
         (file, bytes, count, place))
TRANSFER(WRITE, sendfile, (int to, int from, void* place, size_t count), (to, from, place, count))
TRANSFER(WRITE, copy_file_range,
         (int from, void* place, int to, void* other, size_t count, unsigned flags),
         (from, place, to, other, count, flags))
CALL(SEEK, -1, ShortOffset, lseek, (int file, ShortOffset place, int from), (file, place, from))
CALL(SEEK, -1, LongOffset, lseek64, (int file, LongOffset place, int from), (file, place, from))

CALL(RENAME, -1, int, rename, (const char* from, const char* to), (from, to))
CALL(RENAME, -1, int, renameat, (int one, const char* from, int other, const char* to),
     (one, from, other, to))
CALL(RENAME, -1, int, renameat2,
     (int one, const char* from, int other, const char* to, unsigned flags),
     (one, from, other, to, flags))
CALL(LINK, -1, int, link, (const char* from, const char* to), (from, to))
CALL(LINK, -1, int, linkat, (int one, const char* from, int other, const char* to, int flags),
     (one, from, other, to, flags))
CALL(UNLINK, -1, int, unlink, (const char* path), (path))
CALL(UNLINK, -1, int, unlinkat, (int folder, const char* path, int flags), (folder, path, flags))
CALL(UNLINK, -1, int, remove, (const char* path), (path))
CALL(MKDIR, -1, int, mkdir, (const char* path, unsigned mode), (path, mode))
CALL(RMDIR, -1, int, rmdir, (const char* path), (path))
CALL(SYNC, -1, int, fsync, (int file), (file))
CALL(SYNC, -1, int, fdatasync, (int file), (file))

CALL(STAT, -1, int, stat, (const char* path, struct Status* status), (path, status))
CALL(STAT, -1, int, stat64, (const char* path, struct Status* status), (path, status))
CALL(STAT, -1, int, lstat, (const char* path, struct Status* status), (path, status))
CALL(STAT, -1, int, lstat64, (const char* path, struct Status* status), (path, status))
CALL(STAT, -1, int, fstat, (int file, struct Status* status), (file, status))
CALL(STAT, -1, int, fstat64, (int file, struct Status* status), (file, status))
CALL(STAT, -1, int, fstatat, (int folder, const char* path, struct Status* status, int flags),
     (folder, path, status, flags))
CALL(STAT, -1, int, fstatat64, (int folder, const char* path, struct Status* status, int flags),
     (folder, path, status, flags))
CALL(STAT, -1, int, statx, (int folder, const char* path, int flags, unsigned mask, void* status),
     (folder, path, flags, mask, status))
CALL(STAT, -1, int, access, (const char* path, int mode), (path, mode))
CALL(STAT, -1, int, faccessat, (int folder, const char* path, int mode, int flags),
     (folder, path, mode, flags))
CALL(CHMOD, -1, int, chmod, (const char* path, unsigned mode), (path, mode))
CALL(CHMOD, -1, int, fchmod, (int file, unsigned mode), (file, mode))
CALL(CHMOD, -1, int, fchown, (int file, unsigned user, unsigned group), (file, user, group))
CALL(TIMES, -1, int, futimens, (int file, const void* times), (file, times))
CALL(LOCK, -1, int, flock, (int file, int operation), (file, operation))

CALL(FORK, -1, int, fork, (void), ())
CALL(FORK, -1, int, system, (const char* command), (command))
CALL_GIVING_ERROR(FORK, posix_spawn,
                  (int* child, const char* path, const void* actions, const void* attributes,
                   char* const* arguments, char* const* environment),
                  (child, path, actions, attributes, arguments, environment))
CALL(WAIT, -1, int, waitpid, (int child, int* status, int options), (child, status, options))
CALL(WAIT, -1, int, wait4, (int child, int* status, int options, void* usage),
     (child, status, options, usage))
CALL(WAIT, -1, int, waitid, (int type, unsigned child, void* information, int options),
     (type, child, information, options))
CALL_GIVING_ERROR(THREAD, pthread_create,
                  (void* thread, const void* attributes, void* (*routine)(void*), void* argument),
                  (thread, attributes, routine, argument))
CALL(PIPE, -1, int, pipe2, (int* ends, int flags), (ends, flags))
CALL(PIPE, -1, int, eventfd, (unsigned value, int flags), (value, flags))
CALL(DUP, -1, int, dup, (int file), (file))
CALL(DUP, -1, int, dup2, (int file, int as), (file, as))
CALL(DUP, -1, int, dup3, (int file, int as, int flags), (file, as, flags))
CALL(POLL, -1, int, epoll_create1, (int flags), (flags))
CALL(POLL, -1, int, epoll_ctl, (int poll, int operation, int file, void* event),
     (poll, operation, file, event))
CALL(POLL, -1, int, epoll_wait, (int poll, void* events, int room, int ms),
     (poll, events, room, ms))
CALL(POLL, -1, int, ppoll, (void* files, unsigned long count, const void* time, const void* mask),
     (files, count, time, mask))
CALL(POLL, -1, int, pidfd_open, (int process, unsigned flags), (process, flags))

CALL(SOCKET, -1, int, socket, (int domain, int type, int protocol), (domain, type, protocol))
CALL(CONNECT, -1, int, connect, (int file, const struct Address* address, unsigned size),
     (file, address, size))
TRANSFER(SEND, send, (int file, const void* bytes, size_t count, int flags),
         (file, bytes, count, flags))
TRANSFER(RECV, recv, (int file, void* bytes, size_t count, int flags), (file, bytes, count, flags))
CALL(SEND, -1, Size, sendmsg, (int file, const struct Message* message, int flags),
     (file, message, flags))
CALL(RECV, -1, Size, recvmsg, (int file, struct Message* message, int flags),
     (file, message, flags))
CALL(SOCKETOPTION, -1, int, setsockopt,
     (int file, int level, int option, const void* value, unsigned size),
     (file, level, option, value, size))
CALL(SOCKETOPTION, -1, int, getsockopt,
     (int file, int level, int option, void* value, unsigned* size),
     (file, level, option, value, size))
CALL_WITH_MORE(SOCKETOPTION, -1, int, ioctl, (int file, unsigned long request, ...), request,
               (file, request, more))

CALL(SEMAPHORE, -1, int, semget, (int key, int count, int flags), (key, count, flags))
CALL(SEMAPHORE, -1, int, semop, (int set, void* operations, size_t count), (set, operations, count))
CALL(LOAD, 0, void*, dlopen, (const char* path, int flags), (path, flags))
CALL(RANDOM, -1, Size, getrandom, (void* bytes, size_t size, unsigned flags), (bytes, size, flags))

/* Of this only what makes a descriptor can fail on a descriptor that is open. */
#define DUPLICATE(name)                                                                            \
    __attribute__((visibility("default"))) int name(int file, int command, ...);                   \
    int name(int file, int command, ...) {                                                         \
        static int (*following)(int, int, ...);                                                    \
        if (!following)                                                                            \
            following = (int (*)(int, int, ...))kx_following(#name);                               \
        va_list list;                                                                              \
        va_start(list, command);                                                                   \
        uintptr_t more = va_arg(list, uintptr_t);                                                  \
        va_end(list);                                                                              \
        const int duplicates = command == 0 || command == 1030; /* F_DUPFD, F_DUPFD_CLOEXEC */     \
        if (duplicates && kx_fails(KX_FAULT_DUP))                                                  \
            return -1;                                                                             \
        return following(file, command, more);                                                     \
    }

DUPLICATE(fcntl)
DUPLICATE(fcntl64)

/* What several arguments follow, or what is done although it fails. */

__attribute__((visibility("default"))) Size writev(int file, const void* parts, int count);
Size writev(int file, const void* parts, int count) {
    static Size (*following)(int, const void*, int);
    if (!following)
        following = (Size(*)(int, const void*, int))kx_following("writev");
    size_t first = (size_t)count;
    if (kx_fails_or_shortens(KX_FAULT_WRITE, &first))
        return -1;
    return following(file, parts, (int)first); /* shortened to its first part */
}

__attribute__((visibility("default"))) int close(int file);
int close(int file) {
    static int (*following)(int);
    if (!following)
        following = (int (*)(int))kx_following("close");
    const int fails = kx_fails(KX_FAULT_CLOSE);
    const int error = errno;
    const int result = following(file);
    if (!fails)
        return result;
    errno = error;
    return -1;
}

/* Removing a set that one has made does not fail. */
__attribute__((visibility("default"))) int semctl(int set, int number, int command, ...);
int semctl(int set, int number, int command, ...) {
    static int (*following)(int, int, int, ...);
    if (!following)
        following = (int (*)(int, int, int, ...))kx_following("semctl");
    va_list list;
    va_start(list, command);
    uintptr_t more = va_arg(list, uintptr_t);
    va_end(list);
    const int removes = command == 0; /* IPC_RMID */
    return !removes && kx_fails(KX_FAULT_SEMAPHORE) ? -1 : following(set, number, command, more);
}

__attribute__((visibility("default"))) void* sem_open(const char* name, int flags, ...);
void* sem_open(const char* name, int flags, ...) {
    static void* (*following)(const char*, int, ...);
    if (!following)
        following = (void* (*)(const char*, int, ...))kx_following("sem_open");
    va_list list;
    va_start(list, flags);
    unsigned mode = va_arg(list, unsigned);
    unsigned value = va_arg(list, unsigned);
    va_end(list);
    return kx_fails(KX_FAULT_SEMAPHORE) ? 0 : following(name, flags, mode, value);
}

__attribute__((visibility("default"))) int clone(int (*routine)(void*), void* stack, int flags,
                                                 void* argument, ...);
int clone(int (*routine)(void*), void* stack, int flags, void* argument, ...) {
    static int (*following)(int (*)(void*), void*, int, void*, ...);
    if (!following)
        following = (int (*)(int (*)(void*), void*, int, void*, ...))kx_following("clone");
    va_list list;
    va_start(list, argument);
    void* parent = va_arg(list, void*);
    void* local = va_arg(list, void*);
    void* child = va_arg(list, void*);
    va_end(list);
    if (kx_fails(KX_FAULT_FORK))
        return -1;
    return following(routine, stack, flags, argument, parent, local, child);
}

/* The numbers of the calls that have no function of their own in every C library. */
#include <sys/syscall.h>

__attribute__((visibility("default"))) long syscall(long number, ...);
long syscall(long number, ...) {
    static long (*following)(long, ...);
    if (!following)
        following = (long (*)(long, ...))kx_following("syscall");
    va_list list;
    va_start(list, number);
    long a = va_arg(list, long);
    long b = va_arg(list, long);
    long c = va_arg(list, long);
    long d = va_arg(list, long);
    long e = va_arg(list, long);
    long f = va_arg(list, long);
    va_end(list);
    if ((number == SYS_clone && kx_fails(KX_FAULT_FORK)) ||
        (number == SYS_waitid && kx_fails(KX_FAULT_WAIT)) ||
        (number == SYS_pidfd_open && kx_fails(KX_FAULT_POLL)))
        return -1;
    return following(number, a, b, c, d, e, f);
}
