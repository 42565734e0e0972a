#include "tests/portal/portal_run.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

void ExpectCopied(const Bytes& expected, const PortalCase& portalCase, const Bytes& source)
{
    ExpectEverywhere(expected, portalCase, source, [](std::int32_t) { return Records(2); });
}

// The active pixels of a row of 0xEE become those of the source; the bits after the last one,
// up to the byte's end, are 0.
Bytes NaivePackedCopy(const PortalCase& portalCase, const Bytes& source, std::int64_t pixels)
{
    Bytes row(RowBytes(portalCase.destination), 0xEE);
    const std::int64_t bits = portalCase.source.bits;
    const auto bitAt = [](std::int64_t plane, std::int64_t planeBits, std::int64_t bit) {
        return plane * ((planeBits + 7) / 8) * 8 + bit;
    };
    for (std::int64_t plane = 0; plane != portalCase.source.channels; ++plane) {
        for (std::int64_t bit = 0; bit != (pixels * bits + 7) / 8 * 8; ++bit) {
            const auto from =
                static_cast<std::size_t>(bitAt(plane, portalCase.source.width * bits, bit));
            const auto to =
                static_cast<std::size_t>(bitAt(plane, portalCase.destination.width * bits, bit));
            const bool isSet = bit < pixels * bits && (source[from / 8] >> (7 - from % 8) & 1) != 0;
            const int weight = 0x80 >> to % 8;
            row[to / 8] =
                static_cast<unsigned char>(isSet ? row[to / 8] | weight : row[to / 8] & ~weight);
        }
    }
    return row;
}

TEST(CopyRoad, SplitsThousandPixelsOfFourColoursIntoPlanes)
{
    Bytes source;
    Bytes expected(4000);
    for (std::size_t i = 0; i != 4000; ++i) {
        source.push_back(static_cast<unsigned char>(i * 7 + i / 256));
        expected[i % 4 * 1000 + i / 4] = source[i];
    }
    ExpectCopied(
        expected,
        {0, MakeFormat(8, LayoutInterleaved, 4, 1000), MakeFormat(8, LayoutPlanar, 4, 1000)},
        source);
}

TEST(CopyRoad, JoinsPlanesIntoPixels)
{
    const Bytes source = RandomBytes(462, 1);
    Bytes expected(source.size());
    for (std::size_t i = 0; i != 231; ++i)
        for (std::size_t byte = 0; byte != 2; ++byte)
            expected[2 * (i % 77 * 3 + i / 77) + byte] = source[2 * i + byte];
    ExpectCopied(expected,
                 {0, MakeFormat(16, LayoutPlanar, 3, 77), MakeFormat(16, LayoutInterleaved, 3, 77)},
                 source);
}

TEST(CopyRoad, KeepsRowsOfEachWidthAndLayout)
{
    for (const std::int32_t bits : {8, 10, 16}) {
        for (const std::int32_t layout : {LayoutInterleaved, LayoutPlanar}) {
            if (bits == 10 && layout == LayoutPlanar)
                continue;
            for (const std::int32_t channels : {1, 3, 17}) {
                for (const std::int64_t width : {1, 2, 15, 16, 17, 31, 32, 33, 100}) {
                    SCOPED_TRACE(testing::Message() << bits << " bits, layout " << layout << ", "
                                                    << channels << " x " << width);
                    const auto format = MakeFormat(bits, layout, channels, width);
                    const Bytes source = RandomBytes(RowBytes(format), 2);
                    ExpectCopied(source, {0, format, format}, source);
                }
            }
        }
    }
}

// A destination of one depth less than a byte is still a row of bytes if it is interleaved.
TEST(CopyRoad, KeepsInterleavedRowsOfSmallSamplesByteForByte)
{
    for (const std::int32_t bits : {1, 2}) {
        for (std::int64_t width = 1; width != 40; ++width) {
            const auto format = MakeFormat(bits, LayoutInterleaved, 3, width);
            const Bytes source(3 * static_cast<std::size_t>(width), 0xFF);
            ExpectCopied(source, {0, format, format}, source);
        }
    }
}

TEST(CopyRoad, ClearsTheBitsBehindTheLastPixel)
{
    const auto format = MakeFormat(1, LayoutPlanarPacked, 1, 10);
    ExpectCopied({0xFF, 0xC0}, {0, format, format}, {0xFF, 0xFF});
}

