#include "portal/operation_buffers.h"

#include "tests/portal/fake_chain.h"
#include "tests/support/thrown_text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr const char* invalidIndex = "zvk::Pelkraft::OffsetTable::SetEntry invalid index";
constexpr std::int64_t none = 0x7FFFFFFFFFFFFFFF;
constexpr bool own = true;

struct Region
{
    std::uint64_t pixelBytes;
    std::uint64_t stride;
    // By chunk.
    std::vector<std::int64_t> links;
};

struct Block
{
    // From the allocation's start; 0 for an empty one.
    std::uint64_t offset;
    std::uint64_t size;
};

// A buffer for a source of five channels of 8 bits, worked by hand.
struct WorkedBuffer
{
    const char* name;
    std::vector<FakeStep> steps;
    std::uint64_t loadStripBytes;
    std::uint64_t saveStripBytes;
    std::vector<Region> regions;
    std::uint64_t tableOffset;
    std::vector<Block> blocks;
    std::uint64_t size;
};

void PrintTo(const WorkedBuffer& buffer, std::ostream* out)
{
    *out << buffer.name;
}

const std::vector<WorkedBuffer>& WorkedBuffers()
{
    static const std::vector<WorkedBuffer> buffers = {
        {"OneRegion", {{1, 1}}, 0, 0, {{5, 320, {none}}}, 320, {{0, 0}, {0, 0}, {0, 0}}, 368},
        {"OneRegionOfFour",
         {{4, 1, false, 16}},
         0,
         0,
         {{5, 320, {none, none, none, none}}},
         1280,
         {{0, 0}, {0, 0}, {1328, 16}},
         1344},
        {"TwoRegionsOfOne",
         {{1, 1, own, 0, 16, 9}},
         80,
         288,
         {{5, 320, {320}}, {18, 576, {none}}},
         896,
         {{944, 80}, {1024, 288}, {0, 0}},
         1312},
        // A remap after a packer meets each eighth chunk.
        {"StepOfEightAheadOfTheSecondRegion",
         {{8, 1, false, 16}, {1, 1, own, 17, 0, 17}},
         0,
         0,
         {{5, 320, {2560, none, none, none, none, none, none, none}}, {17, 576, {none}}},
         3136,
         {{0, 0}, {0, 0}, {3200, 16}, {3216, 17}},
         3248},
        // Two of the eights in a batch.
        {"StepOfFourAheadOfTheSecondRegion",
         {{4, 1, false, 16}, {1, 1, own, 40}, {2, 2}},
         0,
         0,
         // From 0 to 2560 and from 1280 to 2880.
         {{5, 320, {2560, none, none, none, 1600, none, none, none}}, {5, 320, {none, none}}},
         3200,
         {{0, 0}, {0, 0}, {3280, 16}, {3296, 40}, {0, 0}},
         3344},
        // A depth step ahead of a repeat writes each fourth chunk.
        {"StepOfFourIntoTheSecondRegion",
         {{1, 1, own, 0, 16, 0}, {1, 4, false, 16}, {8, 8}},
         1,
         0,
         // From 0 to 640 and from 320 to 640 + 4 * 320.
         {{5, 320, {640, 1600}}, {10, 320, {none, none, none, none, none, none, none, none}}},
         3200,
         {{3280, 1}, {0, 0}, {0, 0}, {3296, 16}, {0, 0}},
         3312},
        // Strides of 576 and 832: from 576 * i to 2304 + 832 * 2 * i.
        {"StepOfTwoIntoTheSecondRegion",
         {{1, 1, own, 31, 0, 20}, {1, 1, own, 0, 16, 0}, {1, 2}, {8, 1}},
         0,
         0,
         {{5, 320, {1280, 1536, 1792, 2048}},
          {20, 576, {2304, 3392, 4480, 5568}},
          {40, 832, {none, none, none, none, none, none, none, none}}},
         10240,
         {{0, 0}, {0, 0}, {10336, 31}, {0, 0}, {0, 0}, {0, 0}},
         10368},
        {"StepsOnBothSides",
         {{1, 1, own}, {1, 2}, {8, 1}, {1, 1, own, 0, 0, 1}},
         0,
         0,
         {{5, 320, {1280, 1600, 1920, 2240}},
          {5, 320, {2560, none, none, none, none, none, none, none}},
          {1, 320, {none}}},
         4160,
         {{0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}},
         4256},
        {"FiveRegions",
         {{1, 1, own, 0, 0, 16},
          {1, 1, own, 0, 0, 17},
          {1, 1, own, 0, 0, 32},
          {1, 1, own, 8, 0, 1}},
         2,
         33,
         {{5, 320, {320}}, {16, 320, {320}}, {17, 576, {576}}, {32, 576, {576}}, {1, 320, {none}}},
         2112,
         {{2208, 2}, {2224, 33}, {0, 0}, {0, 0}, {0, 0}, {2272, 8}},
         2288},
    };
    return buffers;
}

