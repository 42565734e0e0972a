#include "pattern/sse_row.h"

#include "common/road.h"
#include "tests/support/guarded_arena.h"
#include "tests/support/random_bytes.h"
#include "zvk/system_tools.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::uint32_t most = 16;
constexpr std::uint32_t mostPixels = 1000;
constexpr std::uint32_t tableCount = 8;
constexpr unsigned char filler = 0x5A;

// The tables hold any bytes at all, and all methods must read them alike.
std::vector<SseTransformation> RandomTables(std::uint32_t seed)
{
    std::vector<SseTransformation> tables(tableCount);
    const auto bytes = RandomBytes(tableCount * sizeof(SseTransformation), seed);
    std::memcpy(tables.data(), bytes.data(), bytes.size());
    for (std::size_t i = 0; i < tableCount; ++i) {
        // Three of four tables have such bounds and offsets as patterns have.
        for (std::size_t lane = 0; lane < most && i % 4 != 0; ++lane) {
            tables[i].mUpper[lane] &= 7;
            tables[i].mLower[lane] &= 3;
            tables[i].mOffset[lane] &= 15;
        }
        tables[i].FillInkValues();
    }
    return tables;
}

SseLanes RandomLanes(std::uint32_t inColors, std::uint32_t outInks, std::uint8_t highestLimit,
                     std::uint32_t seed)
{
    SseLanes lanes;
    const auto bytes = RandomBytes(std::size_t{2} * most, seed);
    for (std::size_t i = 0; i < inColors; ++i)
        lanes.mStepLimits[i] = bytes[i] & highestLimit;
    for (std::size_t i = 0; i < outInks; ++i)
        lanes.mInColorLanes[i] =
            bytes[most + i] % 5 == 0 ? 0xFF : static_cast<std::uint8_t>(bytes[most + i] % inColors);
    return lanes;
}

// Works out one lane from what the tables mean, in whole numbers.
int NaiveValue(const SseTransformation& tables, std::size_t lane, int step)
{
    const auto asSigned = [](int byte) { return byte < 128 ? byte : byte - 256; };
    if (asSigned(step) > asSigned(tables.mUpper[lane]) ||
        asSigned(step) < asSigned(tables.mLower[lane]))
        return 0;
    const int index = (step + tables.mOffset[lane]) % 256;
    return index < 128 ? tables.mComonTrans[static_cast<std::size_t>(index % 16)] : 0;
}

Bytes NaiveRow(const SseRow& row, const Bytes& source)
{
    Bytes inks;
    for (std::size_t pixel = 0; pixel < row.pixels; ++pixel) {
        const SseTransformation* tables =
            row.single != nullptr ? row.single : row.field[(row.position + pixel) % row.fieldSize];
        for (std::size_t lane = 0; lane < row.destinationStride; ++lane) {
            const std::size_t inColor = row.lanes->mInColorLanes[lane];
            const int step = inColor == 0xFF
                                 ? 0
                                 : std::min<int>(source[pixel * row.sourceStride + inColor],
                                                 row.lanes->mStepLimits[inColor]);
            inks.push_back(static_cast<unsigned char>(NaiveValue(*tables, lane, step)));
        }
    }
    return inks;
}

struct Method
{
    const char* name;
    int level;
    SseRowMethod apply;
    bool looksUp;
    bool (*suits)(std::uint32_t inColors, std::uint32_t outInks);
};

std::ostream& operator<<(std::ostream& stream, const Method& method)
{
    return stream << method.name;
}

bool SuitsAny(std::uint32_t, std::uint32_t)
{
    return true;
}

std::vector<Method> AllMethods()
{
    std::vector<Method> methods = {{"portable", 0, GetSseRowMethodPortable(), false, SuitsAny}};
    if constexpr (hasVectorRoad)
        methods.push_back({"vector", 3, GetSseRowMethodVector(), false, SuitsAny});
    if constexpr (hasWideRoads) {
        methods.push_back({"short words", 6, GetShortWordMethodAvx2(), true, SuitsShortWords});
        methods.push_back({"wide words", 7, GetWideWordMethodAvx512(), true, SuitsAny});
    }
    return methods;
}

// The others are printed as not run.
std::vector<Method> MethodsThatRun()
{
    std::vector<Method> methods;
    for (const Method& method : AllMethods()) {
        if (method.level <= SystemTools::GetSseVersion())
            methods.push_back(method);
        else
            std::printf("%s is not run: the processor lacks it\n", method.name);
    }
    return methods;
}

class SseRowMethods : public testing::TestWithParam<Method>
{
protected:
    // The rows are the first pixels of one source.
    void CheckStrides(std::uint32_t inColors, std::uint32_t outInks, std::uint8_t highestLimit)
    {
        ++seed;
        SseLanes lanes = RandomLanes(inColors, outInks, highestLimit, seed);
        if (CanLookUp(lanes, outInks))
            lanes.mLookup = BuildInkLookup(lanes, inColors, outInks);
        else if (GetParam().looksUp)
            return;
        steps = RandomBytes(std::size_t{mostPixels} * inColors, seed);
        SseRow row{};
        row.sourceStride = inColors;
        row.destinationStride = outInks;
        row.lanes = &lanes;
        row.field = field.data();
        for (std::uint32_t pixels = 0; pixels <= 70; ++pixels)
            CheckRow(row, pixels);
        CheckRow(row, mostPixels);
    }

