#include "tests/support/naive_rows.h"

#include <algorithm>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Interleaved samples of 1, 2 and 10 bits are treated as those of the bytes that they take.
int TreatedBits(const NaiveGeometry& form)
{
    return form.planar ? form.bits : (form.bits + 7) / 8 * 8;
}

unsigned FullScale(int bits)
{
    return (1U << bits) - 1;
}

unsigned ToneOf(unsigned value, int from, int to)
{
    unsigned eight = NaiveDepthChange(value, 16, 8);
    if (from <= 8)
        eight = value * (255 / FullScale(from));
    if (to == 16)
        return eight * 257;
    return (eight * FullScale(to) + 127) / 255;
}

unsigned SampleOf(const NaiveJoin& join, unsigned value)
{
    const int from = TreatedBits(join.source);
    const int to = TreatedBits(join.target);
    if (from == to)
        return value;
    if (join.samples == NaiveSamples::AsTones)
        return ToneOf(value, from, to);
    if (join.samples == NaiveSamples::AsLevels)
        return value & FullScale(to);
    return NaiveDepthChange(value, from, to);
}

unsigned TargetSample(const NaiveJoin& join, const std::vector<unsigned>& samples, int pixel,
                      int channel)
{
    const int entry = join.maps ? join.map[static_cast<std::size_t>(channel)] : channel;
    if (entry < 0)
        return entry == -1 ? 0 : static_cast<unsigned>(-2 - entry);
    const int nth = pixel / join.repeat;
    const int from = join.mirrored ? join.source.width - 1 - nth : nth;
    const std::ptrdiff_t sample = std::ptrdiff_t{from} * join.source.channels + entry;
    const unsigned value = SampleOf(join, samples[static_cast<std::size_t>(sample)]);
    return join.inverted ? FullScale(TreatedBits(join.target)) - value : value;
}

std::size_t PlaneBytes(const NaiveGeometry& form)
{
    const std::size_t planes = form.planar ? static_cast<std::size_t>(form.channels) : 1;
    return planes == 0 ? 0 : NaiveRowBytes(form) / planes;
}

template <typename Move>
void ForEachPlane(const NaiveGeometry& form, const NaivePlacement& at, int row, Move move)
{
    const int planes = form.planar ? form.channels : 1;
    for (int plane = 0; plane != planes; ++plane)
        move(at.offset + row * at.rowStep + plane * at.planeStep,
             static_cast<std::ptrdiff_t>(PlaneBytes(form)) * plane,
             static_cast<std::ptrdiff_t>(PlaneBytes(form)));
}

} // namespace

std::string Describe(const NaiveJoin& join)
{
    std::string text = Describe(join.source) + " to " + Describe(join.target) + ", repeat " +
                       std::to_string(join.repeat) + (join.mirrored ? ", mirrored" : "") +
                       (join.inverted ? ", inverted" : "") + ", samples " +
                       std::to_string(static_cast<int>(join.samples));
    if (join.maps)
        text += ", map";
    for (std::size_t i = 0; i != std::min<std::size_t>(join.map.size(), 80); ++i)
        text.append(" ").append(std::to_string(join.map[i]));
    return text;
}

Bytes NaiveJoined(const NaiveJoin& join, const Bytes& sourceRow, const Bytes& before)
{
    Bytes row = before;
    const std::vector<unsigned> samples = ReadSamples(join.source, sourceRow);
    const int pixels = CountSetPixels(join.source, join.target, join.repeat);
    for (int pixel = 0; pixel != pixels; ++pixel)
        for (int channel = 0; channel != join.target.channels; ++channel)
            WriteSample(join.target, row, pixel, channel,
                        TargetSample(join, samples, pixel, channel));
    if (IsNaivePacked(join.target))
        ClearBehindLastPixel(join.target, row, pixels);
    return row;
}

Bytes TakeRow(const NaiveGeometry& form, const NaivePlacement& at, const Bytes& memory, int row)
{
    Bytes content(NaiveRowBytes(form));
    ForEachPlane(form, at, row, [&](std::ptrdiff_t from, std::ptrdiff_t to, std::ptrdiff_t bytes) {
        std::copy_n(memory.begin() + from, bytes, content.begin() + to);
    });
    return content;
}

void PutRow(const NaiveGeometry& form, const NaivePlacement& at, Bytes& memory, int row,
            const Bytes& content)
{
    ForEachPlane(form, at, row, [&](std::ptrdiff_t to, std::ptrdiff_t from, std::ptrdiff_t bytes) {
        std::copy_n(content.begin() + from, bytes, memory.begin() + to);
    });
}

} // namespace zvk::Pelkraft::TestSupport
