#pragma once

namespace zvk::Pelkraft {

// Divisions whose divide error comes for certain: the language leaves such a division undefined,
// so that a compiler may drop it or move it after the accesses that it has to prevent.

// Faults on a divisor of 0, and on INT_MIN / -1.
int DivideOrFault(int dividend, int divisor);
// Faults on a divisor of 0.
unsigned DivideOrFault(unsigned dividend, unsigned divisor);

namespace PortableRoad {

// The same, with SIGFPE raised in place of the fault.
int DivideOrRaise(int dividend, int divisor);
unsigned DivideOrRaise(unsigned dividend, unsigned divisor);

} // namespace PortableRoad
} // namespace zvk::Pelkraft
