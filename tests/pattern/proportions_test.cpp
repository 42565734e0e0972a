#include "tests/pattern/engine_support.h"
#include "tests/pattern/pattern_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

// The numbers of pixels that get each alternative lie where the proportions put them.
void ExpectProportions(const char* version, const std::string& weightText,
                       const std::vector<double>& weights, double draws)
{
    double sum = 0;
    std::string entries;
    for (std::size_t j = 0; j < weights.size(); ++j) {
        sum += weights[j];
        entries += Numbered(" 0-", static_cast<int>(j) + 1);
    }
    const std::string text =
        Head(version, "A", "X") + InColor("A", "X", "1 " + weightText + entries);
    constexpr std::size_t rows = 100;
    constexpr std::size_t pixels = 10000;
    for (const Engine engine : {DotWeavePattern::X86, DotWeavePattern::Sse}) {
        DotWeavePattern pattern = Load(text, engine);
        std::vector<double> counts(weights.size() + 1, 0);
        for (std::size_t row = 0; row < rows; ++row)
            for (const unsigned char ink : Apply(pattern, Bytes(pixels, 1)))
                ++counts.at(ink);
        for (std::size_t j = 0; j < weights.size(); ++j) {
            const double share = weights[j] / sum;
            const double sigma = std::sqrt(share * (1 - share) / draws) * rows * pixels;
            EXPECT_NEAR(counts[j + 1], share * rows * pixels, 4 * sigma) << weightText << " " << j;
        }
    }
}

TEST(PatternEngines, KeepTheProportionsOverAMillionPixels)
{
    const struct
    {
        const char* text;
        std::vector<double> weights;
    } cases[] = {{"1:1", {1, 1}},
                 {"1:3", {1, 3}},
                 {"1:2:3:4", {1, 2, 3, 4}},
                 {"7:1:0:5", {7, 1, 0, 5}},
                 {"50:950", {50, 950}}};
    for (const auto& proportion : cases) {
        // The field of the first generation is a sample of its own size.
        ExpectProportions("2", proportion.text, proportion.weights, 65536);
        ExpectProportions("3", proportion.text, proportion.weights, 1000000);
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
