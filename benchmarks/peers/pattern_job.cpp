#include "benchmarks/peers/pattern_job.h"

#include "pelkraft/dot_weave_pattern.h"

#include <memory>
#include <random>
#include <sstream>

namespace zvk::Pelkraft::Benchmarks {
namespace {

constexpr std::size_t inColors = 4;
constexpr std::size_t inksOfColor = 2;
constexpr std::size_t steps = patternTopStep + 1;
constexpr std::size_t mostAlternatives = 4;
constexpr std::size_t combinations = 64;

// The values of an in-colour's two inks.
struct InkPair
{
    unsigned char values[inksOfColor];
};

struct Step
{
    std::size_t alternatives;
    InkPair pairs[mostAlternatives];
};

// Step 2 has four alternatives in each in-colour but the first, which makes 64 combinations.
constexpr Step firstColor[steps] = {
    {1, {{{0, 0}}}}, {1, {{{0, 64}}}}, {1, {{{0, 128}}}}, {1, {{{255, 0}}}}};
constexpr Step otherColor[steps] = {{1, {{{0, 0}}}},
                                    {1, {{{0, 64}}}},
                                    {4, {{{0, 128}}, {{40, 0}}, {{60, 0}}, {{0, 90}}}},
                                    {1, {{{255, 0}}}}};

const Step& GetStep(std::size_t inColor, std::size_t step)
{
    return inColor == 0 ? firstColor[step] : otherColor[step];
}

std::string DescribeColor(std::size_t inColor, const std::string& inks)
{
    std::ostringstream text;
    text << "BEGIN_IN_COLOR " << static_cast<char>('A' + inColor) << " BEGIN_INKS" << inks
         << " END_INKS BEGIN_VALUES";
    for (std::size_t s = 1; s != steps; ++s) {
        const Step& step = GetStep(inColor, s);
        text << ' ' << s << (step.alternatives == 1 ? " 1" : " 1:1:1:1");
        for (std::size_t a = 0; a != step.alternatives; ++a) {
            const std::size_t ink = step.pairs[a].values[0] == 0 ? 1 : 0;
            text << ' ' << ink << '-' << int{step.pairs[a].values[ink]};
        }
    }
    text << " END_VALUES END_IN_COLOR\n";
    return text.str();
}

std::string DescribePattern()
{
    std::string inks;
    std::string colors;
    for (std::size_t c = 0; c != inColors; ++c) {
        std::string own;
        for (std::size_t ink = 0; ink != inksOfColor; ++ink)
            own.append(" ink").append(std::to_string(inksOfColor * c + ink));
        inks += own;
        colors += DescribeColor(c, own);
    }
    return "DotWeavePattern VERSION 3 BEGIN_OUT_INKS" + inks +
           " END_OUT_INKS BEGIN_IN_COLORS A B C D END_IN_COLORS\n" + colors;
}

// One would write it so by hand: all values of all combinations stand in a table, and each pixel
// draws. The combination's number has two bits for each in-colour but the first.
class PlainPattern
{
public:
    PlainPattern() : table(combinations)
    {
        for (std::size_t i = 0; i != combinations; ++i)
            for (std::size_t c = 0; c != inColors; ++c)
                for (std::size_t s = 0; s != steps; ++s) {
                    const Step& step = GetStep(c, s);
                    const std::size_t drawn = c == 0 ? 0 : (i >> (2 * (c - 1))) % mostAlternatives;
                    table[i].pairs[c][s] = step.pairs[drawn % step.alternatives];
                }
    }

    void Apply(int width, const unsigned char* source, unsigned char* destination)
    {
        for (int x = 0; x != width; ++x) {
            const Combination& combination = table[random() % combinations];
            for (std::size_t c = 0; c != inColors; ++c) {
                const InkPair& pair = combination.pairs[c][source[c]];
                for (std::size_t ink = 0; ink != inksOfColor; ++ink)
                    destination[c * inksOfColor + ink] = pair.values[ink];
            }
            source += inColors;
            destination += inColors * inksOfColor;
        }
    }

private:
    struct Combination
    {
        InkPair pairs[inColors][steps];
    };

    std::vector<Combination> table;
    std::mt19937 random{42};
};

// The number of the alternative that the two bytes are, or as many as there are if none.
std::size_t FindAlternative(const Step& step, const unsigned char* inks)
{
    std::size_t found = 0;
    while (found != step.alternatives &&
           (step.pairs[found].values[0] != inks[0] || step.pairs[found].values[1] != inks[1]))
        ++found;
    return found;
}

} // namespace

void AddOurPattern(Entries& entries)
{
    entries.push_back({"pelkraft", [](int width) -> RowCall {
                           std::string text = DescribePattern();
                           const auto pattern = std::make_shared<DotWeavePattern>(text.data());
                           return [=](const unsigned char* source, unsigned char* destination) {
                               // The pattern only reads its source.
                               pattern->ApplyPattern(const_cast<unsigned char*>(source),
                                                     destination,
                                                     static_cast<unsigned long>(width));
                           };
                       }});
}

void AddPlainPattern(Entries& entries)
{
    entries.push_back({"plain_loop", [](int width) -> RowCall {
                           const auto pattern = std::make_shared<PlainPattern>();
                           return [=](const unsigned char* source, unsigned char* destination) {
                               pattern->Apply(width, source, destination);
                           };
                       }});
}

bool IsPatternRow(int width, const Bytes& source, const Bytes& destination)
{
    bool occurs[inColors][steps][mostAlternatives] = {};
    for (std::size_t i = 0; i != static_cast<std::size_t>(width) * inColors; ++i) {
        const Step& step = GetStep(i % inColors, source[i]);
        const std::size_t found = FindAlternative(step, destination.data() + i * inksOfColor);
        if (found == step.alternatives)
            return false;
        occurs[i % inColors][source[i]][found] = true;
    }
    if (width < 1000)
        return true;
    for (std::size_t c = 0; c != inColors; ++c)
        for (std::size_t s = 0; s != steps; ++s)
            for (std::size_t a = 0; a != GetStep(c, s).alternatives; ++a)
                if (!occurs[c][s][a])
                    return false;
    return true;
}

} // namespace zvk::Pelkraft::Benchmarks
