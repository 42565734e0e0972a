#pragma once

// The smallest parts of a kernel must not become calls, and its rare parts must not be inlined:
// left to itself, a compiler decides by length. The macros stand before a function, and the first
// one also after the parameters of a lambda.
#if __has_cpp_attribute(gnu::always_inline)
#define PELKRAFT_ALWAYS_INLINE __attribute__((always_inline))
#define PELKRAFT_NEVER_INLINE __attribute__((noinline))
#else
#define PELKRAFT_ALWAYS_INLINE [[msvc::forceinline]]
#define PELKRAFT_NEVER_INLINE [[msvc::noinline]]
#endif
