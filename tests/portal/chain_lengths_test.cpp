#include "tests/portal/portal_run.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

enum class Kind
{
    Reverse,
    Repeat,
    Remap,
    Unpack,
    Pack,
    Widen,
    Narrow,
};

struct Step
{
    Kind kind;
    // A repeat's factor, a pack's depth.
    std::int32_t number = 0;
};

// A chain between a row of sourceBits and one of bits. Rows below 8 bits are packed, the others
// are interleaved and planar in turn.
struct RealChain
{
    const char* name;
    std::int32_t sourceBits;
    std::int32_t bits;
    std::vector<Step> steps;
};

void PrintTo(const RealChain& chain, std::ostream* out)
{
    *out << chain.name;
}

constexpr Step reverse{Kind::Reverse};
constexpr Step remap{Kind::Remap};
constexpr Step unpack{Kind::Unpack};
constexpr Step widen{Kind::Widen};
constexpr Step narrow{Kind::Narrow};
constexpr Step repeatBy1{Kind::Repeat, 1};
constexpr Step repeatBy2{Kind::Repeat, 2};
constexpr Step repeatBy4{Kind::Repeat, 4};
constexpr Step packTo1{Kind::Pack, 1};
constexpr Step packTo2{Kind::Pack, 2};

const std::vector<RealChain>& RealChains()
{
    static const std::vector<RealChain> chains = {
        {"Reverse8", 8, 8, {reverse}},
        {"Reverse16Repeat2", 16, 16, {reverse, repeatBy2}},
        {"Reverse8Remap", 8, 8, {reverse, remap}},
        {"Reverse1", 1, 1, {reverse}},
        {"Reverse2Remap", 2, 2, {reverse, remap}},
        {"RemapWiden", 8, 16, {remap, widen}},
        {"ReverseRemapWiden", 8, 16, {reverse, remap, widen}},
        {"WidenRepeat4", 8, 16, {widen, repeatBy4}},
        {"ReverseWidenRepeat2", 8, 16, {reverse, widen, repeatBy2}},
        {"Unpack1Widen", 1, 16, {unpack, widen}},
        {"Remap1UnpackWiden", 1, 16, {remap, unpack, widen}},
        {"Reverse2RemapUnpackWiden", 2, 16, {reverse, remap, unpack, widen}},
        {"Reverse1UnpackWidenRepeat4", 1, 16, {reverse, unpack, widen, repeatBy4}},
        {"Reverse2UnpackWidenRepeat2", 2, 16, {reverse, unpack, widen, repeatBy2}},
        {"Repeat4PackTo1", 8, 1, {repeatBy4, packTo1}},
        {"ReverseRepeat2PackTo2", 8, 2, {reverse, repeatBy2, packTo2}},
        {"PackTo1Remap", 8, 1, {packTo1, remap}},
        {"ReversePackTo2Remap", 8, 2, {reverse, packTo2, remap}},
        {"NarrowReverse", 16, 8, {narrow, reverse}},
        {"NarrowReverseRepeat4", 16, 8, {narrow, reverse, repeatBy4}},
        {"NarrowReverseRemap", 16, 8, {narrow, reverse, remap}},
        {"NarrowPackTo2", 16, 2, {narrow, packTo2}},
        {"NarrowReverseRepeat2PackTo1", 16, 1, {narrow, reverse, repeatBy2, packTo1}},
        {"NarrowReverseRepeat4PackTo2", 16, 2, {narrow, reverse, repeatBy4, packTo2}},
        {"NarrowReversePackTo1Remap", 16, 1, {narrow, reverse, packTo1, remap}},
        {"NarrowPackTo2Remap", 16, 2, {narrow, packTo2, remap}},
        {"Reverse1RemapUnpack", 1, 8, {reverse, remap, unpack}},
        {"Reverse2UnpackRepeat4", 2, 8, {reverse, unpack, repeatBy4}},
        {"Unpack1Repeat2", 1, 8, {unpack, repeatBy2}},
        {"Unpack1PackTo2", 1, 2, {unpack, packTo2}},
        {"Unpack2PackTo1", 2, 1, {unpack, packTo1}},
        {"Unpack2Repeat1PackTo2", 2, 2, {unpack, repeatBy1, packTo2}},
        {"Reverse1UnpackRepeat2PackTo1", 1, 1, {reverse, unpack, repeatBy2, packTo1}},
        {"Reverse2UnpackRepeat4PackTo2", 2, 2, {reverse, unpack, repeatBy4, packTo2}},
        {"Reverse1UnpackRepeat4PackTo2", 1, 2, {reverse, unpack, repeatBy4, packTo2}},
        {"Reverse2UnpackPackTo1Remap", 2, 1, {reverse, unpack, packTo1, remap}},
        {"Reverse1UnpackPackTo2Remap", 1, 2, {reverse, unpack, packTo2, remap}},
    };
    return chains;
}

