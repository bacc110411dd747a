#pragma once

/// \file
/// The attributes of clang's thread-safety analysis, which checks at compile time that each guarded member is accessed
/// with its lock held. Empty for other compilers.
///
/// The analysis covers neither constructors and destructors nor the bodies of functions that acquire or release the
/// lock that they are a member of. It does not know that a lock is recursive.

#ifdef __clang__
#define LUMORA_THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define LUMORA_THREAD_SAFETY(attribute)
#endif

/// On a class: it is a lock.
#define LUMORA_CAPABILITY(name) LUMORA_THREAD_SAFETY(capability(name))
/// On a class: it holds a lock from its constructor to its destructor.
#define LUMORA_SCOPED_CAPABILITY LUMORA_THREAD_SAFETY(scoped_lockable)

/// On a member: it is accessed only while the lock is held.
#define LUMORA_GUARDED_BY(lock) LUMORA_THREAD_SAFETY(guarded_by(lock))
/// On a pointer: the object that it points to is accessed only while the lock is held.
#define LUMORA_PT_GUARDED_BY(lock) LUMORA_THREAD_SAFETY(pt_guarded_by(lock))

/// On a function: the caller holds the locks.
#define LUMORA_REQUIRES(...) LUMORA_THREAD_SAFETY(requires_capability(__VA_ARGS__))
/// On a function: the caller does not hold the locks.
#define LUMORA_EXCLUDES(...) LUMORA_THREAD_SAFETY(locks_excluded(__VA_ARGS__))
/// On a function: it acquires the locks, or the object itself, and returns with them held.
#define LUMORA_ACQUIRE(...) LUMORA_THREAD_SAFETY(acquire_capability(__VA_ARGS__))
#define LUMORA_ACQUIRE_SHARED(...) LUMORA_THREAD_SAFETY(acquire_shared_capability(__VA_ARGS__))
/// On a function: it releases the locks, or the object itself.
#define LUMORA_RELEASE(...) LUMORA_THREAD_SAFETY(release_capability(__VA_ARGS__))
#define LUMORA_RELEASE_GENERIC(...) LUMORA_THREAD_SAFETY(release_generic_capability(__VA_ARGS__))

/// On a function: the analysis skips it. Each use has a comment with the reason.
#define LUMORA_NO_THREAD_SAFETY_ANALYSIS LUMORA_THREAD_SAFETY(no_thread_safety_analysis)
