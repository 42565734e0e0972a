#include "tests/rows/guarded_row.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <optional>

// The portable unpacker covers whole groups of four channels from the end of the slot down, and
// leaves the first channels packed where the slot is not full. Whole conversions show it so: in
// the first 16 pixels of each group such a channel holds its packed bytes.
namespace zvk::Pelkraft::TestSupport {
namespace {

using Sample = std::optional<unsigned>;

constexpr int channelCounts[] = {1, 2, 4, 5, 8, 12, 13, 15, 16, 17, 20, 28, 29, 32, 33, 45};
constexpr int widths[] = {1, 7, 16, 17, 40, 64, 127, 128, 129, 200, 256, 300};

int CountLeftPacked(int channels)
{
    return (channels + 15) / 16 * 16 - (channels + 3) / 4 * 4;
}

// All samples of a packed row's bytes from the last to the first: each plane's, then what stands
// before the plane, which are the unused bits of the plane before it, and zeros before the first.
Bytes Mirrored(const NaiveGeometry& geometry, const Bytes& row)
{
    const int perByte = 8 / geometry.bits;
    const int planeBytes = static_cast<int>(row.size()) / geometry.channels;
    const NaiveGeometry whole{static_cast<int>(row.size()) * perByte, 1, geometry.bits, true};
    const std::vector<unsigned> samples = ReadSamples(whole, row);
    Bytes mirrored;
    for (int channel = 0; channel != geometry.channels; ++channel) {
        int next = channel * planeBytes * perByte + geometry.width - 1;
        for (int column = 0; column != planeBytes; ++column) {
            unsigned byte = 0;
            for (int k = 0; k != perByte; ++k, --next)
                byte = (byte << geometry.bits) +
                       (next < 0 ? 0 : samples[static_cast<std::size_t>(next)]);
            mirrored.push_back(static_cast<unsigned char>(byte));
        }
    }
    return mirrored;
}

std::size_t At(int pixel, int channels, int channel)
{
    const int sample = pixel * channels + channel;
    return static_cast<std::size_t>(sample);
}

unsigned char PackedByte(const NaiveGeometry& geometry, const Bytes& row, int channel, int column)
{
    const int planeBytes = (geometry.width * geometry.bits + 7) / 8;
    const int place = channel * planeBytes + column;
    return column < planeBytes ? row[static_cast<std::size_t>(place)] : 0;
}

// The byte of a channel that stays packed; nothing where the buffer keeps what it held.
Sample LeftPacked(const NaiveGeometry& geometry, const Bytes& row, int pixel, int channel)
{
    const int pixelsPerGroup = 128 / geometry.bits;
    if (pixel % pixelsPerGroup >= 16)
        return std::nullopt;
    const int column = pixel / pixelsPerGroup * 16 + pixel % pixelsPerGroup;
    return PackedByte(geometry, row, channel, column);
}

// The unpacked chunks, pixel by pixel.
std::vector<Sample> UnpackedRow(const NaiveGeometry& geometry, const Bytes& row)
{
    const auto samples = ReadSamples(geometry, row);
    std::vector<Sample> unpacked(samples.begin(), samples.end());
    const int leftPacked = std::min(CountLeftPacked(geometry.channels), geometry.channels);
    for (int pixel = 0; pixel != geometry.width; ++pixel)
        for (int channel = 0; channel != leftPacked; ++channel)
            unpacked[At(pixel, geometry.channels, channel)] =
                LeftPacked(geometry, row, pixel, channel);
    return unpacked;
}

unsigned InDepth(unsigned value, int bits)
{
    if (bits == 16)
        return value * 257;
    return bits == 8 ? value : value % (1U << bits);
}

struct Case
{
    NaiveGeometry from;
    NaiveGeometry to;
    // 0 is a plain fill.
    int factor;
};

void ExpectCase(const Case& tested)
{
    const auto& [from, to, factor] = tested;
    SCOPED_TRACE(Describe(from) + " to " + Describe(to) + ", factor " + std::to_string(factor));
    const GuardedRow source(from, static_cast<std::uint32_t>(from.width + from.channels));
    GuardedRow row(to, 99);
    if (factor == 0)
        row.row.FillFrom(source.row, false, true);
    else
        row.row.FillFromWithPixelRepeat(source.row, factor, false, true);

    const Bytes walked = factor < 0 ? Mirrored(from, source.before) : source.before;
    const std::vector<Sample> unpacked = UnpackedRow(from, walked);
    const std::vector<unsigned> samples = ReadSamples(to, row.buffer.bytes());
    const int repeats = std::max(std::abs(factor), 1);
    for (int pixel = 0; pixel != to.width; ++pixel)
        for (int channel = 0; channel != to.channels; ++channel) {
            const Sample& from8 = unpacked[At(pixel / repeats, to.channels, channel)];
            if (!from8)
                continue;
            ASSERT_EQ(InDepth(*from8, to.bits), samples[At(pixel, to.channels, channel)])
                << "pixel " << pixel << ", channel " << channel;
        }
    EXPECT_TRUE(source.IsUntouched());
}

// Sample by sample, but for those that the buffer decides.
void ExpectUnpacked(const std::vector<Sample>& expected, const NaiveGeometry& geometry,
                    const Bytes& row)
{
    const std::vector<unsigned> samples = ReadSamples(geometry, row);
    ASSERT_EQ(expected.size(), samples.size());
    for (std::size_t at = 0; at != samples.size(); ++at) {
        if (!expected[at])
            continue;
        ASSERT_EQ(*expected[at], samples[at]) << Describe(geometry) << ", sample " << at;
    }
}

void ExpectAll(int fromBits, int toBits, bool toPlanar, std::initializer_list<int> factors)
{
    for (const int channels : channelCounts)
        for (const int width : widths)
            for (const int factor : factors) {
                const int destinationWidth = width * std::max(std::abs(factor), 1);
                ExpectCase({{width, channels, fromBits, true},
                            {destinationWidth, channels, toBits, toPlanar},
                            factor});
            }
}

TEST(PortableUnpack, LeavesTheFirstChannelsPackedInEightBits)
{
    for (const int depth : {1, 2}) {
        ExpectAll(depth, 8, false, {0, 1, 2, 4, -1, -2, -4});
        ExpectAll(depth, 8, true, {0, -1, 2});
    }
}

TEST(PortableUnpack, LeavesTheFirstChannelsPackedInSixteenBits)
{
    for (const int depth : {1, 2}) {
        ExpectAll(depth, 16, true, {0, 1, -1, 4});
        ExpectAll(depth, 16, false, {0, -2});
    }
}

TEST(PortableUnpack, LeavesTheFirstChannelsPackedInTheOtherDepth)
{
    ExpectAll(1, 2, true, {0, 1, -1, 2});
    ExpectAll(2, 1, true, {0, 1, -1, 2});
}

TEST(PortableUnpack, LeavesTheFirstChannelsPackedInARepeatOfEqualDepth)
{
    for (const int depth : {1, 2})
        ExpectAll(depth, depth, true, {1, 2, 4, -1, -2, -4});
}

// Whole planes, with the bits after the last pixel; a plane of zeros for a negative entry.
Bytes MappedPlanes(const NaiveGeometry& geometry, const Bytes& row, const std::vector<int>& map)
{
    const std::size_t planeBytes = row.size() / static_cast<std::size_t>(geometry.channels);
    Bytes planes(planeBytes * map.size());
    for (std::size_t at = 0; at != planes.size(); ++at) {
        const int entry = map[at / planeBytes];
        if (entry >= 0)
            planes[at] = row[static_cast<std::size_t>(entry) * planeBytes + at % planeBytes];
    }
    return planes;
}

// A map runs on the packed bytes: the channels that it makes are the ones left packed.
TEST(PortableUnpack, LeavesTheFirstChannelsOfAMapPacked)
{
    for (const int depth : {1, 2})
        for (const int sourceChannels : {1, 4, 16, 20})
            for (const int channels : channelCounts) {
                const NaiveGeometry from{133, sourceChannels, depth, true};
                const NaiveGeometry mapped{133, channels, depth, true};
                const NaiveGeometry to{133, channels, 8, false};
                std::vector<int> map;
                for (int channel = 0; channel != channels; ++channel)
                    map.push_back((channel * 3 + 2) % (sourceChannels + 1) - 1);
                const GuardedRow source(from, 5);
                GuardedRow row(to, 6);
                row.row.FillFromWithRemap(source.row, map.data(), false, true);
                ExpectUnpacked(UnpackedRow(mapped, MappedPlanes(from, source.before, map)), to,
                               row.buffer.bytes());
            }
}

// The same in bytes, worked by hand: four channels leave the first 12 lanes of the slot alone.
TEST(PortableUnpack, OfFourChannelsUnpacksNoneOfThem)
{
    const GuardedRow source({16, 4, 1, true},
                            Bytes{0xF0, 0x0F, 0xAA, 0x55, 0x01, 0x80, 0xFF, 0x00});
    GuardedRow row({16, 4, 8, true}, Bytes(64, 0x5A));
    row.row.FillFrom(source.row, false, true);
    const Bytes after = row.buffer.bytes();
    for (std::size_t plane = 0; plane != 4; ++plane) {
        EXPECT_EQ(source.before[plane * 2], after[plane * 16]);
        EXPECT_EQ(source.before[plane * 2 + 1], after[plane * 16 + 1]);
        for (std::size_t pixel = 2; pixel != 16; ++pixel)
            EXPECT_EQ(0, after[plane * 16 + pixel]);
    }
}

// A fill of packed rows of equal depth has no unpacker in it.
TEST(PortableUnpack, HasNoPartInAPlainFillOfEqualDepth)
{
    for (const int depth : {1, 2})
        for (const int channels : channelCounts) {
            const NaiveGeometry geometry{133, channels, depth, true};
            const GuardedRow source(geometry, 7);
            GuardedRow row(geometry, 8);
            row.row.FillFrom(source.row, false, true);
            EXPECT_EQ(NaiveConvert(geometry, source.before, geometry, row.before, {}),
                      row.buffer.bytes());
        }
}

#ifdef PELKRAFT_VECTOR_ROAD
TEST(VectorUnpack, LeavesNoChannelPacked)
{
    for (const int depth : {1, 2})
        for (const int channels : channelCounts)
            for (const int factor : {1, 2, -4}) {
                const NaiveGeometry from{133, channels, depth, true};
                const NaiveGeometry to{133 * std::abs(factor), channels, depth, true};
                const GuardedRow source(from, 7);
                GuardedRow row(to, 8);
                row.row.FillFromWithPixelRepeat(source.row, factor, false, false);
                NaiveOperation repeat;
                repeat.factor = factor;
                EXPECT_EQ(NaiveConvert(from, source.before, to, row.before, repeat),
                          row.buffer.bytes());
            }
}
#endif

} // namespace
} // namespace zvk::Pelkraft::TestSupport
