#include "tests/bounds/placements.h"
#include "tests/rows/refusal.h"
#include "tests/sizes/limited_memory.h"
#include "tests/sizes/naive_end.h"
#include "tests/sizes/numbers.h"
#include "tests/sizes/sample_at.h"
#include "tests/sizes/wide_memory.h"
#include "tests/support/chain_row.h"
#include "tests/support/conversion_run.h"
#include "tests/support/words.h"

#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <optional>

// Conversions between rows of any numbers: each ends in the words that an account in numbers that
// don't wrap expects, without a look at either row's memory, or sets the right samples.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr bool hasManyAddresses = sizeof(void*) > 4;
constexpr std::uint64_t wideBytes = std::uint64_t{1} << 31;
constexpr std::uint64_t narrowBytes = std::uint64_t{1} << 26;
constexpr std::int64_t mostSamples = 1 << 21;
constexpr int mostMapEntries = 1 << 16;
constexpr std::uint64_t sampledEvery = 397;
// The whole run takes every fifth of some hundred million cases.
constexpr std::uint64_t wholeEvery = 5;

constexpr int depths[] = {1, 2, 8, 10, 16, 0, -1, 1 << 15, 1 << 30, largest};
constexpr int factors[] = {1, 2, 4, -1, -4, 0, 3, 1 << 15, 1 << 16, 1 << 30, largest, smallest};

std::vector<NaiveOperation> AllKinds()
{
    std::vector<NaiveOperation> kinds(1);
    for (const int factor : factors)
        kinds.push_back(RepeatBy(factor));
    kinds.push_back(MapTo({}));
    return kinds;
}

struct SizedCase
{
    NaiveGeometry from;
    NaiveGeometry to;
    NaiveOperation operation;
    bool mapIsNull;
    bool forcePortable;
};

class ConversionSizes : public ::testing::Test
{
protected:
    ConversionSizes()
    {
        for (int i = 0; i != mostMapEntries; ++i)
            map.push_back(i % 3 == 1 ? -1 : 0);
    }

    void Widen(bool source)
    {
        sourceMemory.reset();
        destinationMemory.reset();
        sourceMemory.emplace(source ? wideBytes : narrowBytes, WideMemory::Repeated);
        destinationMemory.emplace(source ? narrowBytes : wideBytes, WideMemory::Blank);
        sourceMemory->FillWithNoise(8);
    }

    // A map of as many entries as there can be; a conversion that gets to none has no use for it.
    const int* MapOf(const SizedCase& sized) const
    {
        if (sized.mapIsNull)
            return nullptr;
        return sized.to.channels <= mostMapEntries
                   ? map.data()
                   : reinterpret_cast<const int*>(forbidden.Last(16));
    }

    // Row is the destination's class.
    template <typename Row = ImageRow>
    std::string Run(const SizedCase& sized, unsigned char* source, unsigned char* destination)
    {
        const NaiveGeometry& from = sized.from;
        const NaiveGeometry& to = sized.to;
        const ImageRow sourceRow(from.width, from.channels, from.bits, from.planar, source);
        Row row(to.width, to.channels, to.bits, to.planar, destination);
        return EndOf([&] {
            if (sized.operation.hasMap)
                row.FillFromWithRemap(sourceRow, MapOf(sized), false, sized.forcePortable);
            else if (sized.operation.isFill)
                row.FillFrom(sourceRow, false, sized.forcePortable);
            else
                row.FillFromWithPixelRepeat(sourceRow, sized.operation.factor, false,
                                            sized.forcePortable);
        });
    }

    void ExpectNoLook(const std::string& end, const SizedCase& sized)
    {
        EXPECT_EQ(end, Run(sized, forbidden.Last(16), forbidden.Last(16))) << Tell(sized);
        ++(end == returned ? empty : refused);
    }

    // The chain is asked, which looks at no row without its own memory.
    void ExpectNoMemory(const SizedCase& sized)
    {
        const std::string end = Run<ChainRow>(sized, forbidden.Last(16), forbidden.Last(16));
        EXPECT_TRUE(end == outOfMemory || end == Words::noRelocation) << end << ": " << Tell(sized);
        ++withoutMemory;
    }

    void ExpectSamples(const SizedCase& sized, const NaiveEnd& expected, bool mayLackMemory)
    {
        const auto sourceBytes = static_cast<std::uint64_t>(ExactRowBytes(sized.from));
        const auto destinationBytes = static_cast<std::uint64_t>(ExactRowBytes(sized.to));
        if (sourceBytes > sourceMemory->size() || destinationBytes > destinationMemory->size() ||
            expected.pixels * sized.to.channels > mostSamples)
            return;
        if (onlySamples && destinationBytes <= narrowBytes)
            return;
        destinationMemory->Clear();
        unsigned char* const source = sourceMemory->Last(sourceBytes);
        unsigned char* const destination = destinationMemory->Last(destinationBytes);
        const std::string end = Run(sized, source, destination);
        if (mayLackMemory && end == outOfMemory)
            return;
        EXPECT_EQ(returned, end) << Tell(sized);
        EXPECT_EQ(0, CountWrong(sized, expected.pixels, source, destination)) << Tell(sized);
        ++converted;
    }

