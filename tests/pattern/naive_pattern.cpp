#include "tests/pattern/naive_pattern.h"

#include "tests/pattern/naive_random.h"
#include "tests/pattern/pattern_support.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace zvk::Pelkraft::TestSupport {

std::string NaivePattern::Text() const
{
    std::string blocks;
    for (int i = 0; i < static_cast<int>(inColors.size()); ++i) {
        const NaiveInColor& inColor = inColors[static_cast<std::size_t>(i)];
        std::string inks;
        for (const int ink : inColor.inks)
            inks += Numbered(" ink", ink);
        std::string values;
        for (const auto& [step, line] : inColor.lines) {
            values += Numbered("\n", step);
            for (std::size_t j = 0; j < line.weights.size(); ++j)
                values += Numbered(j == 0 ? " " : ":", static_cast<int>(line.weights[j]));
            for (std::size_t j = 0; j < line.weights.size(); ++j)
                values += Numbered(" ", line.positions[j]) + Numbered("-", line.values[j]);
        }
        blocks += InColor(Numbered("colour", i), inks, values);
    }
    return Head(std::to_string(version), Names(" colour", static_cast<int>(inColors.size())),
                Names(" ink", outInks)) +
           Numbered("RANDOM_SEED ", seed) + blocks;
}

std::uint64_t NaiveSimulation::CountCombinations(const NaivePattern& pattern)
{
    std::uint64_t count = 1;
    for (const NaiveInColor& inColor : pattern.inColors)
        for (const Variable& variable : VariablesOf(inColor))
            count *= variable.weights.size();
    return count;
}

NaiveSimulation::NaiveSimulation(const NaivePattern& newPattern)
    : pattern(newPattern), combinations(CountCombinations(newPattern))
{
    for (const NaiveInColor& inColor : pattern.inColors)
        variables.push_back(VariablesOf(inColor));
    if (combinations >= 2) {
        if (pattern.version < 3)
            DrawFirstGeneration();
        else
            DrawSecondGeneration();
    }
    position = NaiveJump(0);
}

std::vector<NaiveSimulation::Variable> NaiveSimulation::VariablesOf(const NaiveInColor& inColor)
{
    std::vector<Variable> variables;
    const auto add = [&variables](const std::vector<std::uint64_t>& weights) {
        for (const Variable& known : variables)
            if (known.weights == weights)
                return;
        variables.push_back(
            {weights, std::accumulate(weights.begin(), weights.end(), std::uint64_t{0})});
    };
    // Step 0 has one alternative if nothing is said of it.
    if (!inColor.lines.empty() && inColor.lines.count(0) == 0)
        add({1});
    for (const auto& [step, line] : inColor.lines)
        add(line.weights);
    return variables;
}

NaiveSimulation::Share NaiveSimulation::ShareOf(std::uint64_t combination) const
{
    Share share;
    for (const std::vector<Variable>& ofInColor : variables)
        for (const Variable& variable : ofInColor) {
            share.numerator *=
                variable.weights[static_cast<std::size_t>(combination % variable.weights.size())];
            share.denominator *= variable.sum;
            combination /= variable.weights.size();
            const std::uint64_t divisor = std::gcd(share.numerator, share.denominator);
            share.numerator /= divisor;
            share.denominator /= divisor;
        }
    return share;
}

void NaiveSimulation::DrawFirstGeneration()
{
    std::vector<Share> shares;
    std::uint64_t total = 1;
    for (std::uint64_t c = 0; c < combinations; ++c) {
        shares.push_back(ShareOf(c));
        total = std::lcm(total, shares.back().denominator);
    }
    NaiveRand rand(static_cast<std::uint32_t>(pattern.seed));
    for (int i = 0; i < 65536; ++i) {
        std::uint64_t rest = rand() % total;
        std::uint32_t chosen = 0;
        while (rest >= total / shares[chosen].denominator * shares[chosen].numerator) {
            rest -= total / shares[chosen].denominator * shares[chosen].numerator;
            ++chosen;
        }
        field.push_back(chosen);
    }
}

void NaiveSimulation::DrawSecondGeneration()
{
    std::uint64_t highest = 1;
    for (std::uint64_t c = 1; c < combinations; ++c)
        highest = std::max(highest, ShareOf(c).denominator);
    const std::uint64_t multiplier = 100000 / highest + 1;
    for (std::uint64_t c = 0; c < combinations; ++c) {
        const Share share = ShareOf(c);
        // The product has 32 bits.
        const std::uint64_t product = share.numerator * highest % (std::uint64_t{1} << 32);
        const std::uint64_t entries = product / share.denominator * multiplier;
        field.insert(field.end(), static_cast<std::size_t>(entries), static_cast<std::uint32_t>(c));
    }
    field.resize(static_cast<std::size_t>(multiplier * highest), 0);
    NaiveShuffle(field, static_cast<std::uint32_t>(pattern.seed));
}

