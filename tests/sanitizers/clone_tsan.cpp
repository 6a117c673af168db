// Qt starts child processes with a clone() that shares its memory with the parent. ThreadSanitizer
// takes the child for a forked process, and marks the memory that both share accordingly: from then
// on it overlooks the locks of the parent's thread. Here clone() goes to the C library without its
// help. (Qt built for ThreadSanitizer would not share memory; Debian's is not.)

#include <cstdarg>
#include <dlfcn.h>
#include <sys/types.h>

extern "C" __attribute__((visibility("default"))) int clone(int (*function)(void*), void* stack,
                                                            int flags, void* argument, ...) {
    using Clone = int (*)(int (*)(void*), void*, int, void*, ...);
    static const auto real =
        reinterpret_cast<Clone>(dlsym(dlopen("libc.so.6", RTLD_LAZY | RTLD_NOLOAD), "clone"));
    va_list rest;
    va_start(rest, argument);
    auto* const parentId = va_arg(rest, pid_t*);
    auto* const threadStorage = va_arg(rest, void*);
    auto* const childId = va_arg(rest, pid_t*);
    va_end(rest);
    return real(function, stack, flags, argument, parentId, threadStorage, childId);
}
