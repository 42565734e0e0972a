#include "tools/pelkraft/channel_statistics.h"

#include "tools/pelkraft/band_reader.h"
#include "tools/pelkraft/sample_planes.h"

#include <algorithm>
#include <limits>

namespace zvk::Pelkraft::Client {
namespace {

// Sums of so many samples of 16 bits stay within 32.
constexpr std::int64_t blockSamples = 4096;

template <typename Sample>
void AddSamples(const Sample* samples, std::int64_t count, const InkCodes& codes,
                ChannelStatistics& total)
{
    // Samples are turned where ink is low, so that more of it is always the greater number.
    const Sample turn = codes.InkIsHigh() ? 0 : std::numeric_limits<Sample>::max();
    const auto none = static_cast<Sample>(codes.none ^ turn);
    for (std::int64_t start = 0; start < count; start += blockSamples) {
        const Sample* const block = samples + start;
        const std::int64_t size = std::min(blockSamples, count - start);
        std::uint32_t sum = 0;
        std::uint32_t used = 0;
        for (std::int64_t i = 0; i < size; ++i) {
            sum += block[i];
            used += static_cast<Sample>(block[i] ^ turn) > none ? 1 : 0;
        }
        // Without std::min and std::max, whose choice of a reference keeps compilers from
        // vectorising.
        Sample lowest = block[0];
        Sample highest = block[0];
        for (std::int64_t i = 0; i < size; ++i) {
            lowest = block[i] < lowest ? block[i] : lowest;
            highest = block[i] > highest ? block[i] : highest;
        }
        total.Add({static_cast<std::uint64_t>(size), sum, lowest, highest, used});
    }
}

template <typename Sample>
void AddRow(const SamplePlanes& planes, const SamplePlanes::Row& row,
            const std::vector<InkCodes>& codes, std::vector<ChannelStatistics>& totals)
{
    for (int channel = 0; channel < planes.Channels(); ++channel)
        AddSamples(row.Channel<Sample>(channel), planes.Width(),
                   codes[static_cast<std::size_t>(channel)],
                   totals[static_cast<std::size_t>(channel)]);
}

} // namespace

void ChannelStatistics::Add(const ChannelStatistics& other)
{
    samples += other.samples;
    sum += other.sum;
    lowest = std::min(lowest, other.lowest);
    highest = std::max(highest, other.highest);
    used += other.used;
}

std::vector<ChannelStatistics> CountSamples(const TiffFile& file, const TiffPicture& picture,
                                            const std::vector<InkCodes>& codes, int threads)
{
    const SamplePlanes planes(file, picture, {});
    const std::vector<ChannelStatistics> none(static_cast<std::size_t>(picture.channels));
    std::vector<std::vector<ChannelStatistics>> totals(static_cast<std::size_t>(threads), none);
    std::vector<SamplePlanes::Row> rows;
    rows.reserve(static_cast<std::size_t>(threads));
    for (int worker = 0; worker < threads; ++worker)
        rows.emplace_back(planes);
    const auto takeRow = [&](int worker, std::int64_t, const unsigned char* bytes) {
        SamplePlanes::Row& row = rows[static_cast<std::size_t>(worker)];
        auto& mine = totals[static_cast<std::size_t>(worker)];
        row.Take(bytes);
        if (planes.SampleBytes() == 1)
            AddRow<std::uint8_t>(planes, row, codes, mine);
        else
            AddRow<std::uint16_t>(planes, row, codes, mine);
    };
    ForEachBand(file, picture, threads, {takeRow, [](std::uint32_t, std::uint32_t) {}});
    std::vector<ChannelStatistics> sums = none;
    for (const auto& part : totals) {
        for (std::size_t channel = 0; channel < sums.size(); ++channel)
            sums[channel].Add(part[channel]);
    }
    return sums;
}

} // namespace zvk::Pelkraft::Client
