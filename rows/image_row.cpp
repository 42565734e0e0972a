#include "pelkraft/image_row.h"

#include "common/aligned_memory.h"
#include "common/inlining.h"
#include "common/row_size.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace zvk {
namespace Pelkraft {
namespace {

constexpr const char* noPlanes =
    "zvk::Pelkraft::ImageRow Invalid operation: interleaved data has no planes";

unsigned char* AllocateRow(int size)
{
    const auto pixelBytes = static_cast<std::uint64_t>(std::max(size, 0));
    unsigned char* memory =
        AllocateAligned(pixelBytes + ImageRow::SafetyTrail, std::size_t{ImageRow::Alignment});
    if (memory == nullptr)
        throw std::bad_alloc();
    std::memset(memory + pixelBytes, 0, ImageRow::SafetyTrail);
    return memory;
}

// A function of its own, so that a row over bytes of others needs no frame.
PELKRAFT_NEVER_INLINE unsigned char* AllocateRow(const RowGeometry& geometry)
{
    if (!IsTrueRowSize(geometry))
        throw std::bad_alloc();
    return AllocateRow(WrappedRowSize(geometry));
}

} // namespace

const int ImageRow::Alignment;
const int ImageRow::SafetyTrail;

ImageRow::ImageRow()
    : width(0), channels(0), bits(0), planar(false), ownsData(false), data(nullptr),
      dataCapacity(-1)
{}

ImageRow::ImageRow(int newWidth, int newChannels, int newBits, bool newPlanar,
                   unsigned char* newData)
    : width(newWidth), channels(newChannels), bits(newBits), planar(newPlanar),
      ownsData(newData == nullptr), data(newData),
      dataCapacity(CalcBufferSize(newWidth, newChannels, newBits, newPlanar))
{
    if (ownsData)
        data = AllocateRow({newWidth, newChannels, newBits, newPlanar});
}

ImageRow::ImageRow(const ImageRow& other) = default;

ImageRow& ImageRow::operator=(const ImageRow& other) = default;

ImageRow::~ImageRow()
{
    if (ownsData)
        FreeAligned(data, std::size_t{Alignment});
}

int ImageRow::CalcBufferSize(int width, int channels, int bits, bool planar)
{
    return WrappedRowSize({width, channels, bits, planar});
}

void ImageRow::SetData(unsigned char* newData)
{
    const int size = CalcDataSize();
    const RowGeometry geometry{width, channels, bits, planar};
    // An override of CalcDataSize answers for its own size.
    const bool isOfGeometry = size == WrappedRowSize(geometry);
    // A size that has wrapped says nothing of another buffer than the one that was given for it. A
    // row whose true size does not fit either may keep any: no conversion serves it.
    const bool isGiven = data != nullptr && !ownsData && size == dataCapacity;
    const bool holds = isGiven || !isOfGeometry || !HidesTrueRowSize(geometry);
    if (newData == nullptr && size <= dataCapacity && holds)
        return;
    if (newData == nullptr && isOfGeometry && !IsTrueRowSize(geometry))
        throw std::bad_alloc();

    unsigned char* buffer = newData != nullptr ? newData : AllocateRow(size);
    if (ownsData)
        FreeAligned(data, std::size_t{Alignment});
    data = buffer;
    ownsData = newData == nullptr;
    dataCapacity = size;
}

void ImageRow::SetAll(int newWidth, int newChannels, int newBits, bool newPlanar,
                      unsigned char* newData)
{
    const RowGeometry old{width, channels, bits, planar};
    width = newWidth;
    channels = newChannels;
    bits = newBits;
    planar = newPlanar;
    try {
        SetData(newData);
    } catch (...) {
        width = old.width;
        channels = old.channels;
        bits = old.bits;
        planar = old.planar;
        throw;
    }
}

void ImageRow::Release()
{
    if (ownsData)
        FreeAligned(data, std::size_t{Alignment});
    width = 0;
    channels = 0;
    bits = 0;
    planar = false;
    ownsData = false;
    data = nullptr;
    dataCapacity = -1;
}

unsigned char* ImageRow::GetData() const
{
    return data;
}

int ImageRow::GetDataSize() const
{
    return CalcBufferSize(width, channels, bits, planar);
}

int ImageRow::GetWidth() const
{
    return width;
}

int ImageRow::GetChannels() const
{
    return channels;
}

int ImageRow::GetBits() const
{
    return bits;
}

bool ImageRow::IsPlanar() const
{
    return planar;
}

int ImageRow::CalcPlaneSize() const
{
    if (!planar)
        throw noPlanes;
    return WrappedPlaneSize({width, channels, bits, planar});
}

void ImageRow::FillBuffer(int value)
{
    if (dataCapacity > 0)
        std::memset(data, value, static_cast<std::size_t>(dataCapacity));
}

int ImageRow::CalcDataSize() const
{
    return CalcBufferSize(width, channels, bits, planar);
}

} // namespace Pelkraft
} // namespace zvk
