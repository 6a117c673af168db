/// \file
/// Critical sections: locks among the threads of a process, which the thread that has one may enter
/// again. They are mutexes of the system's.
#pragma once

#include <KxQts/winapi/types.h>

#include <pthread.h>

/// Made with `InitializeCriticalSection`, and not copied.
typedef struct _RTL_CRITICAL_SECTION {
    pthread_mutex_t mutex;
} CRITICAL_SECTION, *PCRITICAL_SECTION, *LPCRITICAL_SECTION;

/// Makes a critical section, which is free.
static inline void InitializeCriticalSection(LPCRITICAL_SECTION section) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&section->mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

/// As \ref InitializeCriticalSection. \return `TRUE`. \par Ignored
/// spinCount.
static inline BOOL InitializeCriticalSectionAndSpinCount(LPCRITICAL_SECTION section,
                                                         DWORD spinCount) {
    (void)spinCount;
    InitializeCriticalSection(section);
    return TRUE;
}

/// Waits until the section is free and takes it; the thread that has it takes it once more.
static inline void EnterCriticalSection(LPCRITICAL_SECTION section) {
    pthread_mutex_lock(&section->mutex);
}

/// Takes the section if it is free or the caller's. \return Whether it was taken.
static inline BOOL TryEnterCriticalSection(LPCRITICAL_SECTION section) {
    return pthread_mutex_trylock(&section->mutex) == 0;
}

/// Gives the section back, once for each time that it was taken.
static inline void LeaveCriticalSection(LPCRITICAL_SECTION section) {
    pthread_mutex_unlock(&section->mutex);
}

/// Gives up a section that nobody has.
static inline void DeleteCriticalSection(LPCRITICAL_SECTION section) {
    pthread_mutex_destroy(&section->mutex);
}