Bytes NaiveSimulation::Row(const Bytes& source)
{
    const std::size_t pixels = source.size() / pattern.inColors.size();
    Bytes destination;
    for (std::size_t pixel = 0; pixel < pixels; ++pixel) {
        std::uint64_t combination = 0;
        if (combinations >= 2) {
            combination = field[static_cast<std::size_t>(position)];
            position = (position + 1) % field.size();
        }
        for (int ink = 0; ink < pattern.outInks; ++ink)
            destination.push_back(
                InkValue(combination, source.data() + pixel * pattern.inColors.size(), ink));
    }
    position = NaiveJump(++row);
    return destination;
}

void NaiveSimulation::SkipTo(std::uint64_t newRow)
{
    row = static_cast<std::uint32_t>(newRow % 65536);
    position = NaiveJump(row);
}

void NaiveSimulation::Reset(bool oneLater)
{
    row = 0;
    position = NaiveJump(0) + (oneLater ? 1 : 0);
}

unsigned char NaiveSimulation::InkValue(std::uint64_t combination, const unsigned char* pixel,
                                        int ink) const
{
    for (std::size_t i = 0; i < pattern.inColors.size(); ++i) {
        const NaiveInColor& inColor = pattern.inColors[i];
        const auto fed = std::find(inColor.inks.begin(), inColor.inks.end(), ink);
        if (fed == inColor.inks.end() || inColor.lines.empty())
            continue;
        const int step = std::min<int>(pixel[i], inColor.lines.rbegin()->first);
        const auto found = inColor.lines.find(step);
        if (found == inColor.lines.end())
            return 0;
        const NaiveLine& line = found->second;
        const std::size_t j = Alternative(combination, i, line);
        if (line.positions[j] != fed - inColor.inks.begin() || line.values[j] == -1)
            return 0;
        return static_cast<unsigned char>(line.values[j]);
    }
    return 0;
}

std::size_t NaiveSimulation::Alternative(std::uint64_t combination, std::size_t inColor,
                                         const NaiveLine& line) const
{
    for (std::size_t i = 0; i <= inColor; ++i)
        for (const Variable& variable : variables[i]) {
            const auto digit = static_cast<std::size_t>(combination % variable.weights.size());
            combination /= variable.weights.size();
            if (i == inColor && variable.weights == line.weights)
                return digit;
        }
    return 0;
}

namespace {

int Pick(std::mt19937& random, int lowest, int highest)
{
    return lowest + static_cast<int>(random() % static_cast<unsigned>(highest - lowest + 1));
}

NaiveLine RandomLine(std::mt19937& random, std::size_t alternatives, int positions)
{
    static const std::vector<int> values = {0, 10, 20, 30, 40, 64, 128, 255, 256, 257, -1, -2};
    NaiveLine line;
    for (std::size_t j = 0; j < alternatives; ++j) {
        line.weights.push_back(static_cast<std::uint64_t>(Pick(random, j == 0 ? 1 : 0, 4)));
        line.positions.push_back(Pick(random, 0, positions - 1));
        line.values.push_back(
            values[static_cast<std::size_t>(Pick(random, 0, static_cast<int>(values.size()) - 1))]);
    }
    return line;
}

NaiveInColor RandomInColor(std::mt19937& random, std::vector<int> inks)
{
    NaiveInColor inColor;
    inColor.inks = std::move(inks);
    const int positions = std::max<int>(1, static_cast<int>(inColor.inks.size()));
    const int topStep = Pick(random, -1, 7);
    for (int step = Pick(random, 0, 1); step <= topStep; ++step) {
        // At most two steps draw, or the combinations become too many.
        const bool draws = step == topStep || step == topStep - 1;
        const int alternatives = draws ? Pick(random, 1, 3) : 1;
        inColor.lines[step] = RandomLine(random, static_cast<std::size_t>(alternatives), positions);
    }
    return inColor;
}

} // namespace

NaivePattern RandomPattern(std::mt19937& random, int version)
{
    NaivePattern pattern;
    pattern.version = version;
    pattern.seed = Pick(random, -1000, 1000000);
    const int inColors = Pick(random, 1, Pick(random, 1, 16));
    pattern.outInks = Pick(random, 1, Pick(random, 1, 16));
    std::vector<std::vector<int>> fed(static_cast<std::size_t>(inColors));
    for (int ink = 0; ink < pattern.outInks; ++ink)
        fed[static_cast<std::size_t>(Pick(random, 0, inColors - 1))].push_back(ink);
    for (std::vector<int>& inks : fed) {
        // Each standard library shuffles in its own way, so none is called.
        for (std::size_t last = inks.size(); last > 1; --last)
            std::swap(inks[last - 1], inks[random() % last]);
        pattern.inColors.push_back(RandomInColor(random, inks));
    }
    return pattern;
}

} // namespace zvk::Pelkraft::TestSupport
