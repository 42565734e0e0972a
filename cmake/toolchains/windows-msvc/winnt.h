// Wine defines a function of its own under the name of one that Clang has built in.
#pragma once

#define _InterlockedCompareExchange128 WineInterlockedCompareExchange128
#include_next <winnt.h>
#undef _InterlockedCompareExchange128
