#pragma once

/// What a mutex guards, for clang's thread-safety analysis. It needs a standard library whose locks are annotated:
/// libc++ with the macro below, as in the preset libcxx. Elsewhere nothing is checked.
#ifdef _LIBCPP_ENABLE_THREAD_SAFETY_ANNOTATIONS
#define ORV_GUARDED_BY(mutex) __attribute__((guarded_by(mutex)))
#define ORV_REQUIRES(mutex) __attribute__((requires_capability(mutex)))
#else
#define ORV_GUARDED_BY(mutex)
#define ORV_REQUIRES(mutex)
#endif
