#include "tools/pelkraft/draw_lints.h"

#include <algorithm>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

// Shares that are off by less than one pixel in a thousand are not worth a word.
constexpr double tellableSkew = 0.001;

using Weights = std::vector<std::uint32_t>;

// In lowest terms, so that 2:2 is 1:1.
Weights ReducedWeights(const StepValues& step)
{
    const auto count = static_cast<std::size_t>(step.numRandoms);
    std::uint32_t divisor = 0;
    for (std::size_t i = 0; i < count; ++i)
        divisor = GreatestCommonDivisor(divisor, step.fractions[i].numerator);
    Weights weights;
    for (std::size_t i = 0; i < count; ++i)
        weights.push_back(step.fractions[i].numerator / std::max(divisor, 1U));
    return weights;
}

std::string RatioWords(const StepValues& step)
{
    std::string words;
    for (std::size_t i = 0; i < static_cast<std::size_t>(step.numRandoms); ++i) {
        if (i > 0)
            words += ':';
        words += std::to_string(step.fractions[i].numerator);
    }
    return words;
}

// For each alternative the ink position that it sets above 0; the number of positions for none.
Weights InkOrder(const StepValues& step)
{
    Weights order;
    for (std::size_t i = 0; i < static_cast<std::size_t>(step.numRandoms); ++i) {
        const auto& values = step.table[i];
        const auto set = std::find_if(values.begin(), values.end(),
                                      [](std::int32_t value) { return value > 0; });
        order.push_back(static_cast<std::uint32_t>(set - values.begin()));
    }
    return order;
}

bool IsPermutation(Weights left, Weights right)
{
    std::sort(left.begin(), left.end());
    std::sort(right.begin(), right.end());
    return left == right;
}

class DrawLint
{
public:
    DrawLint(const PatternOutline& newOutline, const CombinationModel& newModel,
             Findings& newFindings)
        : outline(newOutline), model(newModel), findings(newFindings)
    {}

    void Run()
    {
        for (std::size_t i = 0; i < model.draws.size(); ++i)
            LintInColour(i);
        if (model.combinations > MAXS_TOTAL_RANDOM)
            Add(Severity::Error, "combinations-surplus", outline.inColoursPlace,
                "the in-colours make " + Amount(model.combinations) + " combinations together",
                "bring it down to 1024: let steps share their weights, or use fewer alternatives");
        if (model.obstacle.empty())
            LintWhole();
    }

private:
    void Add(Severity severity, const char* kind, TextSpan place, std::string message,
             std::string hint)
    {
        AddFinding(findings, severity, kind, place, std::move(message), std::move(hint));
    }

    static std::string Amount(std::uint64_t count)
    {
        return count >= 0xFFFFFFFFU ? "4294967295 or more" : std::to_string(count);
    }

    void LintInColour(std::size_t index)
    {
        const InColourPlaces& places = outline.inColours[index];
        const InColorRecord& record = outline.Record(index);
        const InColourDraws& draws = model.draws[index];
        if (draws.combinations > MAXS_CHANNEL_RANDOM)
            Add(Severity::Error, "in-colour-combinations-surplus",
                places.described.value_or(places.listed),
                Quoted(places.name) + " makes " + Amount(draws.combinations) + " combinations",
                "bring it down to 32: let steps share their weights, or use fewer alternatives");
        for (std::size_t step = 1; step < static_cast<std::size_t>(record.numSteps); ++step) {
            if (!places.steps[step].listed || record.steps[step].numRandoms < 2)
                continue;
            for (std::size_t before = 0; before < step; ++before) {
                if (places.steps[before].listed &&
                    LintPair(places.steps[step].ratio, record, draws.distributions, before, step))
                    break;
            }
        }
    }

