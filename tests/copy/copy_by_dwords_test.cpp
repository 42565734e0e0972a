#include "pelkraft/copy_primitives.h"
#include "tests/copy/copy_check.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace zvk::Pelkraft {
namespace {

using namespace TestSupport;

constexpr int largestSize = 300;
constexpr int largestDistance = 400;

CopyCall CopyByDwords(int size)
{
    return [size](unsigned char* source, unsigned char* destination) {
        copyByDwords(source, destination, size);
    };
}

std::size_t Index(int number)
{
    return static_cast<std::size_t>(number);
}

// The places of the copied bytes in one row of bytes.
struct Overlap
{
    int source;
    int destination;
    int size;
};

void MoveGroup(Bytes& row, const Overlap& overlap, int first, int groupBytes)
{
    const Bytes group(row.begin() + overlap.source + first,
                      row.begin() + overlap.source + first + groupBytes);
    for (int byte = 0; byte != groupBytes; ++byte)
        row[Index(overlap.destination + first + byte)] = group[Index(byte)];
}

Bytes CopiedByteByByte(Bytes row, const Overlap& overlap)
{
    for (int byte = 0; byte != overlap.size; ++byte)
        MoveGroup(row, overlap, byte, 1);
    return row;
}

Bytes CopiedAtOnce(Bytes row, const Overlap& overlap)
{
    MoveGroup(row, overlap, 0, overlap.size);
    return row;
}

// Whole blocks of 16 bytes word by word, and what is left byte by byte.
Bytes CopiedWordByWord(Bytes row, const Overlap& overlap)
{
    int byte = 0;
    for (; byte < overlap.size / 16 * 16; byte += 4)
        MoveGroup(row, overlap, byte, 4);
    for (; byte < overlap.size; ++byte)
        MoveGroup(row, overlap, byte, 1);
    return row;
}

Bytes CopiedByLibrary(Bytes row, const Overlap& overlap)
{
    copyByDwords(row.data() + overlap.source, row.data() + overlap.destination, overlap.size);
    return row;
}

// A row with both ranges and some bytes around them.
Overlap MakeOverlap(int distance, int size)
{
    constexpr int margin = 8;
    return {margin + (distance < 0 ? -distance : 0), margin + (distance > 0 ? distance : 0), size};
}

Bytes MakeRow(const Overlap& overlap)
{
    const int end = std::max(overlap.source, overlap.destination) + overlap.size;
    return RandomBytes(Index(end + 8), 11);
}

TEST(CopyByDwords, CopiesSizeBytesAndNoMore)
{
    for (int size = 0; size <= largestSize; ++size) {
        SCOPED_TRACE(size);
        ExpectCopies(size, CopyByDwords(size));
    }
    ExpectCopies((1 << 20) + 13, CopyByDwords((1 << 20) + 13));
}

TEST(CopyByDwords, DoesNothingWithoutAPositiveSize)
{
    for (const int size : {0, -1, -15, -16, -4096, std::numeric_limits<int>::min()}) {
        SCOPED_TRACE(size);
        ExpectCopies(0, CopyByDwords(size));
        copyByDwords(nullptr, nullptr, size);
    }
}

// Compares each size with a naive copy, at this distance up; down if it is negative.
template <typename NaiveCopy>
void ExpectOverlapsLike(NaiveCopy copied, int distance)
{
    for (int size = 0; size <= largestSize; ++size) {
        const Overlap overlap = MakeOverlap(distance, size);
        const Bytes row = MakeRow(overlap);
        ASSERT_EQ(copied(row, overlap), CopiedByLibrary(row, overlap))
            << size << " bytes " << distance << " up";
    }
}

TEST(CopyByDwords, RepeatsTheBytesBetweenFromADistanceOfFourUp)
{
    for (int distance = 4; distance <= largestDistance; ++distance)
        ExpectOverlapsLike(CopiedByteByByte, distance);
}

TEST(CopyByDwords, MovesTheBytesDownAtAnyDistance)
{
    for (int distance = 0; distance <= largestDistance; ++distance)
        ExpectOverlapsLike(CopiedAtOnce, -distance);
}

TEST(CopyByDwords, CarriesWordsUpByLessThanAWord)
{
    for (int distance = 1; distance <= 3; ++distance)
        ExpectOverlapsLike(CopiedWordByWord, distance);
}

TEST(CopyByDwords, NeitherMovesNorRepeatsBlocksUpByLessThanAWord)
{
    for (int distance = 1; distance <= 3; ++distance)
        for (int size = 16; size <= largestSize; ++size) {
            const Overlap overlap = MakeOverlap(distance, size);
            const Bytes row = MakeRow(overlap);
            const Bytes copied = CopiedByLibrary(row, overlap);
            ASSERT_NE(CopiedAtOnce(row, overlap), copied) << size << " bytes " << distance << " up";
            ASSERT_NE(CopiedByteByByte(row, overlap), copied)
                << size << " bytes " << distance << " up";
        }
}

TEST(CopyByDwords, StaysWithinRangesThatOverlap)
{
    for (int distance = -40; distance <= 40; ++distance)
        for (int size = 1; size <= 70; ++size) {
            const int back = distance < 0 ? -distance : 0;
            const Overlap overlap{back, back + distance, size};
            const Bytes row = RandomBytes(Index(size + std::abs(distance)), 12);
            const Bytes expected = CopiedWordByWord(row, overlap);
            for (const Flush flush : {Flush::AtEnd, Flush::AtStart}) {
                const GuardedBuffer buffer(row, flush);
                copyByDwords(buffer.data() + overlap.source, buffer.data() + overlap.destination,
                             size);
                ASSERT_EQ(expected, buffer.bytes()) << size << " bytes at " << distance;
            }
        }
}

} // namespace
} // namespace zvk::Pelkraft
