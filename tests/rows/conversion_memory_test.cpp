#include "tests/rows/row_fields.h"
#include "tests/support/chain_row.h"
#include "tests/support/conversion_run.h"
#include "tests/support/counted_memory.h"
#include "tests/support/counting_sink.h"
#include "tests/support/random_bytes.h"
#include "tests/support/words.h"

#include <gtest/gtest.h>

#include <cstring>
#include <exception>
#include <ostream>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr const char* badAllocation = "bad allocation";
using namespace Words;

// One conversion under watch, and what became of it.
struct Watched
{
    // Empty if nothing was thrown. Kept in place: a string would allocate.
    char text[128] = {};
    bool isBadAlloc = false;
    int lines = 0;
    bool sourceUntouched = false;
    bool destinationUntouched = false;
    bool rowsUnchanged = false;
};

void Convert(const ConversionCase& tested, ImageRow& row, const ImageRow& source)
{
    if (tested.operation.hasMap)
        row.FillFromWithRemap(source, tested.operation.map.data(), false, tested.forcePortable);
    else if (tested.operation.isFill)
        row.FillFrom(source, false, tested.forcePortable);
    else
        row.FillFromWithPixelRepeat(source, tested.operation.factor, false, tested.forcePortable);
}

void RunUnderWatch(const ConversionCase& tested, ImageRow& row, const ImageRow& source,
                   CountedMemory& memory, Watched& watched)
{
    const CountingSink sink;
    memory.Start();
    try {
        Convert(tested, row, source);
    } catch (const std::bad_alloc& failure) {
        watched.isBadAlloc = true;
        std::strncpy(watched.text, failure.what(), sizeof watched.text - 1);
    } catch (const char* text) {
        std::strncpy(watched.text, text, sizeof watched.text - 1);
    }
    memory.Stop();
    watched.lines = sink.lines;
}

// Row is the destination's class: the direct road takes no memory, the chain does.
template <typename Row>
Watched Watch(const ConversionCase& tested, CountedMemory& memory)
{
    const auto& [from, to, operation, portable] = tested;
    const Bytes content = RandomBytes(NaiveRowBytes(from), 31);
    const Bytes before = RandomBytes(NaiveRowBytes(to), 32);
    const GuardedBuffer sourceBytes(content);
    const GuardedBuffer rowBytes(before);
    const ImageRow source(from.width, from.channels, from.bits, from.planar, sourceBytes.data());
    Row row(to.width, to.channels, to.bits, to.planar, rowBytes.data());
    const RowFields sourceFields = FieldsOf(source);
    const RowFields rowFields = FieldsOf(row);

    Watched watched;
    RunUnderWatch(tested, row, source, memory, watched);
    watched.sourceUntouched = sourceBytes.bytes() == content;
    watched.destinationUntouched = rowBytes.bytes() == before;
    watched.rowsUnchanged = sourceFields == FieldsOf(source) && rowFields == FieldsOf(row);
    return watched;
}

struct Kind
{
    const char* name;
    NaiveGeometry from;
    NaiveGeometry to;
    NaiveOperation operation;
    // Operation buffers, the trailing one included.
    std::size_t buffers;
    bool relocates;
};

// Or the test's report would show the record's bytes, padding and all.
void PrintTo(const Kind& kind, std::ostream* out)
{
    *out << kind.name;
}

std::vector<Kind> Kinds()
{
    return {
        {"CopyOfWholeChunks", {160, 4, 8, false}, {160, 4, 8, true}, {}, 1, false},
        {"CopyWithARest", {1000, 4, 8, false}, {1000, 4, 8, true}, {}, 2, false},
        {"CopyOfPackedRows", {130, 3, 1, true}, {130, 3, 1, true}, {}, 2, false},
        {"WideningOfWholeBatches", {160, 3, 8, true}, {160, 3, 16, false}, {}, 1, false},
        {"WideningWithARest", {161, 3, 8, true}, {161, 3, 16, false}, {}, 2, false},
        {"MapWithARest", {50, 5, 16, false}, {50, 3, 16, true}, MapTo({4, -1, 0}), 2, false},
        {"MirrorOfBytes", {50, 3, 8, false}, {50, 3, 8, false}, RepeatBy(-1), 2, false},
        {"PackingWithARest", {100, 4, 16, false}, {100, 4, 2, true}, {}, 2, false},
        {"MirrorOfWholePackedRows", {128, 16, 1, true}, {128, 16, 1, true}, RepeatBy(-1), 1, true},
        {"MirrorOfPackedRows", {130, 3, 1, true}, {260, 3, 1, true}, RepeatBy(-2), 2, true},
        {"MirrorOfPackedRowsToBytes", {61, 3, 2, true}, {61, 3, 8, false}, RepeatBy(-1), 2, true},
    };
}

