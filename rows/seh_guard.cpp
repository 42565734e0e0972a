#include "pelkraft/image_row.h"

#if defined(PELKRAFT_HAS_TRY)
#include "zvk/diagnostics.h"

#include <windows.h>

// Headers of the C++ library have a macro of this name, which means try.
#undef __try
#endif

namespace zvk::Pelkraft {
namespace {

#if defined(PELKRAFT_HAS_TRY)

long LogAndGoOn(EXCEPTION_POINTERS* pointers)
{
    const unsigned long code = pointers->ExceptionRecord->ExceptionCode;
    Diagnostics::ILogSink& sink = Diagnostics::Seh::GetDefaultLog();
    return Diagnostics::Seh::LogAllCatchNothing(pointers, code, sink);
}

// Logs the structured exceptions that pass, and catches none. No object with a destructor may live
// in a function that has __try, and some compilers guard nothing there but calls.
template <typename Body>
void Guarded(Body body)
{
    __try {
        body();
    } __except (LogAndGoOn(GetExceptionInformation())) {
    }
}

#else

// Without structured exceptions there is nothing to guard against: faults are signals here.
template <typename Body>
void Guarded(Body body)
{
    body();
}

#endif

} // namespace

void ImageRow::FillFromSehGuard(const ImageRow& source, const OptionalParameters& options)
{
    Guarded([&] { FillFromBody2(source, options); });
}

void ImageRow::FillFromWithRemapSehGuard(const ImageRow& source, const int* map,
                                         const OptionalParameters& options)
{
    Guarded([&] { FillFromWithRemapBody2(source, map, options); });
}

void ImageRow::FillFromWithPixelRepeatSehGuard(const ImageRow& source, int factor,
                                               const OptionalParameters& options)
{
    Guarded([&] { FillFromWithPixelRepeatBody2(source, factor, options); });
}

} // namespace zvk::Pelkraft
