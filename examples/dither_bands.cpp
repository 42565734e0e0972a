// Dithers a page of CMYK in two bands, which fit together, and finds its tones again.
#include <pelkraft/dither.hpp>

#include <cstdint>
#include <cstdio>
#include <vector>

using namespace zvk::Pelkraft;

int main()
{
    constexpr std::int64_t width = 256;
    constexpr std::uint64_t height = 256;
    const std::uint16_t tones[4] = {0, 6554, 20000, 65535};
    std::vector<std::uint16_t> page;
    for (std::uint64_t pixel = 0; pixel != width * height; ++pixel)
        page.insert(page.end(), tones, tones + 4);

    // All four channels have the same two drops.
    const ChannelTones drops{{0, 100, 250}, 0, 65535};
    const DitherPlan dither({16, {drops, drops, drops, drops}});

    std::vector<unsigned char> steps(4 * width * height);
    const SourceRows source(page, 8 * width);
    const TargetRows target(steps, 4 * width);
    dither.Run(0, 0, 100, width, source, target);
    const SourceRows lower(page, 8 * width, 0, 100 * 8 * width);
    const TargetRows lowerSteps(steps, 4 * width, 0, 100 * 4 * width);
    dither.Run(0, 100, height - 100, width, lower, lowerSteps);

    for (int channel = 0; channel != 4; ++channel) {
        double ink = 0;
        for (std::size_t i = static_cast<std::size_t>(channel); i < steps.size(); i += 4)
            ink += drops.inks[steps[i]];
        std::printf("tone %5d comes out as %8.2f\n", tones[channel],
                    ink / 250 * 65535 / (width * height));
    }

    try {
        const DitherPlan flat({8, {ChannelTones{{0, 7, 7}}}});
    } catch (const PelkraftError& error) {
        std::printf("%s\n", error.what());
    }
}
