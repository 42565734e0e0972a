#include "tests/reproducibility/digest.h"
#include "tests/reproducibility/golden_cases.h"
#include "tests/reproducibility/golden_digests.h"
#include "tests/reproducibility/library_digests.h"
#include "tests/support/conversion_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <random>
#include <thread>

// Pictures that are cut into bands of rows in random places, each band done by a thread of its
// own. A push cuts each 40 times, PELKRAFT_TEST_FULL=1 1000 times.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::size_t tallSize = 2;
constexpr int tallHeight = pictureSizes[tallSize].height;

int SplitCount()
{
    return std::getenv("PELKRAFT_TEST_FULL") != nullptr ? 1000 : 40;
}

// Where 1 to 16 bands begin, and after them the end; some of the bands may be empty.
std::vector<int> RandomBands(std::mt19937& random)
{
    std::vector<int> cuts{0, tallHeight};
    for (auto further = random() % 16; further > 0; --further)
        cuts.push_back(static_cast<int>(random() % (tallHeight + 1)));
    std::sort(cuts.begin(), cuts.end());
    return cuts;
}

std::string Describe(const std::vector<int>& cuts)
{
    std::string text = "bands";
    for (const int cut : cuts)
        text += ' ' + std::to_string(cut);
    return text;
}

// Calls work(first, end) for each band, all at once.
void DoBands(const std::vector<int>& cuts, const std::function<void(int first, int end)>& work)
{
    std::vector<std::jthread> threads;
    for (std::size_t band = 0; band + 1 < cuts.size(); ++band)
        threads.emplace_back(work, cuts[band], cuts[band + 1]);
}

std::string DigestOf(const std::vector<Bytes>& rows)
{
    Digest digest;
    for (const Bytes& row : rows)
        digest.Add(row);
    return digest.Hex();
}

TEST(Bands, OfAPatternGiveTheGoldenDigestWhereverTheyAreCut)
{
    const GoldenDigests goldens(PELKRAFT_GOLDENS);
    std::mt19937 random(2027);
    for (int split = 0; split < SplitCount() && !HasFailure(); ++split) {
        const int number = split % goldenPatternCount;
        const int seed = split % goldenSeedCount;
        const auto engine = random() % 2 == 0 ? DotWeavePattern::X86 : DotWeavePattern::Sse;
        const NaivePattern description = MakeGoldenPattern(number, seed);
        const auto picture = MakeGoldenPicture(description, pictureSizes[tallSize], seed);
        std::vector<Bytes> inks(picture.size());
        const std::vector<int> cuts = RandomBands(random);
        DoBands(cuts, [&](int first, int end) {
            DotWeavePattern pattern = BuildPattern(description, engine);
            // Rows of other bands are passed by without a pixel.
            for (int row = 0; row < first; ++row)
                pattern.ApplyPattern(nullptr, nullptr, 0);
            for (auto row = static_cast<std::size_t>(first); row < static_cast<std::size_t>(end);
                 ++row)
                inks[row] = ApplyRow(pattern, picture[row]);
        });
        EXPECT_EQ(DigestOf(inks), goldens.Pattern(number, seed).pictures[tallSize])
            << PatternName(number, seed) << ", " << Describe(cuts);
    }
}

// Rows without a gap between them, so that a byte too much is one of the neighbour's.
Bytes ConvertInBands(const GoldenConversion& made, bool forcePortable, const std::vector<int>& cuts)
{
    const std::size_t rowBytes = made.before.size();
    Bytes picture;
    for (int row = 0; row < tallHeight; ++row)
        picture.insert(picture.end(), made.before.begin(), made.before.end());
    DoBands(cuts, [&](int first, int end) {
        Bytes source = made.sourceRow;
        for (auto row = static_cast<std::size_t>(first); row < static_cast<std::size_t>(end); ++row)
            RunConversion({made.source, made.destination, made.operation, forcePortable},
                          source.data(), picture.data() + row * rowBytes);
    });
    return picture;
}

TEST(Bands, OfAConversionGiveTheGoldenDigestWhereverTheyAreCut)
{
    const GoldenDigests goldens(PELKRAFT_GOLDENS);
    std::mt19937 random(2028);
    for (int split = 0; split < SplitCount() && !HasFailure(); ++split) {
        const int number = split % goldenConversionCount;
        const bool forcePortable = random() % 2 == 0 && !IsLeftPackedSomewhere(number);
        const GoldenConversion made = MakeGoldenConversion(number);
        const std::vector<int> cuts = RandomBands(random);
        const Bytes picture = ConvertInBands(made, forcePortable, cuts);
        const auto rowBytes = static_cast<std::ptrdiff_t>(made.before.size());
        for (int row = 0; row < tallHeight; ++row) {
            const auto start = picture.begin() + row * rowBytes;
            ASSERT_EQ(Digest().Add(Bytes(start, start + rowBytes)).Hex(),
                      goldens.Conversion(number))
                << ConversionName(number) << ", row " << row << ", " << Describe(cuts);
        }
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
