// Microsoft's C library has these overloads, so that libc++ counts on them; Wine's lacks them.
#pragma once

#include_next <stdlib.h>

#if defined(__cplusplus)
inline long abs(long value)
{
    return labs(value);
}

inline long long abs(long long value)
{
    return llabs(value);
}
#endif
