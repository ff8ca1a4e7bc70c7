#pragma once

/// Lock marks for clang's thread-safety analysis; other compilers see nothing.
///
/// ZENTARA_GUARDED_BY(m) stands on a field that only the holder of `m` may touch, ZENTARA_REQUIRES(m) on an
/// operation its caller must hold `m` for, ZENTARA_EXCLUDES(m) on one that takes `m` itself. The locks of
/// this library are re-entrant, yet one function that visibly takes a lock twice is reported: mark it
/// ZENTARA_NO_THREAD_SAFETY_ANALYSIS and say why.
#if defined(__clang__)
#define ZENTARA_THREAD_MARK(x) __attribute__((x))
#else
#define ZENTARA_THREAD_MARK(x)
#endif

#define ZENTARA_CAPABILITY(kind) ZENTARA_THREAD_MARK(capability(kind))
#define ZENTARA_SCOPED_CAPABILITY ZENTARA_THREAD_MARK(scoped_lockable)
#define ZENTARA_GUARDED_BY(lock) ZENTARA_THREAD_MARK(guarded_by(lock))
#define ZENTARA_PT_GUARDED_BY(lock) ZENTARA_THREAD_MARK(pt_guarded_by(lock))
#define ZENTARA_REQUIRES(...) ZENTARA_THREAD_MARK(requires_capability(__VA_ARGS__))
#define ZENTARA_EXCLUDES(...) ZENTARA_THREAD_MARK(locks_excluded(__VA_ARGS__))
#define ZENTARA_ACQUIRE(...) ZENTARA_THREAD_MARK(acquire_capability(__VA_ARGS__))
#define ZENTARA_RELEASE(...) ZENTARA_THREAD_MARK(release_capability(__VA_ARGS__))
#define ZENTARA_NO_THREAD_SAFETY_ANALYSIS ZENTARA_THREAD_MARK(no_thread_safety_analysis)
