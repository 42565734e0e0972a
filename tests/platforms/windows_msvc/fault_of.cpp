#include "fault_of.h"

namespace {

long Catch(const EXCEPTION_POINTERS* pointers, unsigned long& code)
{
    code = pointers->ExceptionRecord->ExceptionCode;
    return EXCEPTION_EXECUTE_HANDLER;
}

} // namespace

// No object with a destructor may live here.
unsigned long FaultOf(Action action)
{
    unsigned long code = 0;
    __try {
        action();
    } __except (Catch(GetExceptionInformation(), code)) {
    }
    return code;
}