constexpr std::int64_t widths[] = {1,  2,  5,  15,  16,  17,  33,  61,  63,
                                   64, 65, 77, 127, 128, 129, 255, 257, 1000};

struct RowPair
{
    std::int32_t sseVersion;
    std::int32_t channels;
    std::int64_t sourceWidth;
    std::int64_t width;
};

std::vector<std::int32_t> MapOf(std::int32_t channels)
{
    std::vector<std::int32_t> map;
    for (std::int32_t i = 0; i != channels; ++i)
        map.push_back(i == 1 ? -1 : (i * 5 + 2) % channels);
    return map;
}

ChunkConvertFacility MakeRecord(const Step& step, std::int32_t sourceBits, std::int32_t sseVersion,
                                const std::vector<std::int32_t>& map)
{
    using Facility = ChunkConvertFacility;
    switch (step.kind) {
    case Kind::Reverse:
        return Facility::Create_Reverse(sseVersion);
    case Kind::Repeat:
        return Facility::Create_PixelRepeat(sseVersion, step.number);
    case Kind::Remap:
        return Facility::Create_Remap(sseVersion, map.size(), map.data());
    case Kind::Unpack:
        return Facility::Create_Unpacker(sseVersion, sourceBits);
    case Kind::Pack:
        return Facility::Create_Packer(sseVersion, step.number);
    case Kind::Widen:
        return Facility::Create_Convert8to16(sseVersion);
    case Kind::Narrow:
        return Facility::Create_Convert16to8(sseVersion);
    }
    return {};
}

std::int32_t LayoutFor(std::int32_t bits, bool planar)
{
    if (bits < 8)
        return LayoutPlanarPacked;
    return planar ? LayoutPlanar : LayoutInterleaved;
}

std::int64_t FactorOf(const Step& step)
{
    return step.kind == Kind::Repeat ? step.number : 1;
}

bool HasReverse(const std::vector<Step>& steps)
{
    return std::any_of(steps.begin(), steps.end(),
                       [](const Step& step) { return step.kind == Kind::Reverse; });
}

// The pixels that take part, as the widths of the two rows say.
void SetActiveWidths(PortalCase& portalCase, std::int64_t factor)
{
    auto& [sseVersion, source, destination] = portalCase;
    source.activeWidth = std::min(source.width, (destination.width + factor - 1) / factor);
    destination.activeWidth = std::min(source.width * factor, destination.width);
}

std::int32_t BitsBehind(const Step& step, std::int32_t bits)
{
    switch (step.kind) {
    case Kind::Unpack:
    case Kind::Narrow:
        return 8;
    case Kind::Widen:
        return 16;
    case Kind::Pack:
        return step.number;
    default:
        return bits;
    }
}

Bytes RunWhole(const RealChain& chain, PortalCase portalCase, const Bytes& source,
               const Placement& placement = {})
{
    const std::vector<std::int32_t> map = MapOf(portalCase.source.channels);
    Records records;
    std::int64_t factor = 1;
    for (const Step& step : chain.steps) {
        records.push_back(MakeRecord(step, chain.sourceBits, portalCase.sseVersion, map));
        factor *= FactorOf(step);
    }
    portalCase.source.reversed = HasReverse(chain.steps);
    SetActiveWidths(portalCase, factor);
    return RunPortal(portalCase, source, records, placement);
}

// Each step is a conversion of its own, from row to row.
Bytes RunStepByStep(const RealChain& chain, const PortalCase& whole, const Bytes& source)
{
    const std::vector<std::int32_t> map = MapOf(whole.source.channels);
    ImageRowFormat format = whole.source;
    Bytes row = source;
    for (std::size_t i = 0; i != chain.steps.size(); ++i) {
        const Step& step = chain.steps[i];
        PortalCase one{whole.sseVersion, format, whole.destination};
        if (i + 1 != chain.steps.size()) {
            const std::int32_t bits = BitsBehind(step, format.bits);
            one.destination = MakeFormat(bits, LayoutFor(bits, false), format.channels,
                                         format.width * FactorOf(step));
        }
        one.source.reversed = step.kind == Kind::Reverse;
        SetActiveWidths(one, FactorOf(step));
        row = RunPortal(one, row, {MakeRecord(step, chain.sourceBits, one.sseVersion, map)});
        format = one.destination;
    }
    return row;
}

