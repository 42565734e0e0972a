#include "tests/chunks/watched_pages.h"

#include <windows.h>

namespace zvk::Pelkraft::TestSupport {
namespace {

void* handler = nullptr;

LONG CALLBACK TakeException(EXCEPTION_POINTERS* pointers)
{
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    if (record.ExceptionCode != EXCEPTION_ACCESS_VIOLATION)
        return EXCEPTION_CONTINUE_SEARCH;
    const auto* const address = reinterpret_cast<const void*>(record.ExceptionInformation[1]);
    const bool isWrite = record.ExceptionInformation[0] == 1;
    return WatchedPages::TakeFault(address, isWrite) ? EXCEPTION_CONTINUE_EXECUTION
                                                     : EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

void StartTakingFaults()
{
    handler = AddVectoredExceptionHandler(1, TakeException);
}

void StopTakingFaults()
{
    RemoveVectoredExceptionHandler(handler);
}

} // namespace zvk::Pelkraft::TestSupport
