#if !defined(_WIN32)

#include "pelkraft/image_row.h"

// Without structured exceptions there is nothing to guard against: faults are signals here.
namespace zvk::Pelkraft {

void ImageRow::FillFromSehGuard(const ImageRow& source, const OptionalParameters& options)
{
    FillFromBody2(source, options);
}

void ImageRow::FillFromWithRemapSehGuard(const ImageRow& source, const int* map,
                                         const OptionalParameters& options)
{
    FillFromWithRemapBody2(source, map, options);
}

void ImageRow::FillFromWithPixelRepeatSehGuard(const ImageRow& source, int factor,
                                               const OptionalParameters& options)
{
    FillFromWithPixelRepeatBody2(source, factor, options);
}

} // namespace zvk::Pelkraft

#endif
