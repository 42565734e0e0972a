#include "tests/pattern/pattern_grid.h"

#include "tests/support/random_bytes.h"

#include <utility>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Engine = DotWeavePattern::Engine;

constexpr Engine engines[] = {DotWeavePattern::Automatic, DotWeavePattern::Reference,
                              DotWeavePattern::X86, DotWeavePattern::Sse};
// These are in-colours and out-inks; a vector has room for 16 of each.
constexpr std::pair<int, int> measures[] = {{1, 1},   {1, 3},  {1, 16}, {2, 3},  {3, 2},
                                            {4, 4},   {4, 6},  {5, 1},  {8, 12}, {12, 12},
                                            {15, 15}, {16, 1}, {16, 16}};
constexpr int inksOfReference = 12;

// std::to_string lies in the standard library's own file, which no sanitizer has instrumented.
std::string Digits(int number)
{
    std::string digits;
    do {
        digits.insert(digits.begin(), static_cast<char>('0' + number % 10));
        number /= 10;
    } while (number != 0);
    return digits;
}

std::string Named(const char* prefix, int number)
{
    std::string name(prefix);
    name += Digits(number);
    return name;
}

std::string Names(const char* prefix, int count)
{
    std::string names;
    for (int i = 0; i != count; ++i)
        names += Named(prefix, i);
    return names;
}

std::string InColorText(const PatternShape& shape, int inColor)
{
    std::string text = "\nBEGIN_IN_COLOR" + Named(" C", inColor) + " BEGIN_INKS";
    int positions = 0;
    for (int ink = inColor; ink < shape.outInks; ink += shape.inColors, ++positions)
        text += Named(" X", ink);
    text += " END_INKS BEGIN_VALUES\n1 1 0-77\n";
    const std::string last = Digits(positions == 0 ? 0 : positions - 1);
    text += "2 1 " + last + "-200\n";
    text += shape.draws && inColor == 0 ? "3+ 1:3 0-255 " + last + "-9" : "3+ 1 0-255";
    return text + "\nEND_VALUES END_IN_COLOR\n";
}

bool CanBeLoaded(const PatternShape& shape)
{
    // The portable engine's second generation has no field for a single combination.
    const bool isPortable =
        shape.engine == DotWeavePattern::X86 || shape.engine == DotWeavePattern::Automatic;
    if (isPortable && shape.version >= 3 && !shape.draws)
        return false;
    return shape.engine != DotWeavePattern::Reference || shape.outInks <= inksOfReference;
}

} // namespace

std::string TextOf(const PatternShape& shape)
{
    std::string text = "DotWeavePattern VERSION " + Digits(shape.version) +
                       "\nRANDOM_SEED 77 BEGIN_OUT_INKS" + Names(" X", shape.outInks) +
                       " END_OUT_INKS BEGIN_IN_COLORS" + Names(" C", shape.inColors) +
                       " END_IN_COLORS\n";
    for (int inColor = 0; inColor != shape.inColors; ++inColor)
        text += InColorText(shape, inColor);
    return text;
}

std::string Describe(const PatternShape& shape)
{
    return "engine " + Digits(shape.engine) + ", version " + Digits(shape.version) + ", " +
           Digits(shape.inColors) + " in-colours, " + Digits(shape.outInks) + " inks, " +
           (shape.draws ? "drawing" : "one combination");
}

std::vector<PatternShape> AllPatternShapes()
{
    std::vector<PatternShape> shapes;
    for (const auto& [inColors, outInks] : measures)
        for (const int version : {2, 3})
            for (const bool draws : {false, true})
                for (const Engine engine : engines) {
                    const PatternShape shape{version, inColors, outInks, draws, engine};
                    if (CanBeLoaded(shape))
                        shapes.push_back(shape);
                }
    return shapes;
}

std::vector<unsigned char> NoisySteps(std::size_t bytes)
{
    std::vector<unsigned char> steps = RandomBytes(bytes, 5);
    for (unsigned char& step : steps)
        if (step < 240)
            step = static_cast<unsigned char>(step % 5);
    return steps;
}

} // namespace zvk::Pelkraft::TestSupport
