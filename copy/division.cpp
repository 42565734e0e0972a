#include "copy/division.h"

#if defined(_M_X64)
#include <intrin.h>
#endif

namespace zvk::Pelkraft {

#if defined(__x86_64__) || defined(__i386__)

int DivideOrFault(int dividend, int divisor)
{
    int quotient = dividend;
    int remainder = dividend < 0 ? -1 : 0;
    // Volatile: the fault must come even where nobody uses the quotient.
    asm volatile("idivl %2" : "+a"(quotient), "+d"(remainder) : "r"(divisor) : "cc");
    return quotient;
}

unsigned DivideOrFault(unsigned dividend, unsigned divisor)
{
    unsigned quotient = dividend;
    unsigned remainder = 0;
    asm volatile("divl %2" : "+a"(quotient), "+d"(remainder) : "r"(divisor) : "cc");
    return quotient;
}

#elif defined(_M_X64)

// Microsoft's compiler has no inline assembly here. Volatile, as above.
int DivideOrFault(int dividend, int divisor)
{
    int remainder = 0;
    const volatile int quotient = _div64(dividend, divisor, &remainder);
    return quotient;
}

unsigned DivideOrFault(unsigned dividend, unsigned divisor)
{
    unsigned remainder = 0;
    const volatile unsigned quotient = _udiv64(dividend, divisor, &remainder);
    return quotient;
}

#else

int DivideOrFault(int dividend, int divisor)
{
    return PortableRoad::DivideOrRaise(dividend, divisor);
}

unsigned DivideOrFault(unsigned dividend, unsigned divisor)
{
    return PortableRoad::DivideOrRaise(dividend, divisor);
}

#endif

} // namespace zvk::Pelkraft
