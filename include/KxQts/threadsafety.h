/// \file
/// Marks that say which lock guards what; clang checks them, other compilers ignore them.
#pragma once

#if defined(__clang__)
#define KXQTS_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define KXQTS_THREAD_ATTRIBUTE(x)
#endif

/// A class whose objects are locks.
#define KXQTS_LOCKABLE KXQTS_THREAD_ATTRIBUTE(capability("lock"))
/// A class whose objects hold a lock while they live.
#define KXQTS_SCOPED_LOCKABLE KXQTS_THREAD_ATTRIBUTE(scoped_lockable)
/// Read and written only while the lock is held.
#define KXQTS_GUARDED_BY(lock) KXQTS_THREAD_ATTRIBUTE(guarded_by(lock))
/// Called only while the lock is held.
#define KXQTS_REQUIRES(lock) KXQTS_THREAD_ATTRIBUTE(requires_capability(lock))
/// Takes the lock and keeps it.
#define KXQTS_ACQUIRE(...) KXQTS_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
/// Leaves the lock.
#define KXQTS_RELEASE(...) KXQTS_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
/// Locks in a way that the analysis cannot follow; a comment there says why it is right.
#define KXQTS_UNCHECKED_LOCKING KXQTS_THREAD_ATTRIBUTE(no_thread_safety_analysis)
