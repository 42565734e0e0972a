#include "tools/pelkraft/combination_model.h"

#include "tools/pelkraft/stored_places.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::uint64_t mostCount = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint64_t wantedField = 100000;
// Out-inks that a row of the engines' tables has room for.
constexpr int laneLimit = 16;

Proportion Multiply(const Proportion& left, const Proportion& right)
{
    Proportion product = {left.numerator * right.numerator, left.denominator * right.denominator};
    const std::uint32_t divisor = std::gcd(product.numerator, product.denominator);
    if (divisor > 1) {
        product.numerator /= divisor;
        product.denominator /= divisor;
    }
    return product;
}

// Digits that count up, the first one fastest.
class Odometer
{
public:
    explicit Odometer(std::vector<std::size_t> newLimits)
        : limits(std::move(newLimits)), digits(limits.size())
    {}

    std::size_t Digit(std::size_t index) const { return digits[index]; }

    void Advance()
    {
        for (std::size_t i = 0; i < digits.size() && ++digits[i] == limits[i]; ++i)
            digits[i] = 0;
    }

private:
    std::vector<std::size_t> limits;
    std::vector<std::size_t> digits;
};

// What the draws of an in-colour came to: for each of them an alternative.
struct Choice
{
    Proportion proportion;
    std::vector<std::size_t> alternatives;
};

std::vector<Choice> ListChoices(const InColour& inColour, const InColourDraws& draws)
{
    std::vector<std::size_t> limits(draws.firstSteps.size());
    std::transform(draws.firstSteps.begin(), draws.firstSteps.end(), limits.begin(),
                   [&inColour](std::size_t step) { return inColour.steps[step].count; });
    Odometer odometer(std::move(limits));
    std::vector<Choice> choices(static_cast<std::size_t>(draws.combinations));
    for (Choice& choice : choices) {
        for (std::size_t draw = 0; draw < draws.firstSteps.size(); ++draw) {
            const Step& step = inColour.steps[draws.firstSteps[draw]];
            const std::size_t digit = odometer.Digit(draw);
            const Alternative& alternative = step.alternatives[digit];
            choice.alternatives.push_back(digit);
            choice.proportion =
                Multiply(choice.proportion, {static_cast<std::uint32_t>(alternative.weight),
                                             static_cast<std::uint32_t>(step.weightSum)});
        }
        odometer.Advance();
    }
    return choices;
}

class ModelBuilder
{
public:
    explicit ModelBuilder(const PatternOutline& newOutline) : outline(newOutline) {}

    CombinationModel Build()
    {
        for (int i = 0; i < outline.InColourCount(); ++i) {
            if (static_cast<std::size_t>(i) < outline.inColours.size())
                AddInColour(outline.inColours[static_cast<std::size_t>(i)]);
        }
        if (model.combinations > combinationLimit)
            Stop("there are more than 1024 combinations");
        if (model.obstacle.empty())
            MultiplyOut();
        return std::move(model);
    }

private:
    void Stop(const std::string& why)
    {
        if (model.obstacle.empty())
            model.obstacle = why;
    }

    void AddInColour(const InColour& inColour)
    {
        const InColourDraws& draws = model.draws.emplace_back(FindDraws(inColour));
        if (draws.combinations == 0)
            Stop("a step of " + inColour.name + " has no line");
        if (draws.combinations > inColourCombinationLimit)
            Stop(inColour.name + " has more than 32 combinations");
        const std::uint64_t factor = std::min(draws.combinations, mostCount);
        model.combinations = std::min(model.combinations * factor, mostCount);
    }

    void MultiplyOut()
    {
        std::vector<std::vector<Choice>> choices;
        std::vector<std::size_t> limits;
        for (std::size_t i = 0; i < model.draws.size(); ++i) {
            choices.push_back(ListChoices(outline.inColours[i], model.draws[i]));
            limits.push_back(choices.back().size());
        }
        Odometer odometer(std::move(limits));
        for (std::uint64_t c = 0; c < model.combinations; ++c) {
            Proportion proportion;
            std::vector<InkRow> rows(laneLimit);
            for (InkRow& row : rows)
                row.fill(unsetInk);
            for (std::size_t i = 0; i < choices.size(); ++i) {
                const Choice& choice = choices[i][odometer.Digit(i)];
                proportion = Multiply(proportion, choice.proportion);
                FillRows(outline.inColours[i], model.draws[i], choice, rows);
            }
            model.proportions.push_back(proportion);
            const std::size_t places = CountPlaces(rows);
            if (places > model.places) {
                model.places = places;
                model.fullest = static_cast<std::size_t>(c);
            }
            odometer.Advance();
        }
        FindTotal();
        FindFieldSize();
    }

