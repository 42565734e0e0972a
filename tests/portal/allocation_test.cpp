#include "tests/portal/fake_chain.h"
#include "tests/portal/portal_run.h"
#include "tests/support/counted_memory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Sizes = std::vector<std::size_t>;

constexpr const char* badAllocation = "bad allocation";
constexpr const char* noRelocationBuffer =
    "zvk::Pelkraft::ConversionPortal memory allocation failed for relocation buffer";

// The sizes of a conversion's allocations, of which none is left.
Sizes AllocationsOf(const PortalCase& portalCase, const Records& chain)
{
    const Bytes source(RowBytes(portalCase.source));
    CountedMemory memory(CountedMemory::Counts::Aligned);
    memory.Start();
    RunPortal(portalCase, source, chain);
    memory.Stop();
    EXPECT_EQ(0, memory.CountHeld());
    Sizes sizes;
    for (std::size_t i = 0; i != memory.CountAsked(); ++i) {
        EXPECT_EQ(64U, memory.GetAllocation(i).alignment);
        sizes.push_back(memory.GetAllocation(i).bytes);
    }
    return sizes;
}

std::string FailureAt(std::size_t allocation, const PortalCase& portalCase, const Records& chain)
{
    const Bytes source(RowBytes(portalCase.source), 0x5A);
    CountedMemory memory(CountedMemory::Counts::Aligned);
    memory.FailAt(allocation);
    memory.Start();
    std::string text = FailureOf(portalCase, source, chain);
    memory.Stop();
    EXPECT_EQ(0, memory.CountHeld());
    return text;
}

PortalCase Copy(std::int64_t width)
{
    return {3, MakeFormat(8, LayoutInterleaved, 4, width), MakeFormat(8, LayoutPlanar, 4, width)};
}

// A repeat by two between rows of one channel.
PortalCase Doubling(std::int64_t width)
{
    return {0, MakeFormat(8, LayoutInterleaved, 1, width),
            MakeFormat(8, LayoutInterleaved, 1, 2 * width)};
}

PortalCase ReversedPacked(std::int64_t width)
{
    PortalCase portalCase{0, MakeFormat(1, LayoutPlanarPacked, 3, width),
                          MakeFormat(1, LayoutPlanarPacked, 3, width)};
    portalCase.source.reversed = true;
    return portalCase;
}

TEST(CopyRoadMemory, IsOneBufferAndOneForTheLastPixels)
{
    // Header and slots, two entries, two strips of 64 bytes; the second buffer has no strips.
    EXPECT_EQ((Sizes{480, 352}), AllocationsOf(Copy(1000), {{}, {}}));
    EXPECT_EQ((Sizes{480, 352}), AllocationsOf(Copy(5), {{}, {}}));
}

TEST(CopyRoadMemory, IsOneBufferForWholeChunks)
{
    EXPECT_EQ((Sizes{480}), AllocationsOf(Copy(16), {{}, {}}));
    EXPECT_EQ((Sizes{480}), AllocationsOf(Copy(992), {{}, {}}));
}

TEST(CopyRoadMemory, HasStripsOfSixteenPixels)
{
    const PortalCase portalCase{3, MakeFormat(16, LayoutPlanar, 9, 20),
                                MakeFormat(16, LayoutInterleaved, 9, 20)};
    // 18 bytes in slots of 32: 64 and 512, 32 for the table, 288 for each strip.
    EXPECT_EQ((Sizes{1184, 608}), AllocationsOf(portalCase, {{}, {}}));
}

TEST(ChainRoadMemory, IsOneBufferAndOneForTheLastPixels)
{
    const FakeChain chain({{1, 2, false, 16}});
    // Two chunks, three entries, a parameter block; then two chunks, three entries, two strips.
    EXPECT_EQ((Sizes{704, 720}), AllocationsOf(Doubling(17), chain.MakeRecords()));
    EXPECT_EQ((Sizes{704, 720}), AllocationsOf(Doubling(1), chain.MakeRecords()));
}

TEST(ChainRoadMemory, IsOneBufferForWholeBatches)
{
    const FakeChain chain({{1, 2, false, 16}});
    EXPECT_EQ((Sizes{704}), AllocationsOf(Doubling(16), chain.MakeRecords()));
    EXPECT_EQ((Sizes{704}), AllocationsOf(Doubling(160), chain.MakeRecords()));
    EXPECT_EQ((Sizes{704}), AllocationsOf(Doubling(0), chain.MakeRecords()));
}

