#include "copy/division.h"

#include <csignal>
#include <cstdlib>
#include <limits>

namespace zvk::Pelkraft {
namespace {

[[noreturn]] void RaiseDivideError()
{
    std::raise(SIGFPE);
    // A handler may return, but there is no quotient to go on with.
    std::abort();
}

} // namespace

int PortableRoad::DivideOrRaise(int dividend, int divisor)
{
    if (divisor == 0 || (divisor == -1 && dividend == std::numeric_limits<int>::min()))
        RaiseDivideError();
    return dividend / divisor;
}

unsigned PortableRoad::DivideOrRaise(unsigned dividend, unsigned divisor)
{
    if (divisor == 0)
        RaiseDivideError();
    return dividend / divisor;
}

} // namespace zvk::Pelkraft
