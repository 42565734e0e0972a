#include "dither/limit_dither.h"

#include "dither/dither_kernels.h"
#include "dither/mask_shift.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace zvk::Pelkraft {
namespace {

// Beyond so many comparisons a look into a table is faster.
constexpr std::size_t mostPlanes = 16;

std::size_t CountPlanes(const DitherRequest& request)
{
    std::size_t planes = 0;
    for (const ToneScale& scale : request.scales)
        planes = std::max(planes, scale.inks.size() - 1);
    return planes;
}

// By level: the largest sample whose own level is not above it.
template <typename Sample>
std::vector<Sample> LargestSamples(const ToneCurve& curve)
{
    std::vector<Sample> largest(static_cast<std::size_t>(curve.TopLevel()));
    std::uint64_t level = 0;
    for (std::uint32_t sample = 1; level != curve.TopLevel(); ++sample)
        for (const std::uint64_t next = curve.Level(sample); level != next; ++level)
            largest[static_cast<std::size_t>(level)] = static_cast<Sample>(sample - 1);
    return largest;
}

template <typename Sample>
class LimitDither final : public DitherRows
{
public:
    explicit LimitDither(const DitherRequest& request)
        : kernel(KernelOf(request.road)), channels(request.scales.size()),
          planes(CountPlanes(request)), rowSamples(maskSide * channels + spareBytes),
          // No sample is above the largest one. The kernels step past the last row, or past nothing
          // where no channel has a second step, so there is one row more than they read.
          limits((maskSide * planes + 1) * rowSamples, std::numeric_limits<Sample>::max()),
          flips(rowSamples)
    {
        for (std::size_t channel = 0; channel != channels; ++channel)
            AddChannel(channel, ToneCurve(request.scales[channel], largestSample), request.mask);
        RepeatPeriods();
    }

    void Apply(std::uint64_t x, std::uint64_t y, const unsigned char* source, unsigned char* target,
               std::size_t pixels) const override
    {
        const std::size_t row = static_cast<std::size_t>(y % maskSide) * planes * rowSamples;
        kernel({source, target, pixels * channels, maskSide * channels,
                static_cast<std::size_t>(x % maskSide) * channels, BytesOf(flips),
                BytesOf(limits) + row * sizeof(Sample), rowSamples * sizeof(Sample),
                static_cast<int>(planes)});
    }

private:
    static constexpr std::uint32_t largestSample = std::numeric_limits<Sample>::max();

    static DitherKernel KernelOf(Road road)
    {
        const DitherKernels& kernels = DitherKernelsOf(road);
        return sizeof(Sample) == 1 ? kernels.bytes : kernels.words;
    }

    static const unsigned char* BytesOf(const std::vector<Sample>& samples)
    {
        return reinterpret_cast<const unsigned char*>(samples.data());
    }

    void AddChannel(std::size_t channel, const ToneCurve& curve, const std::uint16_t* mask)
    {
        for (std::size_t x = 0; x != maskSide; ++x)
            flips[x * channels + channel] = curve.IsReversed() ? largestSample : 0;
        const std::vector<Sample> largest = LargestSamples<Sample>(curve);
        const MaskShift shift(channel);
        const std::size_t ownPlanes = largest.size() / ranksPerStep;
        for (std::size_t y = 0; y != maskSide; ++y)
            for (std::size_t plane = 0; plane != ownPlanes; ++plane) {
                Sample* to = limits.data() + (y * planes + plane) * rowSamples + channel;
                const Sample* from = largest.data() + plane * ranksPerStep;
                for (std::size_t x = 0; x != maskSide; ++x)
                    to[x * channels] = from[mask[shift.IndexOf(x, y)]];
            }
    }

    void RepeatPeriods()
    {
        const std::size_t period = maskSide * channels;
        const auto repeat = [=, this](std::vector<Sample>& samples) {
            for (std::size_t row = 0; row != samples.size(); row += rowSamples)
                for (std::size_t i = period; i != rowSamples; ++i)
                    samples[row + i] = samples[row + i - period];
        };
        repeat(limits);
        repeat(flips);
    }

    DitherKernel kernel;
    std::size_t channels;
    std::size_t planes;
    std::size_t rowSamples;
    std::vector<Sample> limits;
    std::vector<Sample> flips;
};

} // namespace

std::uint64_t LimitBytes(const DitherRequest& request)
{
    const std::uint64_t planes = CountPlanes(request);
    if (planes > mostPlanes)
        return std::numeric_limits<std::uint64_t>::max();
    return planes * maskPlaces * request.scales.size() * static_cast<std::uint64_t>(request.bits) /
           8;
}

std::unique_ptr<const DitherRows> MakeLimitDither(const DitherRequest& request)
{
    if (request.bits == 8)
        return std::make_unique<LimitDither<std::uint8_t>>(request);
    return std::make_unique<LimitDither<std::uint16_t>>(request);
}

} // namespace zvk::Pelkraft
