#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::Client {

// Two samples, and what becomes of them; all others follow in a straight line.
struct SampleLine
{
    int none = 0;
    int full = 0;
    int newNone = 0;
    int newFull = 0;

    // To the nearest, half up, from 0 to highest. none and full differ.
    int At(int sample, int highest) const;
    bool operator==(const SampleLine&) const = default;
};

// The line that each channel of a row follows.
using SampleLines = std::vector<SampleLine>;

// The samples of a row as a map takes them: packed planes below 8 bits, else planes or interleaved.
struct MappedSamples
{
    std::int64_t width = 0;
    int channels = 0;
    int bits = 0;
    bool planar = false;
};

// Looks every sample up in a table, once for a row. What it gives are numbers of the new depth, in
// bytes below 8 bits.
class SampleMap
{
public:
    SampleMap(const SampleLines& lines, const MappedSamples& newSamples, int newDepth);

    void Run(const unsigned char* row, unsigned char* newRow) const;

private:
    using Table = std::vector<std::uint16_t>;

    const Table& TableOf(int channel) const
    {
        return tables[places[static_cast<std::size_t>(channel)]];
    }
    template <typename New>
    void RunTo(const unsigned char* row, New* newRow) const;
    template <typename Old, typename New>
    void RunInterleaved(const Old* row, New* newRow) const;

    MappedSamples samples;
    int newBits;
    // One for each different line, and for each channel the place of its own.
    std::vector<Table> tables;
    std::vector<std::size_t> places;
};

} // namespace zvk::Pelkraft::Client
