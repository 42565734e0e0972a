#pragma once

#include <cstdint>

namespace zvk::Pelkraft {

struct SseLanes;

// The methods of the widest roads take 8 pixels at once. The steps are sorted to lanes of 16
// bytes: in lane L the word of a pixel holds the steps of the out-inks 2 * L and 2 * L + 1. So a
// lane of SseTransformation::mInkValues has the values of both inks, a pixel's own tables fill
// its word of all lanes, and a last sorting makes pixels of the words. All tables are plain bytes.
constexpr std::uint32_t pixelsOfWords = 8;

// By 64-byte vectors: the first of the out-inks 0 to 7, the second of the others.
struct WideWordLanes
{
    // From which byte of the source.
    alignas(64) std::uint8_t mPlaces[2][64];
    alignas(64) std::uint8_t mStepLimits[2][64];
    // By destination byte, from which byte of both vectors.
    alignas(64) std::uint8_t mWords[2][64];
};

// By 32-byte vectors: the first of the out-inks 0 to 3, the second of the next four.
struct ShortWordLanes
{
    // The source comes in 1, 2, 4 or 8 pieces of at most 16 bytes, whole pixels each. By piece,
    // from which of its bytes; the top bit is set where the pixel is not in the piece.
    alignas(32) std::uint8_t mPlaces[8][2][32];
    alignas(32) std::uint8_t mStepLimits[2][32];
    // Closes the gaps between four pixels of 4 bytes, or between two of 8.
    alignas(16) std::uint8_t mClosing[16];
    std::uint32_t mPieces;
    // The fewest pixels for which the loads and stores of 16 bytes stay in the rows.
    std::uint32_t mRoomyPixels;
};

struct InkLookup
{
    WideWordLanes mWide;
    ShortWordLanes mShort;
};

// Whether all steps that the limits leave have a place in mInkValues.
bool CanLookUp(const SseLanes& lanes, std::uint32_t outInks);

// Whether short words take less time than pixel after pixel.
bool SuitsShortWords(std::uint32_t inColors, std::uint32_t outInks);

// For patterns that can; 1 to 16 in-colours and out-inks.
InkLookup BuildInkLookup(const SseLanes& lanes, std::uint32_t inColors, std::uint32_t outInks);

} // namespace zvk::Pelkraft
