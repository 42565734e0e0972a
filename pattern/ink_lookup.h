#pragma once

#include <cstdint>

namespace zvk::Pelkraft {

struct SseLanes;

// The methods of the widest roads take 8 pixels at once. The steps are sorted to lanes of 16
// bytes: in lane L the word of a pixel holds the steps of the out-inks 2 * L and 2 * L + 1. So a
// lane of SseTransformation::mInkValues has the values of both inks, a pixel's own tables fill
// its word of all lanes, and a last sorting makes pixels of the words. All tables are plain bytes.
constexpr std::uint32_t pixelsOfWords = 8;

// The first of two 64-byte vectors serves the out-inks 0 to 7, the second the others.
struct WideWordLanes
{
    // Each place of the words takes this byte of the source.
    alignas(64) std::uint8_t mPlaces[2][64];
    alignas(64) std::uint8_t mStepLimits[2][64];
    // Each byte of the destination takes this byte of both vectors.
    alignas(64) std::uint8_t mWords[2][64];
};

// The first of two 32-byte vectors serves the out-inks 0 to 3, the second the next four.
struct ShortWordLanes
{
    // The source comes in 1, 2, 4 or 8 pieces of at most 16 bytes, whole pixels each. Each place of
    // the words takes this byte of a piece; the top bit is set where the pixel is not in it.
    alignas(32) std::uint8_t mPlaces[8][2][32];
    alignas(32) std::uint8_t mStepLimits[2][32];
    // It closes the gaps between four pixels of 4 bytes, or between two of 8.
    alignas(16) std::uint8_t mClosing[16];
    std::uint32_t mPieces;
    // So many pixels a row must have, that loads and stores of 16 bytes stay in it.
    std::uint32_t mRoomyPixels;
};

struct InkLookup
{
    WideWordLanes mWide;
    ShortWordLanes mShort;
};

// A pattern can be looked up if all steps that the limits leave have a place in mInkValues.
bool CanLookUp(const SseLanes& lanes, std::uint32_t outInks);

// Short words suit a pattern if they take less time than pixel after pixel.
bool SuitsShortWords(std::uint32_t inColors, std::uint32_t outInks);

// The pattern must be one that can be looked up, of 1 to 16 in-colours and out-inks.
InkLookup BuildInkLookup(const SseLanes& lanes, std::uint32_t inColors, std::uint32_t outInks);

} // namespace zvk::Pelkraft
