// The copies have forms for a compiler without inline assembly, which Clang compiles here.
#include "copy/division.h"
#include "copy/group_copy.h"
#include "fault_of.h"

#include <climits>
#include <cstdio>
#include <cstring>

namespace {

using namespace zvk::Pelkraft;

int failures = 0;

void Check(bool holds, const char* what)
{
    if (holds)
        return;
    std::printf("failed: %s\n", what);
    ++failures;
}

void DivideByZero()
{
    DivideOrFault(1, 0);
}

void DivideUnsignedByZero()
{
    DivideOrFault(1u, 0u);
}

void DivideTheLeastByMinusOne()
{
    DivideOrFault(INT_MIN, -1);
}

alignas(16) unsigned char rows[2][64];

template <int source, int destination>
void Copy()
{
    CopyAligned(GetWholeUnitCopy(1), {rows[0] + source, rows[1] + destination, 1, 1});
}

// Nothing may be written before the fault.
void FaultsAt(Action copy, const char* where)
{
    std::memset(rows[1], 0xA5, sizeof(rows[1]));
    Check(FaultOf(copy) == STATUS_ACCESS_VIOLATION, where);
    for (const unsigned char byte : rows[1])
        Check(byte == 0xA5, "a byte is written before the fault");
}

} // namespace

int main()
{
    Check(DivideOrFault(-7, 2) == -3 && DivideOrFault(INT_MIN, 1) == INT_MIN, "a quotient");
    Check(DivideOrFault(UINT_MAX, 2u) == INT_MAX, "an unsigned quotient");
    Check(FaultOf(DivideByZero) == STATUS_INTEGER_DIVIDE_BY_ZERO, "division by 0");
    Check(FaultOf(DivideUnsignedByZero) == STATUS_INTEGER_DIVIDE_BY_ZERO, "unsigned by 0");
    // Windows calls it an overflow, Wine a division by 0.
    const unsigned long fault = FaultOf(DivideTheLeastByMinusOne);
    Check(fault == STATUS_INTEGER_OVERFLOW || fault == STATUS_INTEGER_DIVIDE_BY_ZERO,
          "the least by -1");

    for (unsigned char i = 0; i < sizeof(rows[0]); ++i)
        rows[0][i] = i;
    FaultsAt(Copy<1, 0>, "an odd source");
    FaultsAt(Copy<0, 8>, "an odd destination");
    FaultsAt(Copy<4, 12>, "both odd, their sum even");
    FaultsAt(Copy<3, 3>, "both odd by the same");
    Check(FaultOf(Copy<16, 32>) == 0, "even addresses");
    Check(std::memcmp(rows[1] + 32, rows[0] + 16, 16) == 0, "a copied unit");
    std::printf("%d failures\n", failures);
    return failures == 0 ? 0 : 1;
}
