#include "tests/reproducibility/golden_cases.h"

#include "tests/support/conversion_choices.h"
#include "tests/support/random_bytes.h"

#include <iterator>
#include <random>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Seeds of the generator of random patterns whose patterns have 2 combinations or more, 12
// out-inks or fewer and no more values than the vector engine holds.
constexpr std::uint32_t patternSeeds[goldenPatternCount] = {1,  6,  4,  8,  10, 14, 23, 28, 27, 45,
                                                            34, 49, 39, 52, 67, 64, 44, 77, 93, 94};

template <typename List>
const auto& PickFrom(const List& list, std::mt19937& random)
{
    return list[random() % std::size(list)];
}

std::string Padded(int number)
{
    const std::string digits = std::to_string(number);
    return digits.size() < 3 ? std::string(3 - digits.size(), '0') + digits : digits;
}

} // namespace

GoldenConversion MakeGoldenConversion(int number)
{
    std::mt19937 random(static_cast<std::uint32_t>(number));
    GoldenConversion made;
    const int channels = PickFrom(ChannelCounts(), random);
    const auto operations = Operations(channels);
    made.operation = operations[static_cast<std::size_t>(number) % operations.size()];
    const auto [from, to] = PickFrom(ServedForms(made.operation), random);
    // Never empty.
    const int width = PickFrom(Widths(), random) + 1;
    made.source = {width, channels, from.bits, from.planar};
    made.destination = {
        DestinationWidth(width, made.operation.factor, static_cast<unsigned>(random() % 3)),
        made.operation.hasMap ? static_cast<int>(made.operation.map.size()) : channels, to.bits,
        to.planar};
    made.sourceRow = RandomBytes(NaiveRowBytes(made.source), static_cast<std::uint32_t>(random()));
    made.before =
        RandomBytes(NaiveRowBytes(made.destination), static_cast<std::uint32_t>(random()));
    return made;
}

NaivePattern MakeGoldenPattern(int number, int seedNumber)
{
    std::mt19937 random(patternSeeds[number]);
    NaivePattern pattern = RandomPattern(random, 2 + number % 2);
    pattern.seed += 40503 * seedNumber;
    return pattern;
}

std::vector<Bytes> MakeGoldenPicture(const NaivePattern& pattern, const PictureSize& size,
                                     int seedNumber)
{
    std::vector<Bytes> rows;
    for (int y = 0; y < size.height; ++y) {
        Bytes row = RandomBytes(static_cast<std::size_t>(size.width) * pattern.inColors.size(),
                                static_cast<std::uint32_t>(1000 * seedNumber + y));
        for (unsigned char& step : row)
            // One in sixteen is far above any top step.
            step = step >= 0xF0U ? step : static_cast<unsigned char>(step & 7U);
        rows.push_back(std::move(row));
    }
    return rows;
}

std::string ConversionName(int number)
{
    return "conversion " + Padded(number);
}

std::string PatternName(int number, int seedNumber)
{
    return "pattern " + Padded(number) + " seed " + Padded(seedNumber);
}

} // namespace zvk::Pelkraft::TestSupport