OperationBufferContainer MakeBuffer(const ChainMetrics& metrics, std::uint64_t loadStripBytes,
                                    std::uint64_t saveStripBytes)
{
    return OperationBufferContainer(metrics, {1, 1001, loadStripBytes}, {3, 2002, saveStripBytes});
}

const unsigned char* StartOf(const OperationBufferContainer& buffer)
{
    return reinterpret_cast<const unsigned char*>(buffer.GetChunk(0));
}

std::uint64_t NumberAt(const unsigned char* start, std::uint64_t offset)
{
    std::uint64_t number = 0;
    std::memcpy(&number, start + offset, sizeof number);
    return number;
}

void ExpectHeader(const unsigned char* chunk, const Region& region, std::int64_t link)
{
    EXPECT_EQ(1U, NumberAt(chunk, 0));
    EXPECT_EQ(1001U, NumberAt(chunk, 8));
    EXPECT_EQ(3U, NumberAt(chunk, 16));
    EXPECT_EQ(2002U, NumberAt(chunk, 24));
    EXPECT_EQ(region.pixelBytes, NumberAt(chunk, 32));
    EXPECT_EQ(region.stride, NumberAt(chunk, 40));
    EXPECT_EQ(link, static_cast<std::int64_t>(NumberAt(chunk, 48)));
    EXPECT_EQ(0U, NumberAt(chunk, 56));
}

bool IsZero(const unsigned char* from, std::uint64_t bytes)
{
    for (std::uint64_t i = 0; i != bytes; ++i)
        if (from[i] != 0)
            return false;
    return true;
}

class WorkedOperationBuffer : public testing::TestWithParam<WorkedBuffer>
{
protected:
    OperationBufferContainer buffer = MakeBuffer(
        MeasureChain(GetParam().steps, 5), GetParam().loadStripBytes, GetParam().saveStripBytes);
    const unsigned char* start = StartOf(buffer);
};

TEST_P(WorkedOperationBuffer, HasItsSizeAndAlignment)
{
    EXPECT_EQ(GetParam().size, buffer.GetSize());
    EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(start) % 64);
}

TEST_P(WorkedOperationBuffer, HoldsTheChunksRegionAfterRegion)
{
    std::uint64_t offset = 0;
    for (std::size_t i = 0; i != GetParam().regions.size(); ++i) {
        const Region& region = GetParam().regions[i];
        EXPECT_EQ(start + offset, reinterpret_cast<const unsigned char*>(buffer.GetChunk(i)));
        for (std::size_t chunk = 0; chunk != region.links.size(); ++chunk) {
            SCOPED_TRACE("region " + std::to_string(i) + ", chunk " + std::to_string(chunk));
            ExpectHeader(start + offset, region, region.links[chunk]);
            EXPECT_TRUE(IsZero(start + offset + 64, region.stride - 64));
            offset += region.stride;
        }
    }
    EXPECT_EQ(GetParam().tableOffset, offset);
}

TEST_P(WorkedOperationBuffer, HoldsTheTableAndTheBlocksBehindTheChunks)
{
    for (std::size_t i = 0; i != GetParam().blocks.size(); ++i) {
        SCOPED_TRACE(i);
        const Block& block = GetParam().blocks[i];
        EXPECT_EQ(block.offset, NumberAt(start, GetParam().tableOffset + 16 * i));
        EXPECT_EQ(block.size, NumberAt(start, GetParam().tableOffset + 16 * i + 8));
    }
    const std::uint64_t tableEnd = GetParam().tableOffset + 16 * GetParam().blocks.size();
    EXPECT_TRUE(IsZero(start + tableEnd, GetParam().size - tableEnd));
}