TEST(CopyRoad, MovesTheSixteenthColumnOfAPackedRow)
{
    for (const std::int64_t width : {121, 126, 127, 128, 129}) {
        const auto format = MakeFormat(1, LayoutPlanarPacked, 2, width);
        const Bytes source = RandomBytes(RowBytes(format), 3);
        const PortalCase portalCase{0, format, format};
        ExpectCopied(NaivePackedCopy(portalCase, source, width), portalCase, source);
    }
    for (const std::int64_t width : {61, 62, 63, 64, 65}) {
        const auto format = MakeFormat(2, LayoutPlanarPacked, 2, width);
        const Bytes source = RandomBytes(RowBytes(format), 4);
        const PortalCase portalCase{0, format, format};
        ExpectCopied(NaivePackedCopy(portalCase, source, width), portalCase, source);
    }
}

TEST(CopyRoad, MovesPackedRowsOfEachPairOfWidths)
{
    const std::int64_t widths[] = {1, 7, 8, 9, 20, 63, 64, 65, 127, 128, 129, 136, 250, 256, 260};
    for (const std::int32_t bits : {1, 2}) {
        for (const std::int64_t sourceWidth : widths) {
            for (const std::int64_t width : widths) {
                SCOPED_TRACE(testing::Message()
                             << bits << " bits, " << sourceWidth << " into " << width << " pixels");
                PortalCase portalCase{0, MakeFormat(bits, LayoutPlanarPacked, 3, sourceWidth),
                                      MakeFormat(bits, LayoutPlanarPacked, 3, width)};
                const std::int64_t pixels = std::min(sourceWidth, width);
                portalCase.source.activeWidth = pixels;
                portalCase.destination.activeWidth = pixels;
                const Bytes source = RandomBytes(RowBytes(portalCase.source), 5);
                ExpectCopied(NaivePackedCopy(portalCase, source, pixels), portalCase, source);
            }
        }
    }
}

// The last byte's end is found by the rows' widths; the active width only says how far to go.
TEST(CopyRoad, MasksByTheWidthAndNotByTheActiveWidth)
{
    auto format = MakeFormat(1, LayoutPlanarPacked, 1, 13);
    format.activeWidth = 10;
    ExpectCopied({0xFF, 0xF8}, {0, format, format}, {0xFF, 0xFF});
    format.width = 16;
    ExpectCopied({0xFF, 0xFF}, {0, format, format}, {0xFF, 0xFF});
}

TEST(CopyRoad, LeavesTheRestOfALongerRowAlone)
{
    PortalCase portalCase{0, MakeFormat(8, LayoutInterleaved, 2, 35),
                          MakeFormat(8, LayoutPlanar, 2, 50)};
    portalCase.destination.activeWidth = 35;
    Bytes source(70);
    Bytes expected(100, 0xEE);
    for (std::size_t i = 0; i != 70; ++i) {
        source[i] = static_cast<unsigned char>(i);
        expected[i % 2 * 50 + i / 2] = source[i];
    }
    ExpectCopied(expected, portalCase, source);

    portalCase = {0, MakeFormat(8, LayoutPlanar, 2, 50), MakeFormat(8, LayoutInterleaved, 2, 35)};
    portalCase.source.activeWidth = 35;
    const Bytes longSource = expected;
    ExpectCopied(source, portalCase, longSource);
}

TEST(CopyRoad, NamesAFormatThatNoRowHas)
{
    PortalCase portalCase{0, MakeFormat(8, LayoutInterleaved, 1, 4),
                          MakeFormat(24, LayoutPlanar, 1, 4)};
    const Bytes source(16);
    EXPECT_EQ("ChunkSaveFacilityInternal::SelectDescriptorX86 Unsupported format",
              FailureOf(portalCase, source, {{}, {}}));
    portalCase.sseVersion = 3;
    EXPECT_EQ("ChunkSaveFacilityInternal::SelectDescriptor Unsupported format",
              FailureOf(portalCase, source, {{}, {}}));
    // The source is looked at first.
    portalCase.source = portalCase.destination;
    EXPECT_EQ("ChunkLoadFacilityInternal::SelectDescriptor Unsupported format",
              FailureOf(portalCase, source, {{}, {}}));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
