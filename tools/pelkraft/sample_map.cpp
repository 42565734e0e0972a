#include "tools/pelkraft/sample_map.h"

#include <algorithm>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

std::int64_t FloorDivided(std::int64_t number, std::int64_t divisor)
{
    return number / divisor - (number % divisor < 0 ? 1 : 0);
}

std::vector<std::uint16_t> MakeTable(const SampleLine& line, int bits, int highest)
{
    std::vector<std::uint16_t> table(std::size_t{1} << bits);
    for (std::size_t sample = 0; sample < table.size(); ++sample)
        table[sample] = static_cast<std::uint16_t>(line.At(static_cast<int>(sample), highest));
    return table;
}

unsigned PackedSample(const unsigned char* plane, std::int64_t index, int bits)
{
    const std::int64_t place = index * bits;
    return plane[place / 8] >> (8 - bits - place % 8) & ((1U << bits) - 1);
}

} // namespace

int SampleLine::At(int sample, int highest) const
{
    std::int64_t rise = std::int64_t{newFull} - newNone;
    std::int64_t run = std::int64_t{full} - none;
    if (run < 0) {
        rise = -rise;
        run = -run;
    }
    const std::int64_t twice = 2 * (std::int64_t{sample} - none) * rise + run;
    const std::int64_t value = newNone + FloorDivided(twice, 2 * run);
    return static_cast<int>(std::clamp<std::int64_t>(value, 0, highest));
}

SampleMap::SampleMap(const SampleLines& lines, const MappedSamples& newSamples, int newDepth)
    : samples(newSamples), newBits(newDepth)
{
    SampleLines different;
    for (const SampleLine& line : lines) {
        const auto found = std::find(different.begin(), different.end(), line);
        places.push_back(static_cast<std::size_t>(found - different.begin()));
        if (found != different.end())
            continue;
        different.push_back(line);
        tables.push_back(MakeTable(line, samples.bits, (1 << newBits) - 1));
    }
}

void SampleMap::Run(const unsigned char* row, unsigned char* newRow) const
{
    if (newBits == 16)
        RunTo(row, reinterpret_cast<std::uint16_t*>(newRow));
    else
        RunTo(row, newRow);
}

template <typename New>
void SampleMap::RunTo(const unsigned char* row, New* newRow) const
{
    if (samples.bits == 16) {
        RunInterleaved(reinterpret_cast<const std::uint16_t*>(row), newRow);
        return;
    }
    if (samples.bits == 8) {
        RunInterleaved(row, newRow);
        return;
    }
    const std::int64_t planeBytes = (samples.width * samples.bits + 7) / 8;
    for (int channel = 0; channel < samples.channels; ++channel) {
        const Table& table = TableOf(channel);
        for (std::int64_t pixel = 0; pixel < samples.width; ++pixel)
            newRow[pixel] = static_cast<New>(table[PackedSample(row, pixel, samples.bits)]);
        row += planeBytes;
        newRow += samples.width;
    }
}

// Planes are taken for pixels of one channel, one after the other.
template <typename Old, typename New>
void SampleMap::RunInterleaved(const Old* row, New* newRow) const
{
    const std::int64_t total = samples.width * samples.channels;
    const std::int64_t run = tables.size() == 1 ? total : samples.planar ? samples.width : 1;
    for (std::int64_t first = 0; first < total; first += run) {
        const std::int64_t place = first / run;
        const auto channel = static_cast<int>(run == total ? 0 : place % samples.channels);
        const std::uint16_t* const table = TableOf(channel).data();
        for (std::int64_t i = first; i < first + run; ++i)
            newRow[i] = static_cast<New>(table[row[i]]);
    }
}

} // namespace zvk::Pelkraft::Client
