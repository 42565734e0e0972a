// Included ahead of code that is to be compiled as cl would see it: two intrinsics of cl that Clang
// lacks, and without the names that cl doesn't define.
#pragma once

#include <emmintrin.h>
#include <intrin.h>

inline int _div64(long long dividend, int divisor, int* remainder)
{
    int quotient = static_cast<int>(dividend);
    int rest = static_cast<int>(dividend >> 32);
    asm volatile("idivl %2" : "+a"(quotient), "+d"(rest) : "r"(divisor) : "cc");
    *remainder = rest;
    return quotient;
}

inline unsigned _udiv64(unsigned long long dividend, unsigned divisor, unsigned* remainder)
{
    unsigned quotient = static_cast<unsigned>(dividend);
    unsigned rest = static_cast<unsigned>(dividend >> 32);
    asm volatile("divl %2" : "+a"(quotient), "+d"(rest) : "r"(divisor) : "cc");
    *remainder = rest;
    return quotient;
}

#undef __x86_64__
#undef __SSE2__
