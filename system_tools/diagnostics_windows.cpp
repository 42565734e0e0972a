#if defined(_WIN32)

#include "zvk/diagnostics.h"

#include <cstdio>

#include <windows.h>

namespace zvk::Diagnostics::Seh {

long LogAllCatchNothing(_EXCEPTION_POINTERS* pointers, unsigned long code, ILogSink& sink)
{
    const bool hasRecord = pointers != nullptr && pointers->ExceptionRecord != nullptr;
    const void* const address = hasRecord ? pointers->ExceptionRecord->ExceptionAddress : nullptr;
    char text[64];
    std::snprintf(text, sizeof(text), "0x%08lX at %p", code, address);
    StandardExceptionLogger::Log(text, L"Structured exception: ", sink);
    return EXCEPTION_CONTINUE_SEARCH;
}

} // namespace zvk::Diagnostics::Seh

#endif
