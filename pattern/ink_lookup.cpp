#include "pattern/ink_lookup.h"

#include "pattern/pattern_model.h"
#include "pattern/sse_row.h"

#include <algorithm>
#include <cstddef>

namespace zvk::Pelkraft {
namespace {

constexpr std::uint8_t noPlace = 0x80;
constexpr std::uint32_t pieceBytes = 16;
constexpr std::uint32_t inksOfWideVector = 8;
constexpr std::uint32_t inksOfShortVector = 4;
constexpr std::uint32_t laneBytes = 16;

// The result is the number of pieces in which the source of 8 pixels comes.
std::uint32_t CountPieces(std::uint32_t inColors)
{
    std::uint32_t pieces = 1;
    while (pixelsOfWords / pieces * inColors > pieceBytes)
        pieces *= 2;
    return pieces;
}

// Any in-colour will do for an ink without one, whose step is 0.
std::uint32_t InColorOf(const SseLanes& lanes, std::uint32_t ink)
{
    const std::uint8_t inColor = lanes.mInColorLanes[ink];
    return inColor == noInColorOfInk ? 0 : inColor;
}

std::uint8_t StepLimitOf(const SseLanes& lanes, std::uint32_t ink)
{
    const std::uint8_t inColor = lanes.mInColorLanes[ink];
    return inColor == noInColorOfInk ? std::uint8_t{0} : lanes.mStepLimits[inColor];
}

std::uint32_t WordPlace(std::uint32_t pixel, std::uint32_t ink)
{
    return ink / 2 * laneBytes + 2 * pixel + ink % 2;
}

WideWordLanes BuildWideLanes(const SseLanes& lanes, std::uint32_t inColors, std::uint32_t outInks)
{
    WideWordLanes wide{};
    for (std::uint32_t pixel = 0; pixel < pixelsOfWords; ++pixel)
        for (std::uint32_t ink = 0; ink < outInks; ++ink) {
            const std::uint32_t vector = ink / inksOfWideVector;
            const std::uint32_t place = WordPlace(pixel, ink % inksOfWideVector);
            const std::uint32_t byte = pixel * outInks + ink;
            wide.mPlaces[vector][place] =
                static_cast<std::uint8_t>(pixel * inColors + InColorOf(lanes, ink));
            wide.mStepLimits[vector][place] = StepLimitOf(lanes, ink);
            wide.mWords[byte / 64][byte % 64] = static_cast<std::uint8_t>(vector * 64 + place);
        }
    return wide;
}

// Counts the pixels that begin within the last 16 bytes that a block touches, and those before.
std::uint32_t CountRoomyPixels(std::uint32_t pixelsBefore, std::uint32_t pixelBytes)
{
    return pixelsBefore + (pieceBytes + pixelBytes - 1) / pixelBytes;
}

void PlaceShortWords(const SseLanes& lanes, std::uint32_t inColors, std::uint32_t outInks,
                     ShortWordLanes& words)
{
    const std::uint32_t piecePixels = pixelsOfWords / words.mPieces;
    for (auto& piece : words.mPlaces)
        for (auto& vector : piece)
            std::fill(std::begin(vector), std::end(vector), noPlace);
    for (std::uint32_t pixel = 0; pixel < pixelsOfWords; ++pixel)
        for (std::uint32_t ink = 0; ink < outInks; ++ink) {
            const std::uint32_t vector = ink / inksOfShortVector;
            const std::uint32_t place = WordPlace(pixel, ink % inksOfShortVector);
            words.mPlaces[pixel / piecePixels][vector][place] =
                static_cast<std::uint8_t>(pixel % piecePixels * inColors + InColorOf(lanes, ink));
            words.mStepLimits[vector][place] = StepLimitOf(lanes, ink);
        }
}

ShortWordLanes BuildShortLanes(const SseLanes& lanes, std::uint32_t inColors, std::uint32_t outInks)
{
    ShortWordLanes words{};
    words.mPieces = CountPieces(inColors);
    PlaceShortWords(lanes, inColors, outInks, words);

    const std::uint32_t slotBytes = outInks > inksOfShortVector ? 8 : 4;
    const std::uint32_t slots = pieceBytes / slotBytes;
    std::fill(std::begin(words.mClosing), std::end(words.mClosing), noPlace);
    for (std::uint32_t byte = 0; byte < slots * outInks; ++byte)
        words.mClosing[byte] =
            static_cast<std::uint8_t>(byte / outInks * slotBytes + byte % outInks);
    words.mRoomyPixels = std::max(
        {pixelsOfWords, CountRoomyPixels(pixelsOfWords - pixelsOfWords / words.mPieces, inColors),
         CountRoomyPixels(pixelsOfWords - slots, outInks)});
    return words;
}

} // namespace

bool SuitsShortWords(std::uint32_t inColors, std::uint32_t outInks)
{
    return outInks <= inksOfShortVector ||
           (outInks <= 2 * inksOfShortVector && CountPieces(inColors) <= 2);
}

bool CanLookUp(const SseLanes& lanes, std::uint32_t outInks)
{
    for (std::uint32_t ink = 0; ink < outInks; ++ink)
        if (StepLimitOf(lanes, ink) >= stepsOfInkValues)
            return false;
    return true;
}

InkLookup BuildInkLookup(const SseLanes& lanes, std::uint32_t inColors, std::uint32_t outInks)
{
    InkLookup lookup{};
    lookup.mWide = BuildWideLanes(lanes, inColors, outInks);
    if (SuitsShortWords(inColors, outInks))
        lookup.mShort = BuildShortLanes(lanes, inColors, outInks);
    return lookup;
}

} // namespace zvk::Pelkraft
