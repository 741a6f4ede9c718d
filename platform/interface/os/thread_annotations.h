// SPDX-License-Identifier: MIT
#pragma once

// Clang's thread-safety analysis reads these; other compilers see nothing.
#if defined(__clang__)
#define OS_THREAD_ANNOTATION(attribute) __attribute__((attribute))
#else
#define OS_THREAD_ANNOTATION(attribute)
#endif

#define OS_CAPABILITY(name) OS_THREAD_ANNOTATION(capability(name))
#define OS_SCOPED_CAPABILITY OS_THREAD_ANNOTATION(scoped_lockable)
#define OS_GUARDED_BY(lock) OS_THREAD_ANNOTATION(guarded_by(lock))
#define OS_REQUIRES(...) OS_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define OS_ACQUIRE(...) OS_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define OS_ACQUIRE_SHARED(...) OS_THREAD_ANNOTATION(acquire_shared_capability(__VA_ARGS__))
#define OS_RELEASE(...) OS_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define OS_RELEASE_SHARED(...) OS_THREAD_ANNOTATION(release_shared_capability(__VA_ARGS__))
#define OS_RELEASE_GENERIC(...) OS_THREAD_ANNOTATION(release_generic_capability(__VA_ARGS__))
#define OS_NO_THREAD_SAFETY_ANALYSIS OS_THREAD_ANNOTATION(no_thread_safety_analysis)