    static void FillRows(const InColour& inColour, const InColourDraws& draws, const Choice& choice,
                         std::vector<InkRow>& rows)
    {
        for (std::size_t position = 0; position < inColour.inkCount; ++position) {
            const int outInk = inColour.inks[position].outInk;
            if (outInk >= laneLimit)
                continue;
            InkRow& row = rows[static_cast<std::size_t>(outInk)];
            row.fill(unsetInk);
            for (std::size_t step = 0; step < draws.drawOfStep.size(); ++step) {
                const std::size_t digit = choice.alternatives[draws.drawOfStep[step]];
                row[step] = inColour.steps[step].alternatives[digit].values[position];
            }
        }
    }

    void FindTotal()
    {
        for (const Proportion& proportion : model.proportions) {
            if (proportion.denominator == 0) {
                Stop("a product of weights wraps to 0");
                return;
            }
            const std::uint32_t divisor = std::gcd(model.total, proportion.denominator);
            const std::uint64_t product =
                std::uint64_t{model.total / divisor} * proportion.denominator;
            model.totalWraps = model.totalWraps || product > mostCount;
            model.total = static_cast<std::uint32_t>(product);
            if (model.total == 0) {
                Stop("the common denominator wraps to 0");
                return;
            }
        }
        std::uint32_t start = 0;
        for (const Proportion& proportion : model.proportions) {
            const std::uint32_t share = model.total / proportion.denominator * proportion.numerator;
            if (share > 0 && start >= drawLimit)
                ++model.unreachable;
            start += share;
        }
    }

    // The second generation takes the largest denominator but that of the first combination.
    void FindFieldSize()
    {
        if (outline.Generation() == 1)
            return;
        std::uint64_t largest = 1;
        for (std::size_t i = 1; i < model.proportions.size(); ++i)
            largest = std::max<std::uint64_t>(largest, model.proportions[i].denominator);
        model.fieldSize = (wantedField / largest + 1) * largest;
        FindFieldSkew(largest);
    }

    // Shares are cut to whole parts of the largest denominator; the rest goes to the first one.
    void FindFieldSkew(std::uint64_t largest)
    {
        const auto parts = static_cast<double>(largest);
        double sum = 0;
        for (std::size_t i = 1; i < model.proportions.size(); ++i) {
            const Proportion& proportion = model.proportions[i];
            const auto whole = proportion.numerator * largest / proportion.denominator;
            const double share = static_cast<double>(whole) / parts;
            sum += share;
            NoteSkew(proportion, share);
        }
        if (!model.proportions.empty())
            NoteSkew(model.proportions.front(), 1 - sum);
    }

    void NoteSkew(const Proportion& proportion, double share)
    {
        const double wanted = static_cast<double>(proportion.numerator) / proportion.denominator;
        model.fieldSkew = std::max(model.fieldSkew, std::abs(share - wanted));
    }

    const PatternOutline& outline;
    CombinationModel model;
};

} // namespace

InColourDraws FindDraws(const InColour& inColour)
{
    InColourDraws draws;
    for (std::size_t step = 0; step < static_cast<std::size_t>(inColour.stepCount); ++step) {
        const auto same =
            std::find_if(draws.firstSteps.begin(), draws.firstSteps.end(), [&](std::size_t first) {
                return SameDistribution(inColour.steps[first], inColour.steps[step]);
            });
        draws.drawOfStep.push_back(static_cast<std::size_t>(same - draws.firstSteps.begin()));
        if (same != draws.firstSteps.end())
            continue;
        draws.firstSteps.push_back(step);
        draws.combinations *= inColour.steps[step].count;
    }
    return draws;
}

CombinationModel BuildCombinations(const PatternOutline& outline)
{
    return ModelBuilder(outline).Build();
}

} // namespace zvk::Pelkraft::Client
