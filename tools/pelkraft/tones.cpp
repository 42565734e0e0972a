#include "tools/pelkraft/tones.h"

namespace zvk::Pelkraft::Client {
namespace {

// The level as a constant, so that the division becomes a product that vectors can take.
template <unsigned maxLevel>
void Quantize(unsigned char* samples, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = static_cast<unsigned char>((samples[i] * maxLevel + 127U) / 255U);
}

template <unsigned maxLevel>
void Stretch(unsigned char* samples, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = static_cast<unsigned char>(samples[i] * (255U / maxLevel));
}

} // namespace

void QuantizeTones(unsigned char* samples, std::size_t count, int bits)
{
    if (bits == 1)
        Quantize<1>(samples, count);
    else
        Quantize<3>(samples, count);
}

void StretchLevels(unsigned char* samples, std::size_t count, int bits)
{
    if (bits == 1)
        Stretch<1>(samples, count);
    else
        Stretch<3>(samples, count);
}

} // namespace zvk::Pelkraft::Client
