#include "benchmarks/peers/entry.h"

#include <libyuv.h>

#include <cstddef>
#include <cstdint>
#include <memory>

// Its "ARGB" is the byte order blue, green, red, alpha: the planes go in as third, second, first
// and fourth.
namespace zvk::Pelkraft::Benchmarks {
namespace {

constexpr OwnRule highByte{"keeps the high byte", 1};

using RowWork = void (*)(const unsigned char* source, unsigned char* destination, int width);

const std::uint16_t* Wide(const unsigned char* row)
{
    return reinterpret_cast<const std::uint16_t*>(row);
}

std::uint16_t* Wide(unsigned char* row)
{
    return reinterpret_cast<std::uint16_t*>(row);
}

template <typename Sample>
Sample* Plane(Sample* row, int width, std::ptrdiff_t plane)
{
    return row + plane * width;
}

void Split3(const unsigned char* s, unsigned char* d, int w)
{
    libyuv::SplitRGBPlane(s, 3 * w, d, w, Plane(d, w, 1), w, Plane(d, w, 2), w, w, 1);
}

void Merge3(const unsigned char* s, unsigned char* d, int w)
{
    libyuv::MergeRGBPlane(s, w, Plane(s, w, 1), w, Plane(s, w, 2), w, d, 3 * w, w, 1);
}

void Split4(const unsigned char* s, unsigned char* d, int w)
{
    libyuv::SplitARGBPlane(s, 4 * w, Plane(d, w, 2), w, Plane(d, w, 1), w, d, w, Plane(d, w, 3), w,
                           w, 1);
}

void Merge4(const unsigned char* s, unsigned char* d, int w)
{
    libyuv::MergeARGBPlane(Plane(s, w, 2), w, Plane(s, w, 1), w, s, w, Plane(s, w, 3), w, d, 4 * w,
                           w, 1);
}

void Merge4Wide(const unsigned char* s, unsigned char* d, int w)
{
    const std::uint16_t* p = Wide(s);
    libyuv::MergeAR64Plane(Plane(p, w, 2), w, Plane(p, w, 1), w, p, w, Plane(p, w, 3), w, Wide(d),
                           4 * w, w, 1, 16);
}

void Widen(const unsigned char* s, unsigned char* d, int w)
{
    libyuv::ARGBToAR64(s, 4 * w, Wide(d), 4 * w, w, 1);
}

// Each sample's byte beside itself: 8 bits widened to 16, or a plane repeated twice.
void MergeWithItself(const unsigned char* s, unsigned char* d, int w)
{
    libyuv::MergeUVPlane(s, 4 * w, s, 4 * w, d, 8 * w, 4 * w, 1);
}

void Narrow(const unsigned char* s, unsigned char* d, int w)
{
    libyuv::AR64ToARGB(Wide(s), 4 * w, d, 4 * w, w, 1);
}

void NarrowPlane(const unsigned char* s, unsigned char* d, int w)
{
    libyuv::Convert16To8Plane(Wide(s), 4 * w, d, 4 * w, 256, 4 * w, 1);
}

void Shuffle(const unsigned char* s, unsigned char* d, int w)
{
    const std::uint8_t shuffle[16] = {2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15};
    libyuv::ARGBShuffle(s, 4 * w, d, 4 * w, shuffle, w, 1);
}

void ShuffleWide(const unsigned char* s, unsigned char* d, int w)
{
    const std::uint8_t shuffle[16] = {4, 5, 2, 3, 0, 1, 6, 7, 12, 13, 10, 11, 8, 9, 14, 15};
    libyuv::AR64Shuffle(Wide(s), 4 * w, Wide(d), 4 * w, shuffle, w, 1);
}

void Mirror(const unsigned char* s, unsigned char* d, int w)
{
    libyuv::ARGBMirror(s, 4 * w, d, 4 * w, w, 1);
}

template <int factor>
void Scale(const unsigned char* s, unsigned char* d, int w)
{
    libyuv::ARGBScale(s, 4 * w, w, 1, d, 4 * factor * w, factor * w, 1, libyuv::kFilterNone);
}

void Copy(const unsigned char* s, unsigned char* d, int w)
{
    libyuv::CopyPlane(s, 4 * w, d, 4 * w, 4 * w, 1);
}

struct NamedWork
{
    const char* job;
    const char* entry;
    RowWork work;
    OwnRule rule = {};
};

constexpr NamedWork works[] = {
    {"split_3x8", "libyuv_SplitRGBPlane", Split3},
    {"merge_3x8", "libyuv_MergeRGBPlane", Merge3},
    {"split_4x8", "libyuv_SplitARGBPlane", Split4},
    {"merge_4x8", "libyuv_MergeARGBPlane", Merge4},
    {"merge_4x16", "libyuv_MergeAR64Plane", Merge4Wide},
    {"widen_4x8", "libyuv_ARGBToAR64", Widen},
    {"widen_4x8", "libyuv_MergeUVPlane_self", MergeWithItself},
    {"narrow_4x16", "libyuv_AR64ToARGB", Narrow, highByte},
    {"narrow_4x16", "libyuv_Convert16To8Plane", NarrowPlane, highByte},
    {"remap_4x8", "libyuv_ARGBShuffle", Shuffle},
    {"remap_4x16", "libyuv_AR64Shuffle", ShuffleWide},
    {"mirror_4x8", "libyuv_ARGBMirror", Mirror},
    {"repeat2_4x8", "libyuv_ARGBScale", Scale<2>},
    {"repeat4_4x8", "libyuv_ARGBScale", Scale<4>},
    {"repeat2_planes_4x8", "libyuv_MergeUVPlane_self", MergeWithItself},
    {"copy_4x8", "libyuv_CopyPlane", Copy},
};

// Two calls through a row of four samples of a byte between them.
Entry Join(const char* name, RowWork first, RowWork second, OwnRule rule)
{
    return {name,
            [=](int width) -> RowCall {
                const auto between = std::make_shared<std::vector<unsigned char>>(
                    4 * static_cast<std::size_t>(width));
                return [=](const unsigned char* source, unsigned char* destination) {
                    first(source, between->data(), width);
                    second(between->data(), destination, width);
                };
            },
            rule};
}

void Add(Entries& entries, const Job& job)
{
    for (const NamedWork& named : works)
        if (IsCalled(job, named.job))
            entries.push_back({named.entry,
                               [work = named.work](int width) -> RowCall {
                                   return [=](const unsigned char* source,
                                              unsigned char* destination) {
                                       work(source, destination, width);
                                   };
                               },
                               named.rule});
    if (IsCalled(job, "split_widen_4x8"))
        entries.push_back(
            Join("libyuv_SplitARGBPlane+MergeUVPlane_self", Split4, MergeWithItself, {}));
    if (IsCalled(job, "split_narrow_4x16"))
        entries.push_back(Join("libyuv_AR64ToARGB+SplitARGBPlane", Narrow, Split4, highByte));
}

} // namespace

Peer StartLibyuv()
{
    return {"libyuv " + std::to_string(LIBYUV_VERSION), Add};
}

} // namespace zvk::Pelkraft::Benchmarks