TEST(ChainRoadMemory, StagesLastPixelsOfTheFirstAndTheLastRegion)
{
    const FakeChain chain({{1, 1, true}, {1, 1, true, 0, 16, 9}});
    const PortalCase portalCase{0, MakeFormat(8, LayoutInterleaved, 3, 5),
                                MakeFormat(16, LayoutPlanar, 9, 5)};
    // 320, 320 and 576, four entries; then 320 and 576, three entries, strips of 48 and 288.
    EXPECT_EQ((Sizes{1280, 1280}), AllocationsOf(portalCase, chain.MakeRecords()));
}

TEST(ChainRoadMemory, HasARelocationBufferForAReversedPackedRow)
{
    const FakeChain chain({{1, 1}});
    // 3 planes of 32 columns and 64 spare bytes; of 33 columns and the last pixels' buffer.
    EXPECT_EQ((Sizes{368, 160}), AllocationsOf(ReversedPacked(256), chain.MakeRecords()));
    EXPECT_EQ((Sizes{368, 163, 784}), AllocationsOf(ReversedPacked(257), chain.MakeRecords()));
}

TEST(ChainRoadMemory, RelocatesNoOtherRow)
{
    const FakeChain chain({{1, 1}});
    for (const std::int32_t layout : {LayoutInterleaved, LayoutPlanar}) {
        PortalCase portalCase{0, MakeFormat(8, layout, 3, 32), MakeFormat(8, layout, 3, 32)};
        portalCase.source.reversed = true;
        EXPECT_EQ((Sizes{368}), AllocationsOf(portalCase, chain.MakeRecords()));
    }
    PortalCase forward = ReversedPacked(256);
    forward.source.reversed = false;
    EXPECT_EQ((Sizes{368}), AllocationsOf(forward, chain.MakeRecords()));
}

TEST(CopyRoad, FailsWithoutMemoryBeforeAPixelMoves)
{
    EXPECT_EQ(badAllocation, FailureAt(0, Copy(1000), {{}, {}}));
    EXPECT_EQ(badAllocation, FailureAt(1, Copy(1000), {{}, {}}));
}

TEST(ChainRoad, FailsWithoutMemoryBeforeAPixelMoves)
{
    const FakeChain chain({{1, 1}});
    const Records records = chain.MakeRecords();
    EXPECT_EQ(badAllocation, FailureAt(0, ReversedPacked(257), records));
    EXPECT_EQ(noRelocationBuffer, FailureAt(1, ReversedPacked(257), records));
    EXPECT_EQ(badAllocation, FailureAt(2, ReversedPacked(257), records));
    EXPECT_TRUE(chain.GetRuns().empty());
}

TEST(ChainRoad, FreesItsBufferIfAStepHasNoMethod)
{
    for (std::size_t step = 0; step != 4; ++step) {
        FakeChain chain({{1, 1, true}, {1, 2}, {1, 1, true}, {2, 1}});
        chain.failingStep = step;
        const Records records = chain.MakeRecords();
        const Bytes source(100);
        const PortalCase portalCase{0, MakeFormat(8, LayoutInterleaved, 1, 100),
                                    MakeFormat(8, LayoutInterleaved, 1, 100)};
        CountedMemory memory(CountedMemory::Counts::Aligned);
        memory.Start();
        EXPECT_EQ(FakeChain::failure, FailureOf(portalCase, source, records));
        memory.Stop();
        EXPECT_EQ(1U, memory.CountAsked());
        EXPECT_EQ(0, memory.CountHeld());
        EXPECT_TRUE(chain.GetRuns().empty());
    }
}

TEST(ChainRoad, FreesItsBuffersIfTheSourceCannotBeRelocated)
{
    const FakeChain chain({{1, 1}});
    PortalCase portalCase = ReversedPacked(64);
    portalCase.source.bits = 10;
    const Records records = chain.MakeRecords();
    const Bytes source(RowBytes(portalCase.source) * 2);
    CountedMemory memory(CountedMemory::Counts::Aligned);
    memory.Start();
    EXPECT_EQ("zvk::Pelkraft::ConversionPortal::Relocator unsupported bit depth for relocation",
              FailureOf(portalCase, source, records));
    memory.Stop();
    EXPECT_EQ(0, memory.CountHeld());
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