PortalCase CaseFor(const RealChain& chain, const RowPair& pair)
{
    const bool planar = pair.sourceWidth % 2 != 0;
    return {pair.sseVersion,
            MakeFormat(chain.sourceBits, LayoutFor(chain.sourceBits, planar), pair.channels,
                       pair.sourceWidth),
            MakeFormat(chain.bits, LayoutFor(chain.bits, pair.width % 2 == 0), pair.channels,
                       pair.width)};
}

std::string Describe(const RowPair& pair)
{
    return std::to_string(pair.channels) + " channels, " + std::to_string(pair.sourceWidth) +
           " into " + std::to_string(pair.width) + " pixels at level " +
           std::to_string(pair.sseVersion);
}

// The portable unpacker is whole only where the channels fill the slots but for three bytes.
std::vector<std::int32_t> ChannelsFor(std::int32_t sseVersion)
{
    return sseVersion < 3 ? std::vector<std::int32_t>{13, 16, 30}
                          : std::vector<std::int32_t>{1, 3, 16, 17};
}

std::vector<RowPair> PairsFor(const RealChain& chain)
{
    std::int64_t factor = 1;
    for (const Step& step : chain.steps)
        factor *= FactorOf(step);
    std::vector<RowPair> pairs;
    for (const std::int32_t sseVersion : {0, 3})
        for (const std::int32_t channels : ChannelsFor(sseVersion))
            for (const std::int64_t sourceWidth : widths)
                for (const std::int64_t width :
                     {factor * sourceWidth, factor * sourceWidth - 1, factor * sourceWidth + 9,
                      factor * sourceWidth / 3})
                    if (width > 0)
                        pairs.push_back({sseVersion, channels, sourceWidth, width});
    return pairs;
}

class ChainOfSteps : public testing::TestWithParam<RealChain>
{};

TEST_P(ChainOfSteps, GivesThePixelsOfItsStepsOneByOne)
{
    for (const RowPair& pair : PairsFor(GetParam())) {
        const PortalCase portalCase = CaseFor(GetParam(), pair);
        const Bytes source =
            RandomBytes(RowBytes(portalCase.source), static_cast<std::uint32_t>(pair.sourceWidth));
        ASSERT_EQ(RunStepByStep(GetParam(), portalCase, source),
                  RunWhole(GetParam(), portalCase, source))
            << Describe(pair);
    }
}

TEST_P(ChainOfSteps, GivesTheSamePixelsOnBothRoads)
{
    for (RowPair pair : PairsFor(GetParam())) {
        if (pair.sseVersion != 0)
            continue;
        PortalCase portalCase = CaseFor(GetParam(), pair);
        const Bytes source = RandomBytes(RowBytes(portalCase.source), 11);
        const Bytes expected = RunWhole(GetParam(), portalCase, source);
        for (const std::int32_t sseVersion : {2, 3, 7}) {
            portalCase.sseVersion = pair.sseVersion = sseVersion;
            ASSERT_EQ(expected, RunWhole(GetParam(), portalCase, source)) << Describe(pair);
        }
    }
}

TEST_P(ChainOfSteps, TakesRowsAtAnyAddress)
{
    for (const std::int32_t sseVersion : {0, 3}) {
        for (const std::int64_t width : {7, 77, 127}) {
            const RowPair pair{sseVersion, ChannelsFor(sseVersion)[0], width, width};
            const PortalCase portalCase = CaseFor(GetParam(), pair);
            const Bytes source = RandomBytes(RowBytes(portalCase.source), 12);
            const Bytes expected = RunWhole(GetParam(), portalCase, source);
            for (std::size_t gap = 0; gap != 17; ++gap) {
                for (const Flush flush : {Flush::AtEnd, Flush::AtStart}) {
                    ASSERT_EQ(expected, RunWhole(GetParam(), portalCase, source, {flush, gap}))
                        << Describe(pair) << ", " << gap << " bytes off";
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(OfTheTable, ChainOfSteps, testing::ValuesIn(RealChains()),
                         [](const auto& chain) { return std::string(chain.param.name); });

} // namespace
} // namespace zvk::Pelkraft::TestSupport
