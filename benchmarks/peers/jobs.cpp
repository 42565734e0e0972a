#include "benchmarks/peers/jobs.h"

#include <cstdlib>

namespace zvk::Pelkraft::Benchmarks {
namespace {

constexpr Geometry Interleaved(int channels, int bits)
{
    return {channels, bits, false};
}

constexpr Geometry Planar(int channels, int bits)
{
    return {channels, bits, true};
}

constexpr int swapFirstAndThird[] = {2, 1, 0, 3};
constexpr int fourAmongSix[] = {3, -1, 0, 1, -1, 2};

constexpr Job Common(Job job)
{
    job.common = true;
    return job;
}

constexpr Job Remap(Job job, const int* map)
{
    job.operation = Operation::Remap;
    job.map = map;
    return job;
}

constexpr Job Repeat(Job job, int factor)
{
    job.operation = Operation::Repeat;
    job.factor = factor;
    return job;
}

constexpr Job Pattern(Job job)
{
    job.operation = Operation::Pattern;
    return job;
}

constexpr Job jobs[] = {
    Common({"split_4x8", "split 4 x 8 bit", Interleaved(4, 8), Planar(4, 8)}),
    Common({"merge_4x8", "merge 4 x 8 bit", Planar(4, 8), Interleaved(4, 8)}),
    Common({"widen_4x8", "4 x 8 bit to 16 bit", Interleaved(4, 8), Interleaved(4, 16)}),
    Common({"narrow_4x16", "4 x 16 bit to 8 bit", Interleaved(4, 16), Interleaved(4, 8)}),
    Common({"pack_4x8", "4 x 8 bit to planes of 1 bit", Interleaved(4, 8), Planar(4, 1)}),
    Common(Remap({"remap_4x8", "remap 4 x 8 bit", Interleaved(4, 8), Interleaved(4, 8)},
                 swapFirstAndThird)),
    Common(Repeat({"mirror_4x8", "mirror 4 x 8 bit", Interleaved(4, 8), Interleaved(4, 8)}, -1)),
    Common(
        Repeat({"repeat2_4x8", "repeat 4 x 8 bit twice", Interleaved(4, 8), Interleaved(4, 8)}, 2)),
    Common({"copy_4x8", "copy 4 x 8 bit", Interleaved(4, 8), Interleaved(4, 8)}),
    {"split_3x8", "split 3 x 8 bit", Interleaved(3, 8), Planar(3, 8)},
    {"merge_3x8", "merge 3 x 8 bit", Planar(3, 8), Interleaved(3, 8)},
    {"split_8x8", "split 8 x 8 bit", Interleaved(8, 8), Planar(8, 8)},
    {"merge_8x8", "merge 8 x 8 bit", Planar(8, 8), Interleaved(8, 8)},
    {"split_4x16", "split 4 x 16 bit", Interleaved(4, 16), Planar(4, 16)},
    {"merge_4x16", "merge 4 x 16 bit", Planar(4, 16), Interleaved(4, 16)},
    {"split_widen_4x8", "split 4 x 8 bit to 16 bit", Interleaved(4, 8), Planar(4, 16)},
    {"split_narrow_4x16", "split 4 x 16 bit to 8 bit", Interleaved(4, 16), Planar(4, 8)},
    {"pack_planes_4x8", "4 planes of 8 bit to 1 bit", Planar(4, 8), Planar(4, 1)},
    {"pack_planes_4x8_to_2", "4 planes of 8 bit to 2 bit", Planar(4, 8), Planar(4, 2)},
    {"unpack_planes_4x1", "4 planes of 1 bit to 8 bit", Planar(4, 1), Planar(4, 8)},
    {"unpack_4x1", "4 planes of 1 bit to 4 x 8 bit", Planar(4, 1), Interleaved(4, 8)},
    Remap({"remap_4x8_to_6x8", "remap 4 to 6 x 8 bit", Interleaved(4, 8), Interleaved(6, 8)},
          fourAmongSix),
    Remap({"remap_4x16", "remap 4 x 16 bit", Interleaved(4, 16), Interleaved(4, 16)},
          swapFirstAndThird),
    Repeat({"repeat4_4x8", "repeat 4 x 8 bit four times", Interleaved(4, 8), Interleaved(4, 8)}, 4),
    Repeat({"repeat2_planes_4x8", "repeat 4 planes of 8 bit twice", Planar(4, 8), Planar(4, 8)}, 2),
    Repeat({"mirror_planes_4x1", "mirror 4 planes of 1 bit", Planar(4, 1), Planar(4, 1)}, -1),
    Pattern({"pattern_4_to_8", "dot pattern, 4 in-colours to 8 inks", Interleaved(4, 8),
             Interleaved(8, 8)}),
};

bool IsFillInOneDepth(const Job& job)
{
    return job.operation == Operation::Fill && job.source.bits == job.destination.bits &&
           job.source.bits % 8 == 0;
}

} // namespace

std::span<const Job> GetJobs()
{
    return jobs;
}

bool IsCalled(const Job& job, std::string_view name)
{
    return name == job.name;
}

bool IsSplit(const Job& job)
{
    return IsFillInOneDepth(job) && !job.source.planar && job.destination.planar;
}

bool IsMerge(const Job& job)
{
    return IsFillInOneDepth(job) && job.source.planar && !job.destination.planar;
}

bool IsCopy(const Job& job)
{
    return IsFillInOneDepth(job) && job.source.planar == job.destination.planar;
}

std::size_t CalcPlaneBytes(const Geometry& geometry, int width)
{
    return (static_cast<std::size_t>(width) * static_cast<std::size_t>(geometry.bits) + 7) / 8;
}

std::size_t CalcRowBytes(const Geometry& geometry, int width)
{
    return static_cast<std::size_t>(geometry.channels) * CalcPlaneBytes(geometry, width);
}

int CalcDestinationWidth(const Job& job, int width)
{
    return width * std::abs(job.factor);
}

std::size_t CalcSourceBytes(const Job& job, int width)
{
    return CalcRowBytes(job.source, width);
}

std::size_t CalcDestinationBytes(const Job& job, int width)
{
    return CalcRowBytes(job.destination, CalcDestinationWidth(job, width));
}

} // namespace zvk::Pelkraft::Benchmarks
