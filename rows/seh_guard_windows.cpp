#if defined(_WIN32)

#include "pelkraft/image_row.h"
#include "zvk/diagnostics.h"

#include <windows.h>

// No object with a destructor may live in a function that has __try: the bodies do the work.
namespace zvk::Pelkraft {
namespace {

long LogAndGoOn(EXCEPTION_POINTERS* pointers)
{
    const unsigned long code = pointers->ExceptionRecord->ExceptionCode;
    Diagnostics::ILogSink& sink = Diagnostics::Seh::GetDefaultLog();
    return Diagnostics::Seh::LogAllCatchNothing(pointers, code, sink);
}

} // namespace

void ImageRow::FillFromSehGuard(const ImageRow& source, const OptionalParameters& options)
{
    __try {
        FillFromBody2(source, options);
    } __except (LogAndGoOn(GetExceptionInformation())) {
    }
}

void ImageRow::FillFromWithRemapSehGuard(const ImageRow& source, const int* map,
                                         const OptionalParameters& options)
{
    __try {
        FillFromWithRemapBody2(source, map, options);
    } __except (LogAndGoOn(GetExceptionInformation())) {
    }
}

void ImageRow::FillFromWithPixelRepeatSehGuard(const ImageRow& source, int factor,
                                               const OptionalParameters& options)
{
    __try {
        FillFromWithPixelRepeatBody2(source, factor, options);
    } __except (LogAndGoOn(GetExceptionInformation())) {
    }
}

} // namespace zvk::Pelkraft

#endif