TEST_P(WorkedOperationBuffer, ReadsItsBlocks)
{
    std::vector<const void*> blocks = {buffer.GetLoadStrip(), buffer.GetSaveStrip()};
    for (std::size_t i = 0; i != GetParam().steps.size(); ++i)
        blocks.push_back(buffer.GetParameterBlock(i));
    ASSERT_EQ(GetParam().blocks.size(), blocks.size());
    for (std::size_t i = 0; i != blocks.size(); ++i) {
        SCOPED_TRACE(i);
        const std::uint64_t offset = GetParam().blocks[i].offset;
        EXPECT_EQ(offset != 0 ? start + offset : nullptr, blocks[i]);
    }
    EXPECT_EQ(invalidIndex, TextOf([&] { buffer.GetParameterBlock(GetParam().steps.size()); }));
}

INSTANTIATE_TEST_SUITE_P(ByHand, WorkedOperationBuffer, testing::ValuesIn(WorkedBuffers()),
                         [](const auto& worked) { return std::string(worked.param.name); });

TEST(CopyBuffer, HoldsOneChunkAndTwoStrips)
{
    const auto buffer = MakeBuffer(ChainMetrics::SingleChunk(4), 64, 17);
    const unsigned char* start = StartOf(buffer);
    ExpectHeader(start, {4, 320, {}}, none);
    EXPECT_TRUE(IsZero(start + 64, 256));
    EXPECT_EQ(352U, NumberAt(start, 320));
    EXPECT_EQ(64U, NumberAt(start, 328));
    EXPECT_EQ(416U, NumberAt(start, 336));
    EXPECT_EQ(17U, NumberAt(start, 344));
    EXPECT_EQ(start + 352, buffer.GetLoadStrip());
    EXPECT_EQ(start + 416, buffer.GetSaveStrip());
    EXPECT_EQ(448U, buffer.GetSize());
}

TEST(CopyBuffer, WithoutStripsHoldsItsChunkAndTableOnly)
{
    const auto buffer = MakeBuffer(ChainMetrics::SingleChunk(4), 0, 0);
    EXPECT_EQ(352U, buffer.GetSize());
    EXPECT_EQ(nullptr, buffer.GetLoadStrip());
    EXPECT_EQ(nullptr, buffer.GetSaveStrip());
    EXPECT_THROW(buffer.GetParameterBlock(0), const char*);
}

TEST(TrailingBuffer, LinksTheStagedChunksAndHasThreeEntries)
{
    const auto buffer = MakeBuffer(ChainMetrics::Trail(3, 17), 48, 272);
    const unsigned char* start = StartOf(buffer);
    ExpectHeader(start, {3, 320, {}}, 320);
    ExpectHeader(start + 320, {17, 576, {}}, none);
    EXPECT_EQ(start + 944, buffer.GetLoadStrip());
    EXPECT_EQ(start + 992, buffer.GetSaveStrip());
    EXPECT_EQ(nullptr, buffer.GetParameterBlock(0));
    EXPECT_THROW(buffer.GetParameterBlock(1), const char*);
    EXPECT_EQ(1264U, buffer.GetSize());
}

TEST(CopyBuffer, HasAStrideOfAllSlotsAndAHeaderForEachPixelSize)
{
    struct Case
    {
        std::uint64_t pixelBytes;
        std::uint64_t stride;
    };
    for (const auto& [pixelBytes, stride] :
         {Case{0, 64}, Case{1, 320}, Case{15, 320}, Case{16, 320}, Case{17, 576}, Case{32, 576},
          Case{33, 832}, Case{80, 1344}, Case{81, 1600}, Case{128, 2112}, Case{130, 2368}}) {
        SCOPED_TRACE(pixelBytes);
        const auto buffer = MakeBuffer(ChainMetrics::SingleChunk(pixelBytes), 0, 0);
        EXPECT_EQ(stride, NumberAt(StartOf(buffer), 40));
        EXPECT_EQ(pixelBytes, NumberAt(StartOf(buffer), 32));
        EXPECT_EQ(stride + 32, buffer.GetSize());
    }
}

// An odd pixel's area once more, by the bits: rounded up to a multiple of 256.
TEST(CopyBuffer, RoundsTheSlotAreaUp)
{
    for (std::uint64_t pixelBytes = 1; pixelBytes != 200; ++pixelBytes) {
        const auto buffer = MakeBuffer(ChainMetrics::SingleChunk(pixelBytes), 0, 0);
        EXPECT_EQ(((pixelBytes * 16 + 240) & ~std::uint64_t{255}) + 64,
                  NumberAt(StartOf(buffer), 40));
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
