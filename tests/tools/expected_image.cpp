#include "tests/tools/expected_image.h"

namespace zvk::Pelkraft::TestSupport {
namespace {

int HighestLevel(int bits)
{
    return (1 << bits) - 1;
}

// To 8 bits: 16-bit samples by the interval of 257 that they lie in, levels stretched.
int ToByte(int sample, int bits)
{
    if (bits == 16)
        return (sample + 127) / 257;
    if (bits == 8)
        return sample;
    return sample * 255 / HighestLevel(bits);
}

int NearestLevel(int tone, int bits)
{
    int best = 0;
    const auto distance = [&](int level) {
        const int difference = tone * HighestLevel(bits) - level * 255;
        return difference < 0 ? -difference : difference;
    };
    for (int level = 1; level <= HighestLevel(bits); ++level) {
        if (distance(level) < distance(best))
            best = level;
    }
    return best;
}

int ConvertSample(int sample, int from, int to, bool scale)
{
    if (from == to)
        return sample;
    // Numbers stay what they are, as far as the new depth has bits for them.
    if (!scale && (from < 8 || to < 8))
        return sample & HighestLevel(to);
    const int byte = ToByte(sample, from);
    if (to == 8)
        return byte;
    if (to == 16)
        return byte * 257;
    return NearestLevel(byte, to);
}

} // namespace

TiffImage Expected(const TiffImage& image, const Wish& wish)
{
    std::vector<int> channels = wish.channels;
    for (int c = 0; wish.channels.empty() && c < image.channels; ++c)
        channels.push_back(c);

    TiffImage result = BlankImage(image.width * wish.repeat, image.height,
                                  static_cast<int>(channels.size()), wish.bits);
    for (int y = 0; y < result.height; ++y) {
        for (int x = 0; x < result.width; ++x) {
            const int oldX = wish.mirror ? image.width - 1 - x / wish.repeat : x / wish.repeat;
            for (int c = 0; c < result.channels; ++c) {
                const int from = channels[static_cast<std::size_t>(c)];
                const int sample = from < 0 ? wish.empty
                                            : ConvertSample(image.At(oldX, y, from), image.bits,
                                                            wish.bits, wish.scaleTones);
                result.At(x, y, c) = static_cast<std::uint16_t>(sample);
            }
        }
    }
    return result;
}

} // namespace zvk::Pelkraft::TestSupport
