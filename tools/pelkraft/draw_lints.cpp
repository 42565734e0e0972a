#include "tools/pelkraft/draw_lints.h"

#include "tools/pelkraft/outline_cursor.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

// Above this a share that is off is told of: one in a thousand pixels.
constexpr double tellableSkew = 0.001;

using Weights = std::vector<std::int64_t>;

// In lowest terms, so that 2:2 is 1:1.
Weights ReducedWeights(const Step& step)
{
    std::int64_t divisor = 0;
    for (std::size_t i = 0; i < step.count; ++i)
        divisor = std::gcd(divisor, step.alternatives[i].weight);
    Weights weights;
    for (std::size_t i = 0; i < step.count; ++i)
        weights.push_back(step.alternatives[i].weight / std::max<std::int64_t>(divisor, 1));
    return weights;
}

std::string RatioWords(const Step& step)
{
    std::string words;
    for (std::size_t i = 0; i < step.count; ++i) {
        if (i > 0)
            words += ':';
        words += std::to_string(step.alternatives[i].weight);
    }
    return words;
}

// For each alternative the ink position that it sets above 0; the number of positions for none.
Weights InkOrder(const Step& step)
{
    Weights order;
    for (std::size_t i = 0; i < step.count; ++i) {
        const auto& values = step.alternatives[i].values;
        const auto set = std::find_if(values.begin(), values.end(),
                                      [](std::int32_t value) { return value > 0; });
        order.push_back(set - values.begin());
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
            LintInColour(outline.inColours[i], model.draws[i]);
        if (model.combinations > combinationLimit)
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
        AddFinding(findings, {severity, kind, place, std::move(message), std::move(hint)});
    }

    static std::string Amount(std::uint64_t count)
    {
        return count >= 0xFFFFFFFFU ? "4294967295 or more" : std::to_string(count);
    }

    void LintInColour(const InColour& inColour, const InColourDraws& draws)
    {
        if (draws.combinations > inColourCombinationLimit)
            Add(Severity::Error, "in-colour-combinations-surplus",
                inColour.described.value_or(inColour.listed),
                Quoted(inColour.name) + " makes " + Amount(draws.combinations) + " combinations",
                "bring it down to 32: let steps share their weights, or use fewer alternatives");
        for (std::size_t step = 1; step < draws.drawOfStep.size(); ++step) {
            if (!inColour.steps[step].listed || inColour.steps[step].count < 2)
                continue;
            for (std::size_t before = 0; before < step; ++before) {
                if (LintPair(inColour, draws, before, step))
                    break;
            }
        }
    }

    // Tells whether there was something to say.
    bool LintPair(const InColour& inColour, const InColourDraws& draws, std::size_t before,
                  std::size_t step)
    {
        const Step& left = inColour.steps[before];
        const Step& right = inColour.steps[step];
        if (!left.listed || left.count != right.count)
            return false;
        const std::string pair = RatioWords(right) + " of step " + std::to_string(step) + " and " +
                                 RatioWords(left) + " of step " + std::to_string(before);
        if (draws.drawOfStep[before] == draws.drawOfStep[step]) {
            if (InkOrder(left) == InkOrder(right) ||
                !IsPermutation(InkOrder(left), InkOrder(right)))
                return false;
            Add(Severity::Note, "weights-together", right.ratioPlace,
                pair + " share their draw, though their alternatives set the same inks in "
                       "another order",
                "keep the order of the inks, or double the weights of one to draw it apart");
            return true;
        }
        const Weights leftWeights = ReducedWeights(left);
        const Weights rightWeights = ReducedWeights(right);
        if (leftWeights == rightWeights) {
            Add(Severity::Warning, "weights-apart", right.ratioPlace,
                pair + " mean the same shares but are drawn apart, which multiplies the "
                       "combinations",
                "write " + RatioWords(left) + " here to share the draw");
            return true;
        }
        if (IsPermutation(leftWeights, rightWeights)) {
            Add(Severity::Note, "weights-permuted", right.ratioPlace,
                pair + " are the same weights in another order, and are drawn apart",
                "write " + RatioWords(left) + " and move the entries, to share the draw");
            return true;
        }
        return false;
    }

    // The ratio with the largest sum, which is the first to look at for all that is too fine.
    TextSpan FinestRatio() const
    {
        const Step* finest = nullptr;
        for (const InColour& inColour : outline.inColours) {
            for (const Step& step : inColour.steps) {
                if (step.listed && (finest == nullptr || step.weightSum > finest->weightSum)) {
                    // cppcheck-suppress useStlAlgorithm // it remembers, and goes on
                    finest = &step;
                }
            }
        }
        return finest == nullptr ? TextSpan{} : finest->ratioPlace;
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
                "combination " + std::to_string(model.fullest) + " needs " +
                    std::to_string(model.places) +
                    " of 16 places for its values: the sse engine refuses the pattern",
                "let inks use the same runs of values, or use fewer steps");
        if (!first && model.combinations < 2 && outline.hasHeader)
            Add(Severity::Warning, "draw-missing", outline.versionPlace,
                "there is nothing to draw, and at this version the x86 engine refuses that",
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
