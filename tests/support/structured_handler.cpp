#include "tests/support/structured_handler.h"

#include <windows.h>

// Headers of the C++ library have a macro of this name, which means try.
#undef __try

namespace zvk::Pelkraft::TestSupport {

#if defined(PELKRAFT_HAS_TRY)

namespace {

// A throw is marked as no exception of the system's own.
constexpr unsigned long ownMark = 0x20000000;

long Note(const EXCEPTION_POINTERS* pointers, StructuredException* noted)
{
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    if ((record.ExceptionCode & ownMark) != 0)
        return EXCEPTION_CONTINUE_SEARCH;
    noted->code = record.ExceptionCode;
    if (record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION)
        noted->touched = reinterpret_cast<const void*>(record.ExceptionInformation[1]);
    return EXCEPTION_EXECUTE_HANDLER;
}

// The record is the caller's: Clang 14 can't compile a result of the function itself here.
void Run(void (*action)(const void*), const void* context, StructuredException* noted)
{
    __try {
        action(context);
    } __except (Note(GetExceptionInformation(), noted)) {
    }
}

} // namespace

StructuredException RunUnderHandler(void (*action)(const void*), const void* context)
{
    StructuredException noted;
    Run(action, context, &noted);
    return noted;
}

#else

StructuredException RunUnderHandler(void (*action)(const void*), const void* context)
{
    action(context);
    return {};
}

#endif

} // namespace zvk::Pelkraft::TestSupport