    void CheckRow(SseRow row, std::uint32_t pixels)
    {
        row.pixels = pixels;
        // One size in four is below a block, so that a block wraps more than once.
        row.fieldSize = pixels % 4 == 0 ? 1 + pixels / 4 % 11 : 37;
        row.position = (seed + pixels) % row.fieldSize;
        Expect(row);
        row.single = &tables[(seed + pixels) % tableCount];
        Expect(row);
    }

    void Expect(SseRow row)
    {
        const Bytes expected = NaiveRow(row, steps);
        for (const Flush flush : {Flush::AtEnd, Flush::AtStart}) {
            const std::size_t size = std::size_t{row.pixels} * row.sourceStride;
            unsigned char* source = sourceArena.Place(size, flush);
            std::copy_n(steps.begin(), size, source);
            unsigned char* destination = destinationArena.Place(expected.size(), flush);
            std::fill_n(destination, expected.size(), filler);
            row.source = source;
            row.destination = destination;
            GetParam().apply(row);
            if (!std::equal(expected.begin(), expected.end(), destination))
                ADD_FAILURE() << row.sourceStride << " in-colours, " << row.destinationStride
                              << " out-inks, " << row.pixels << " pixels, from " << row.position
                              << " of " << row.fieldSize
                              << (row.single != nullptr ? ", single" : "");
        }
    }

    const std::vector<SseTransformation> tables = RandomTables(1);
    const std::vector<const SseTransformation*> field = [this] {
        std::vector<const SseTransformation*> drawn;
        for (const unsigned char number : RandomBytes(37, 2))
            drawn.push_back(&tables[number % tableCount]);
        return drawn;
    }();
    const GuardedArena sourceArena{std::size_t{most} * mostPixels};
    const GuardedArena destinationArena{std::size_t{most} * mostPixels};
    Bytes steps;
    std::uint32_t seed = 0;
};

TEST_P(SseRowMethods, GiveTheValuesOfTheTables)
{
    for (std::uint32_t inColors = 1; inColors <= most; ++inColors)
        for (std::uint32_t outInks = 1; outInks <= most && !HasFailure(); ++outInks)
            if (GetParam().suits(inColors, outInks)) {
                CheckStrides(inColors, outInks, 7);
                CheckStrides(inColors, outInks, 3);
                CheckStrides(inColors, outInks, 0xFF);
            }
}

TEST_P(SseRowMethods, WriteNothingBesideTheRow)
{
    constexpr std::size_t margin = 96;
    for (std::uint32_t inColors = 1; inColors <= most; ++inColors)
        for (std::uint32_t outInks = 1; outInks <= most; ++outInks) {
            if (!GetParam().suits(inColors, outInks))
                continue;
            SseLanes lanes = RandomLanes(inColors, outInks, 7, ++seed);
            lanes.mLookup = BuildInkLookup(lanes, inColors, outInks);
            for (const std::uint32_t pixels : {0U, 1U, 7U, 8U, 9U, 31U, 64U}) {
                const Bytes source = RandomBytes(std::size_t{pixels} * inColors, seed);
                const std::size_t size = std::size_t{pixels} * outInks;
                Bytes destination(size + 2 * margin, filler);
                GetParam().apply({source.data(), destination.data() + margin, pixels, inColors,
                                  outInks, &lanes, field.data(), 5, 37, nullptr});
                const auto behind =
                    destination.begin() + static_cast<std::ptrdiff_t>(margin + size);
                const Bytes untouched(margin, filler);
                ASSERT_EQ(Bytes(destination.begin(), destination.begin() + margin), untouched);
                ASSERT_EQ(Bytes(behind, destination.end()), untouched)
                    << inColors << " " << outInks << " " << pixels;
            }
        }
}

std::string NameOf(const testing::TestParamInfo<Method>& method)
{
    std::string name = method.param.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(EveryLevel, SseRowMethods, testing::ValuesIn(MethodsThatRun()), NameOf);

TEST(InkLookup, IsForStepsBelowEight)
{
    for (std::uint32_t outInks = 1; outInks <= most; ++outInks) {
        SseLanes lanes = RandomLanes(2, outInks, 7, outInks);
        EXPECT_TRUE(CanLookUp(lanes, outInks));
        // A limit that no ink asks for does not matter.
        lanes.mInColorLanes.fill(0xFF);
        lanes.mStepLimits[1] = 8;
        EXPECT_TRUE(CanLookUp(lanes, outInks));
        lanes.mInColorLanes[outInks - 1] = 1;
        EXPECT_FALSE(CanLookUp(lanes, outInks));
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
