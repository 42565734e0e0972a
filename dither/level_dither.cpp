#include "dither/level_dither.h"

#include "dither/mask_shift.h"

#include <cstring>
#include <limits>
#include <new>

namespace zvk::Pelkraft {
namespace {

template <typename Sample>
class LevelDither final : public DitherRows
{
public:
    explicit LevelDither(const DitherRequest& request)
        : channels(request.scales.size()), levels(CountLevels(channels)), chances(maskPlaces)
    {
        shifts.reserve(channels);
        for (std::size_t place = 0; place != maskPlaces; ++place)
            chances[place] = static_cast<std::uint16_t>(ranksPerStep - 1 - request.mask[place]);
        for (std::size_t channel = 0; channel != channels; ++channel)
            AddChannel(channel, ToneCurve(request.scales[channel], sampleCount - 1));
    }

    void Apply(std::uint64_t x, std::uint64_t y, const unsigned char* source, unsigned char* target,
               std::size_t pixels) const override
    {
        for (std::size_t pixel = 0; pixel != pixels; ++pixel)
            for (std::size_t channel = 0; channel != channels; ++channel, ++target) {
                Sample sample;
                std::memcpy(&sample, source, sizeof sample);
                source += sizeof sample;
                const std::uint32_t chance = chances[shifts[channel].IndexOf(x + pixel, y)];
                // A carry into the next step where the rank is one of the level's.
                *target = static_cast<unsigned char>(
                    (levels[channel * sampleCount + sample] + chance) / ranksPerStep);
            }
    }

private:
    static constexpr std::uint32_t sampleCount = std::numeric_limits<Sample>::max() + 1U;

    static std::size_t CountLevels(std::size_t channels)
    {
        if (channels > std::numeric_limits<std::size_t>::max() / sampleCount)
            throw std::bad_alloc();
        return channels * sampleCount;
    }

    void AddChannel(std::size_t channel, const ToneCurve& curve)
    {
        shifts.emplace_back(channel);
        std::uint32_t* to = levels.data() + channel * sampleCount;
        for (std::uint32_t sample = 0; sample != sampleCount; ++sample)
            to[sample] = static_cast<std::uint32_t>(
                curve.Level(curve.IsReversed() ? sampleCount - 1 - sample : sample));
    }

    std::size_t channels;
    std::vector<MaskShift> shifts;
    // By channel and sample.
    std::vector<std::uint32_t> levels;
    // By place of the mask, the highest rank having the least.
    std::vector<std::uint16_t> chances;
};

} // namespace

std::unique_ptr<const DitherRows> MakeLevelDither(const DitherRequest& request)
{
    if (request.bits == 8)
        return std::make_unique<LevelDither<std::uint8_t>>(request);
    return std::make_unique<LevelDither<std::uint16_t>>(request);
}

} // namespace zvk::Pelkraft
