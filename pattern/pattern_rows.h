#pragma once

#include "pelkraft/dot_weave_pattern.h"

#include <array>
#include <cstdint>
#include <memory>

namespace zvk::Pelkraft {

struct NumberedRow
{
    std::uint64_t number;
    const unsigned char* source;
    unsigned char* destination;
    std::uint64_t pixels;
};

// The engines know these of a text that they have read.
struct PatternNumbers
{
    std::int32_t inColors = 0;
    std::int32_t outInks = 0;
    std::int32_t version = 0;
    std::uint32_t combinations = 0;
    std::uint32_t fieldSize = 0;
    std::array<std::uint8_t, 16> topSteps{};
};

// The engines count the pixels of a row in 32 bits, so that a longer one comes in pieces.
constexpr std::uint32_t mostPixelsOfPiece = 0x40000000;

// A pattern that never changes: what a row becomes depends on its number alone. Rows may come in
// any order and from several threads at once, and nothing is allocated for them.
class PatternRows
{
public:
    PatternRows(const PatternRows&) = delete;
    PatternRows& operator=(const PatternRows&) = delete;
    virtual ~PatternRows() = default;

    const PatternNumbers& GetNumbers() const { return mNumbers; }
    // Gives the bytes of DotWeavePattern::ApplyPattern for the row that follows so many others
    // after construction. Source and destination must not overlap.
    void Apply(const NumberedRow& row, std::uint32_t pieceOfPixels = mostPixelsOfPiece) const;

protected:
    PatternRows() = default;

    PatternNumbers mNumbers;

private:
    virtual std::uint32_t GetStartOfRow(std::uint16_t row) const = 0;
    virtual void ApplyFrom(std::uint32_t position, const unsigned char* source,
                           unsigned char* destination, std::uint32_t pixels) const = 0;
};

// Reads a text for Automatic, X86 or Sse. The bytes and limits of Automatic are those of Sse at
// every level, and both run on the best road that the level allows; a field of the second
// generation wraps at its own end. Throws as the constructor of DotWeavePattern does.
std::unique_ptr<const PatternRows> LoadPatternRows(char* text, DotWeavePattern::Engine engine);

} // namespace zvk::Pelkraft
