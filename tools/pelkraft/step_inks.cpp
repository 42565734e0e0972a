#include "tools/pelkraft/step_inks.h"

#include "pattern/pattern_words.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/ink_colours.h"
#include "tools/pelkraft/ink_shares.h"
#include "tools/pelkraft/shown_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numeric>
#include <string_view>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::uint32_t unit = 1000;
// The library takes no more.
constexpr std::uint32_t mostUnits = 1000000;

// The strengths of inks are tenths, so that sums of most shares are exact.
std::uint32_t InkOfStep(const PatternOutline& outline, int inColour, int step,
                        const std::vector<std::string>& outInks)
{
    double tenths = 0;
    for (const InkShares& ink : ExpectedInks(outline, inColour, step)) {
        const auto index = static_cast<std::size_t>(ink.outInk);
        if (index >= outInks.size())
            continue;
        const double strength = std::round(StrengthOfInk(outInks[index]) * 10);
        for (const ValueShare& share : ink.values)
            tenths += share.expected * (share.value * strength);
    }
    return static_cast<std::uint32_t>(std::lround(tenths * (unit / 10)));
}

std::string Decimal(std::uint32_t ink)
{
    std::string digits = std::to_string(ink % unit);
    digits.insert(0, 3 - digits.size(), '0');
    return std::to_string(ink / unit) + '.' + digits;
}

std::string_view Trimmed(std::string_view words)
{
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = words.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return words.substr(first, words.find_last_not_of(blanks) - first + 1);
}

template <typename Number>
std::optional<Number> ReadNumber(std::string_view words)
{
    Number number = 0;
    const char* const end = words.data() + words.size();
    const auto [read, error] = std::from_chars(words.data(), end, number);
    return error == std::errc() && read == end ? std::optional(number) : std::nullopt;
}

// Reads "12", "12.8" or "12.875" as thousandths.
std::optional<std::uint32_t> ReadInk(std::string_view words)
{
    const std::size_t point = words.find('.');
    const auto whole = ReadNumber<std::uint32_t>(words.substr(0, point));
    if (!whole || *whole >= mostUnits)
        return std::nullopt;
    if (point == std::string_view::npos)
        return *whole * unit;
    std::string places(words.substr(point + 1));
    if (places.empty() || places.size() > 3)
        return std::nullopt;
    places.resize(3, '0');
    const auto rest = ReadNumber<std::uint32_t>(places);
    return rest ? std::optional(*whole * unit + *rest) : std::nullopt;
}

class StepInkReader
{
public:
    StepInkReader(const std::string& newPath, const std::vector<SteppedColour>& newColours)
        : path(newPath), colours(newColours)
    {
        for (const SteppedColour& colour : colours)
            found.emplace_back(static_cast<std::size_t>(colour.steps));
    }

    void TakeLine(std::string_view line)
    {
        ++lineNumber;
        line = Trimmed(line);
        if (line.empty() || line.front() == '#')
            return;
        const std::size_t last = line.rfind(',');
        const std::size_t middle =
            last == std::string_view::npos || last == 0 ? last : line.rfind(',', last - 1);
        if (last == std::string_view::npos || last == 0 || middle == std::string_view::npos)
            Refuse("has no two commas; a line is an in-colour, a step and its ink: Cyan,1,12.8");
        std::string_view name = Trimmed(line.substr(0, middle));
        if (name.size() > 1 && name.front() == '"' && name.back() == '"')
            name = name.substr(1, name.size() - 2);
        TakeStep(FindColour(std::string(name)), Trimmed(line.substr(middle + 1, last - middle - 1)),
                 Trimmed(line.substr(last + 1)));
    }

    std::vector<StepInks> Finish() const
    {
        std::vector<StepInks> all;
        for (std::size_t i = 0; i < colours.size(); ++i) {
            StepInks& inks = all.emplace_back();
            for (const std::optional<std::uint32_t>& ink : found[i]) {
                if (!ink)
                    throw Failure(ExitCode::BadInput, path,
                                  "has no line for step " + std::to_string(inks.size()) + " of " +
                                      Shown(colours[i].name));
                inks.push_back(*ink);
            }
        }
        return all;
    }

private:
    std::size_t FindColour(const std::string& name) const
    {
        const auto colour =
            std::find_if(colours.begin(), colours.end(), [&](const SteppedColour& candidate) {
                return UpperCase(candidate.name) == UpperCase(name);
            });
        if (colour == colours.end())
            Refuse("names the in-colour \"" + name + "\", which the pattern doesn't have");
        return static_cast<std::size_t>(colour - colours.begin());
    }

    void TakeStep(std::size_t colour, std::string_view stepWords, std::string_view inkWords)
    {
        std::vector<std::optional<std::uint32_t>>& steps = found[colour];
        const auto step = ReadNumber<std::size_t>(stepWords);
        if (!step || *step >= steps.size())
            Refuse("has the step \"" + std::string(stepWords) + "\"; " +
                   Shown(colours[colour].name) + " has the steps 0 to " +
                   std::to_string(steps.size() - 1));
        const auto ink = ReadInk(inkWords);
        if (!ink)
            Refuse("has the ink \"" + std::string(inkWords) +
                   "\"; supported are numbers below 1000000 with up to three places after the "
                   "point");
        if (steps[*step])
            Refuse("is the second one for step " + std::to_string(*step) + " of " +
                   Shown(colours[colour].name));
        steps[*step] = ink;
    }

    [[noreturn]] void Refuse(const std::string& why) const
    {
        throw Failure(ExitCode::BadInput, path, "line " + std::to_string(lineNumber) + ' ' + why);
    }

    const std::string& path;
    const std::vector<SteppedColour>& colours;
    std::vector<std::vector<std::optional<std::uint32_t>>> found;
    int lineNumber = 0;
};

} // namespace

std::vector<StepInks> CoverageInks(const PatternOutline& outline,
                                   const std::vector<SteppedColour>& colours,
                                   const std::vector<std::string>& outInks)
{
    std::vector<StepInks> all;
    for (std::size_t i = 0; i < colours.size(); ++i) {
        StepInks& inks = all.emplace_back();
        for (int step = 0; step < colours[i].steps; ++step)
            inks.push_back(InkOfStep(outline, static_cast<int>(i), step, outInks));
    }
    return all;
}

std::vector<StepInks> EqualInks(const std::vector<SteppedColour>& colours)
{
    std::vector<StepInks> all;
    for (const SteppedColour& colour : colours) {
        StepInks& inks = all.emplace_back(static_cast<std::size_t>(colour.steps));
        std::iota(inks.begin(), inks.end(), 0U);
    }
    return all;
}

std::vector<StepInks> ReadStepInks(const std::string& path, const std::string& text,
                                   const std::vector<SteppedColour>& colours)
{
    StepInkReader reader(path, colours);
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        reader.TakeLine(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return reader.Finish();
}

std::optional<int> FindFlatStep(const StepInks& inks)
{
    if (!inks.empty() && inks.front() != 0)
        return 0;
    const auto flat = std::adjacent_find(inks.begin(), inks.end(), std::greater_equal<>());
    if (flat == inks.end())
        return std::nullopt;
    return static_cast<int>(flat - inks.begin()) + 1;
}

std::string FlatStepWords(const StepInks& inks, int step)
{
    const auto index = static_cast<std::size_t>(step);
    if (step == 0)
        return "step 0 has ink, " + Decimal(inks.front());
    return "step " + std::to_string(step) + " has no more ink than step " +
           std::to_string(step - 1) + ", " + Decimal(inks[index]) + " after " +
           Decimal(inks[index - 1]);
}

} // namespace zvk::Pelkraft::Client