class ConversionMemory : public ::testing::TestWithParam<Kind>
{};

TEST_P(ConversionMemory, IsAFewAlignedBlocksThatAreGivenBack)
{
    const Kind& kind = GetParam();
    for (const bool portable : {false, true}) {
        CountedMemory memory;
        const Watched watched =
            Watch<ChainRow>({kind.from, kind.to, kind.operation, portable}, memory);
        EXPECT_STREQ("", watched.text);
        EXPECT_EQ(0, watched.lines);
        EXPECT_EQ(kind.buffers + (kind.relocates ? 1 : 0), memory.CountAsked());
        EXPECT_LE(memory.CountAsked(), 3U);
        for (std::size_t i = 0; i != memory.CountAsked(); ++i)
            EXPECT_EQ(64U, memory.GetAllocation(i).alignment);
        EXPECT_EQ(0, memory.CountHeld());
        EXPECT_FALSE(watched.destinationUntouched);
        EXPECT_TRUE(watched.sourceUntouched);
        EXPECT_TRUE(watched.rowsUnchanged);
    }
}

#ifdef PELKRAFT_VECTOR_ROAD
// The portable road has the chain unpack.
TEST_P(ConversionMemory, IsNotTakenByTheDirectRoad)
{
    const Kind& kind = GetParam();
    CountedMemory memory;
    const Watched watched = Watch<ImageRow>({kind.from, kind.to, kind.operation, false}, memory);
    EXPECT_STREQ("", watched.text);
    EXPECT_EQ(0U, memory.CountAsked());
    EXPECT_FALSE(watched.destinationUntouched);
    EXPECT_TRUE(watched.sourceUntouched);
    EXPECT_TRUE(watched.rowsUnchanged);
}
#endif

TEST_P(ConversionMemory, MissingForAnyBlockLeavesBothRowsAsTheyWere)
{
    const Kind& kind = GetParam();
    const std::size_t blocks = kind.buffers + (kind.relocates ? 1 : 0);
    for (const bool portable : {false, true}) {
        std::size_t badAllocations = 0;
        std::size_t relocations = 0;
        for (std::size_t failing = 0; failing != blocks; ++failing) {
            SCOPED_TRACE(failing);
            CountedMemory memory;
            memory.FailAt(failing);
            const Watched watched =
                Watch<ChainRow>({kind.from, kind.to, kind.operation, portable}, memory);
            EXPECT_TRUE(memory.CountFailed() == 1);
            EXPECT_EQ(0, memory.CountHeld());
            EXPECT_EQ(1, watched.lines);
            EXPECT_TRUE(watched.sourceUntouched);
            EXPECT_TRUE(watched.destinationUntouched);
            EXPECT_TRUE(watched.rowsUnchanged);
            EXPECT_STREQ(watched.isBadAlloc ? badAllocation : noRelocation, watched.text);
            ++(watched.isBadAlloc ? badAllocations : relocations);
        }
        EXPECT_EQ(kind.buffers, badAllocations);
        EXPECT_EQ(kind.relocates ? 1U : 0U, relocations);
    }
}

INSTANTIATE_TEST_SUITE_P(EachKind, ConversionMemory, ::testing::ValuesIn(Kinds()),
                         [](const auto& tested) { return std::string(tested.param.name); });

// The block for the relocated row: its bytes and 64 to spare.
TEST(ConversionMemory, OfAMirroredPackedRowHoldsTheWholeRow)
{
    CountedMemory memory;
    (void)Watch<ChainRow>({{1000, 3, 1, true}, {1000, 3, 1, true}, RepeatBy(-1), false}, memory);
    bool found = false;
    for (std::size_t i = 0; i != memory.CountAsked(); ++i)
        found = found || memory.GetAllocation(i).bytes == 3 * 125 + 64;
    EXPECT_TRUE(found);
}

// A refusal needs no memory at all.
TEST(ConversionMemory, IsNotTakenByARefusedConversion)
{
    CountedMemory memory;
    const Watched watched =
        Watch<ImageRow>({{10, 2, 1, false}, {10, 2, 16, false}, {}, false}, memory);
    EXPECT_STREQ(to16, watched.text);
    EXPECT_EQ(0U, memory.CountAsked());
    EXPECT_EQ(1, watched.lines);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
