#include "direct/kernels.h"

#include "tests/support/guarded_buffer.h"
#include "tests/support/random_bytes.h"

#include "zvk/system_tools.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Bytes = std::vector<unsigned char>;

struct Level
{
    const char* name;
    const FinishKernels& kernels;
};

std::vector<Level> Levels()
{
    std::vector<Level> levels{{"portable", PortableRoad::GetFinishKernels()}};
    const int own = SystemTools::GetSseVersion();
    if constexpr (hasVectorRoad)
        if (own >= 3)
            levels.push_back({"vector", VectorRoad::GetFinishKernels()});
    if constexpr (hasWideRoads) {
        if (own >= 6)
            levels.push_back({"avx2", Avx2Road::GetFinishKernels()});
        if (own >= 7)
            levels.push_back({"avx512", Avx512Road::GetFinishKernels()});
    }
    return levels;
}

std::vector<std::size_t> Counts()
{
    std::vector<std::size_t> counts;
    for (std::size_t count = 0; count <= 300; ++count)
        counts.push_back(count);
    for (const std::size_t count : {511U, 512U, 513U, 1000U, 4096U, 5003U})
        counts.push_back(count);
    return counts;
}

// Calls check(level, bytes, flush, gap) for every count of bytes at several places.
template <typename Check>
void ForEachPlace(Check check)
{
    for (const Level& level : Levels())
        for (const std::size_t bytes : Counts())
            for (const Flush flush : {Flush::AtEnd, Flush::AtStart})
                for (const std::size_t gap : {0U, 1U, 13U, 63U})
                    ASSERT_NO_FATAL_FAILURE(check(level, bytes, flush, gap));
}

TEST(Patch, TurnsOverTheBitsOfThePatternAndNoOthers)
{
    for (const std::size_t period : {64U, 65U, 66U, 96U, 127U, 128U, 190U, 1000U}) {
        const Bytes first = RandomBytes(period, 21);
        Bytes pattern(period + patternBytes);
        for (std::size_t i = 0; i != pattern.size(); ++i)
            pattern[i] = first[i % period];
        const GuardedBuffer guarded(pattern);
        ForEachPlace([&](const Level& level, std::size_t bytes, Flush flush, std::size_t gap) {
            const Bytes before = RandomBytes(bytes, 22);
            Bytes expected = before;
            for (std::size_t i = 0; i != bytes; ++i)
                expected[i] = static_cast<unsigned char>(expected[i] ^ first[i % period]);
            const GuardedBuffer row(before, flush, gap);
            level.kernels.patch(row.data(), bytes, guarded.data(), period);
            ASSERT_EQ(expected, row.bytes())
                << level.name << ", " << bytes << " bytes, period " << period;
        });
    }
}

TEST(Stream, CopiesEveryByteToAnyAddress)
{
    ForEachPlace([](const Level& level, std::size_t bytes, Flush flush, std::size_t gap) {
        const Bytes content = RandomBytes(bytes, 23);
        const GuardedBuffer source(content, flush, gap / 2);
        const GuardedBuffer destination(Bytes(bytes, 0xee), flush, gap);
        level.kernels.stream(source.data(), destination.data(), bytes);
        level.kernels.fence();
        ASSERT_EQ(content, destination.bytes()) << level.name << ", " << bytes << " bytes";
    });
}

TEST(Stream, WritesNothingBesideTheRow)
{
    constexpr std::size_t margin = 80;
    for (const Level& level : Levels())
        for (const std::size_t bytes : Counts()) {
            const Bytes content = RandomBytes(bytes, 24);
            Bytes destination(bytes + 2 * margin, 0xee);
            Bytes expected = destination;
            std::copy(content.begin(), content.end(), expected.begin() + margin);
            const GuardedBuffer source(content);
            level.kernels.stream(source.data(), destination.data() + margin, bytes);
            level.kernels.fence();
            ASSERT_EQ(expected, destination) << level.name << ", " << bytes << " bytes";
        }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
