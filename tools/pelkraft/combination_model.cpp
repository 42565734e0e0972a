#include "tools/pelkraft/combination_model.h"

#include "pattern/pattern_converter_sse.h"
#include "pattern/random_fields.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::uint64_t mostCount = std::numeric_limits<std::uint32_t>::max();

class ModelBuilder
{
public:
    explicit ModelBuilder(const PatternOutline& newOutline) : outline(newOutline) {}

    CombinationModel Build()
    {
        for (std::size_t i = 0; i < outline.InColourCount(); ++i)
            AddInColour(i);
        if (model.combinations > MAXS_TOTAL_RANDOM)
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

    void AddInColour(std::size_t index)
    {
        const std::string& name = outline.inColours[index].name;
        InColourDraws& draws = model.draws.emplace_back();
        draws.distributions = FindDistributions(outline.Record(index));
        draws.combinations = CountCombinations(draws.distributions);
        if (draws.combinations == 0)
            Stop("a step of " + name + " has no line");
        if (draws.combinations > MAXS_CHANNEL_RANDOM)
            Stop(name + " has more than 32 combinations");
        model.combinations =
            std::min(model.combinations * std::min(draws.combinations, mostCount), mostCount);
    }

    void MultiplyOut()
    {
        const auto inColours = static_cast<std::int32_t>(outline.InColourCount());
        try {
            for (std::int32_t i = 0; i < inColours; ++i)
                if (InColorRecord* record = outline.records.Find(i); record != nullptr)
                    BuildChannelCombinations(*record);
            count = BuildPatternCombinations(outline.records, inColours, *combinations);
        } catch (const char*) {
            Stop("a product of weights wraps to 0");
            return;
        }
        FindPlaces();
        FindTotal();
        if (outline.Generation() == 2)
            FindField();
    }

    void FindPlaces()
    {
        for (std::size_t c = 0; c < count; ++c) {
            const std::size_t places = CountStoredValues((*combinations)[c]);
            if (places > model.places) {
                model.places = places;
                model.fullest = c;
            }
        }
    }

    void FindTotal()
    {
        for (std::size_t c = 0; c < count; ++c) {
            const std::uint32_t denominator = FractionOf(c).denominator;
            const std::uint64_t multiple =
                std::uint64_t{model.total / GreatestCommonDivisor(model.total, denominator)} *
                denominator;
            model.totalWraps = model.totalWraps || multiple > mostCount;
            model.total = static_cast<std::uint32_t>(multiple);
        }
        const auto distribution = std::make_unique<CombinationDistribution>();
        BuildDistribution(*combinations, count, *distribution);
        for (std::size_t c = 0; c < count; ++c)
            if (FractionOf(c).numerator > 0 && distribution->cumulative[c] >= drawLimit)
                ++model.unreachable;
    }

    // Shares are cut to whole parts of the field's denominator; the rest goes to the first one.
    void FindField()
    {
        const std::uint32_t parts = FindFieldDenominator(*combinations, count, 1);
        model.fieldSize = CountShuffledEntries(parts);
        double sum = 0;
        for (std::size_t c = 1; c < count; ++c) {
            const std::uint64_t own =
                std::uint64_t{FractionOf(c).numerator} * parts / FractionOf(c).denominator;
            const double share = static_cast<double>(own) / parts;
            sum += share;
            NoteSkew(c, share);
        }
        NoteSkew(0, 1 - sum);
    }

    void NoteSkew(std::size_t combination, double share)
    {
        const Fraction& fraction = FractionOf(combination);
        const double wanted = static_cast<double>(fraction.numerator) / fraction.denominator;
        model.fieldSkew = std::max(model.fieldSkew, std::abs(share - wanted));
    }

    const Fraction& FractionOf(std::size_t combination) const
    {
        return (*combinations)[combination].fraction;
    }

    const PatternOutline& outline;
    CombinationModel model;
    std::unique_ptr<PatternCombinations> combinations = std::make_unique<PatternCombinations>();
    std::uint32_t count = 0;
};

} // namespace

CombinationModel BuildCombinations(const PatternOutline& outline)
{
    return ModelBuilder(outline).Build();
}

} // namespace zvk::Pelkraft::Client