    // True where there was something to say.
    bool LintPair(TextSpan place, const InColorRecord& record,
                  const StepDistributions& distributions, std::size_t before, std::size_t step)
    {
        const StepValues& left = record.steps[before];
        const StepValues& right = record.steps[step];
        if (left.numRandoms != right.numRandoms)
            return false;
        const std::string pair = RatioWords(right) + " of step " + std::to_string(step) + " and " +
                                 RatioWords(left) + " of step " + std::to_string(before);
        if (distributions.ofStep[before] == distributions.ofStep[step]) {
            if (InkOrder(left) == InkOrder(right) ||
                !IsPermutation(InkOrder(left), InkOrder(right)))
                return false;
            Add(Severity::Note, "weights-together", place,
                pair + " share their draw, though their alternatives set the same inks in "
                       "another order",
                "keep the order of the inks, or double the weights of one to draw it apart");
            return true;
        }
        const Weights leftWeights = ReducedWeights(left);
        const Weights rightWeights = ReducedWeights(right);
        if (leftWeights == rightWeights) {
            Add(Severity::Warning, "weights-apart", place,
                pair + " mean the same shares but are drawn apart, which multiplies the "
                       "combinations",
                "write " + RatioWords(left) + " here to share the draw");
            return true;
        }
        if (IsPermutation(leftWeights, rightWeights)) {
            Add(Severity::Note, "weights-permuted", place,
                pair + " are the same weights in another order, and are drawn apart",
                "write " + RatioWords(left) + " and move the entries, to share the draw");
            return true;
        }
        return false;
    }

    // The ratio with the largest sum, which is the first to look at for all that is too fine.
    TextSpan FinestRatio() const
    {
        TextSpan finest;
        std::uint32_t largest = 0;
        for (std::size_t i = 0; i < outline.inColours.size(); ++i)
            for (std::size_t step = 0; step < stepsOfInColor; ++step) {
                const std::uint32_t sum = outline.Record(i).steps[step].fractions[0].denominator;
                if (!outline.inColours[i].steps[step].listed || sum <= largest)
                    continue;
                largest = sum;
                finest = outline.inColours[i].steps[step].ratio;
            }
        return finest;
    }

    void LintWhole()
    {
        const bool first = outline.Generation() == 1;
        if (model.totalWraps)
            Add(Severity::Warning, "total-wraps", FinestRatio(),
                "the common denominator of all combinations does not fit in 32 bits",
                "use smaller weights, or weights whose sums share divisors");
        else if (first && model.total > drawLimit)
            Add(Severity::Warning, "total-unreachable", FinestRatio(),
                "the common denominator is " + std::to_string(model.total) +
                    ", but version 2 draws below 32768: the last of " +
                    std::to_string(model.combinations) + " combinations come too rarely" +
                    (model.unreachable == 0
                         ? std::string()
                         : ", and " + std::to_string(model.unreachable) + " of them never"),
                "write VERSION 3, or use weights whose sums share divisors");
        if (!first && model.fieldSkew > tellableSkew)
            Add(Severity::Warning, "field-skewed", FinestRatio(),
                "the shares of the combinations don't share a denominator, and come out wrong by "
                "up to " +
                    std::to_string(model.fieldSkew * 100).substr(0, 5) + " percent of the pixels",
                "use weights with equal sums, or sums that divide each other");
        if (model.places > placeLimit)
            Add(Severity::Warning, "places-surplus", outline.outInksPlace,
                "a combination needs " + std::to_string(model.places) +
                    " stored values, and the fast way to draw has room for 16: it refuses "
                    "the pattern",
                "let inks use the same runs of values, or use fewer steps");
        if (!first && model.combinations < 2 && outline.hasHeader)
            Add(Severity::Warning, "draw-missing", outline.versionPlace,
                "there is nothing to draw, and at this version old processors refuse that",
                "write VERSION 2, or give a step two alternatives");
    }

    const PatternOutline& outline;
    const CombinationModel& model;
    Findings& findings;
};

} // namespace

void LintDraws(const PatternOutline& outline, const CombinationModel& model, Findings& findings)
{
    DrawLint(outline, model, findings).Run();
}

} // namespace zvk::Pelkraft::Client
