#include "tests/pattern/naive_reference.h"

#include "tests/pattern/naive_random.h"

#include <numeric>

namespace zvk::Pelkraft::TestSupport {

void NaiveReference::Reset()
{
    // Each reset of a portable source leaves it one place after the start.
    positions.clear();
}

std::uint32_t NaiveReference::Draw(std::uint64_t sum)
{
    std::vector<std::uint32_t>& field = fields[sum];
    if (field.empty()) {
        NaiveRand rand(static_cast<std::uint32_t>(pattern.seed));
        for (int i = 0; i < 65536; ++i) {
            if (sum == 3)
                rand();
            field.push_back(rand() % static_cast<std::uint32_t>(sum));
            for (int dropped = 0; dropped < (sum == 2 ? 3 : 2); ++dropped)
                rand();
        }
    }
    const std::size_t drawn = positions[sum]++;
    return field[(NaiveJump(0) + 1 + drawn) % 65536];
}

void NaiveReference::AddInColor(const NaiveInColor& inColor, int step, Bytes& pixel)
{
    const auto found = inColor.lines.find(step);
    if (found == inColor.lines.end())
        return;
    const NaiveLine& line = found->second;
    const std::uint64_t sum =
        std::accumulate(line.weights.begin(), line.weights.end(), std::uint64_t{0});
    std::uint64_t number = sum >= 2 ? Draw(sum) : 0;
    for (std::size_t j = 0; j < line.weights.size(); ++j) {
        if (number < line.weights[j]) {
            const auto position = static_cast<std::size_t>(line.positions[j]);
            if (position < inColor.inks.size()) {
                auto& ink = pixel[static_cast<std::size_t>(inColor.inks[position])];
                ink = static_cast<unsigned char>(ink | (line.values[j] & 0xFF));
            }
            return;
        }
        number -= line.weights[j];
    }
}

Bytes NaiveReference::Apply(const Bytes& source)
{
    const std::size_t inColors = pattern.inColors.size();
    Bytes destination;
    for (std::size_t at = 0; at < source.size(); at += inColors) {
        Bytes pixel(static_cast<std::size_t>(pattern.outInks), 0);
        for (std::size_t i = 0; i < inColors; ++i)
            AddInColor(pattern.inColors[i], source[at + i], pixel);
        destination.insert(destination.end(), pixel.begin(), pixel.end());
    }
    return destination;
}

} // namespace zvk::Pelkraft::TestSupport