    std::int64_t CountWrong(const SizedCase& sized, std::int64_t pixels,
                            const unsigned char* source, const unsigned char* destination) const
    {
        ConversionCase asCase{sized.from, sized.to, sized.operation, sized.forcePortable};
        if (sized.operation.hasMap)
            asCase.operation.map.assign(map.begin(), map.begin() + sized.to.channels);
        const std::int64_t factor = sized.operation.factor;
        std::int64_t wrong = 0;
        for (int channel = 0; channel != sized.to.channels; ++channel) {
            if (IsLeftPacked(asCase, channel))
                continue;
            const int entry =
                sized.operation.hasMap ? map[static_cast<std::size_t>(channel)] : channel;
            for (std::int64_t pixel = 0; pixel != pixels; ++pixel) {
                const std::int64_t nth = pixel / std::abs(factor);
                const std::int64_t from = factor < 0 ? sized.from.width - 1 - nth : nth;
                const unsigned value = entry < 0 ? 0 : SampleAt(sized.from, source, from, entry);
                wrong += SampleAt(sized.to, destination, pixel, channel) !=
                                 NaiveDepthChange(value, sized.from.bits, sized.to.bits)
                             ? 1
                             : 0;
            }
        }
        return wrong;
    }

    void Check(const SizedCase& sized)
    {
        const NaiveEnd expected =
            EndOfConversion(sized.from, sized.to, sized.operation, sized.mapIsNull);
        const bool setsPixels = expected.refusal.empty() && expected.pixels != 0;
        constexpr std::int64_t slots = 16;
        const std::int64_t chunkBytes = expected.pixelBytes * slots;
        const auto limit = static_cast<std::int64_t>(memoryLimit);
        // A map's masks grow with the channels of both rows.
        const std::int64_t sure = limit / (sized.operation.hasMap ? 1024 : 64);
        // A packed row is turned round as a whole before it is walked backwards.
        const bool turnsRound = IsNaivePacked(sized.from) && sized.operation.factor < 0;
        const double rowLimit = static_cast<double>(memoryLimit) - 64;
        const bool hasRoom = !turnsRound || ExactRowBytes(sized.from) <= rowLimit;
        const bool isDirect =
            IsServedDirectly({sized.from, sized.to, sized.operation, sized.forcePortable});
        const bool chainHasMemory = chunkBytes <= limit && hasRoom;
        // The direct road takes none.
        if (setsPixels && (chainHasMemory || isDirect))
            ExpectSamples(sized, expected, !isDirect && chunkBytes > sure);
        if (onlySamples)
            return;
        if (setsPixels && !chainHasMemory)
            ExpectNoMemory(sized);
        if (!setsPixels)
            ExpectNoLook(expected.refusal.empty() ? returned : expected.refusal, sized);
    }

    // All rows that a fill or a repeat could take, and some others, or any with a map.
    void CheckAll(const NaiveGeometry& from, Sampler& sampler)
    {
        for (const NaiveGeometry& to : geometries)
            for (const NaiveOperation& operation : kinds) {
                const bool sameChannels = from.channels == to.channels;
                if (!operation.hasMap && !sameChannels && to.channels != 17)
                    continue;
                for (const bool forcePortable : {false, true})
                    if (sampler.Takes() && !HasFailure())
                        Check({from, to, operation, sampler.GetCount() % 5 == 0, forcePortable});
            }
    }

    static std::string Tell(const SizedCase& sized)
    {
        return Describe(sized.from) + " to " + Describe(sized.to) + ", " +
               Describe(sized.operation) + (sized.mapIsNull ? ", null map" : "") +
               (sized.forcePortable ? ", portable" : ", vector");
    }

    const LimitedMemory limited;
    const WideMemory forbidden{hasManyAddresses ? wideBytes : WideMemory::window,
                               WideMemory::Forbidden};
    std::optional<WideMemory> sourceMemory;
    std::optional<WideMemory> destinationMemory;
    std::vector<int> map;
    const std::vector<NaiveGeometry> geometries = AllGeometries(depths);
    const std::vector<NaiveOperation> kinds = AllKinds();
    // On the second way through, with a large destination, the rest is known already.
    bool onlySamples = false;
    std::uint64_t refused = 0;
    std::uint64_t empty = 0;
    std::uint64_t withoutMemory = 0;
    std::uint64_t converted = 0;
};

TEST_F(ConversionSizes, EndInTheWordsOrInTheRightSamples)
{
    for (const bool wideSource : {true, false}) {
        Widen(wideSource);
        onlySamples = !wideSource;
        Sampler sampler(OneOf(sampledEvery) == 1 ? wholeEvery : sampledEvery);
        for (const NaiveGeometry& from : geometries)
            CheckAll(from, sampler);
    }
    std::printf("%" PRIu64 " refused calls of any size\n", refused);
    std::printf("%" PRIu64 " calls without a pixel of any size\n", empty);
    std::printf("%" PRIu64 " calls without memory of any size\n", withoutMemory);
    std::printf("%" PRIu64 " conversions of any size\n", converted);
    EXPECT_GT(refused, 1000U);
    EXPECT_GT(empty, 10U);
    EXPECT_GT(withoutMemory, 10U);
    EXPECT_GT(converted, 100U);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
