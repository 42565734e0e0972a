#include "tools/pelkraft/pattern_diff.h"

#include "pattern/pattern_words.h"
#include "tools/pelkraft/ink_shares.h"
#include "tools/pelkraft/json.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <map>
#include <numeric>
#include <set>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr int schemaVersion = 1;

// The values that an alternative gives to inks, by upper-cased name; inks that get 0 are left out,
// as those that it doesn't name.
using Values = std::map<std::string, int>;

// A share in lowest terms; none is never.
struct Share
{
    std::uint64_t parts = 0;
    std::uint64_t whole = 1;

    bool operator==(const Share&) const = default;
};

using Alternatives = std::map<Values, Share>;

std::string Number(double number)
{
    char words[32];
    std::snprintf(words, sizeof words, "%.2f", number);
    return words;
}

std::string Joined(const std::vector<std::string>& names)
{
    std::string joined;
    for (const std::string& name : names)
        joined.append(joined.empty() ? "" : ", ").append(name);
    return joined.empty() ? "none" : joined;
}

std::string Upper(const std::vector<std::string>& names)
{
    return UpperCase(Joined(names));
}

// One of the two texts, read for comparison.
class Side
{
public:
    explicit Side(const PatternReport& newReport)
        : outline(newReport.outline), inColours(outline.InColourList()),
          outInks(outline.OutInkList()), shares(MeasureShares(outline, newReport.model, nullptr))
    {}

    const PatternOutline& Outline() const { return outline; }
    const std::vector<std::string>& InColours() const { return inColours; }
    const std::vector<std::string>& OutInks() const { return outInks; }

    // -1 where there is no such in-colour.
    int IndexOf(const std::string& inColour) const
    {
        const auto found = outline.inColourNames.find(UpperCase(inColour));
        return found == outline.inColourNames.end() ? -1 : found->second.index;
    }

    int StepCount(int inColour) const
    {
        return outline.Record(static_cast<std::size_t>(inColour)).numSteps;
    }

    // Equal ones are one.
    Alternatives AlternativesOf(int inColour, int step) const
    {
        const InColorRecord& record = outline.Record(static_cast<std::size_t>(inColour));
        const StepValues& said = record.steps[static_cast<std::size_t>(step)];
        Alternatives all;
        for (std::size_t i = 0; i < static_cast<std::size_t>(said.numRandoms); ++i) {
            const Fraction& fraction = said.fractions[i];
            if (fraction.numerator == 0)
                continue;
            Share& share = all[ValuesOf(record, said, i)];
            share.parts += fraction.numerator;
            share.whole = fraction.denominator;
        }
        for (auto& [values, share] : all) {
            const std::uint64_t divisor = std::gcd(share.parts, share.whole);
            share = {share.parts / divisor, share.whole / divisor};
        }
        return all;
    }

    const StepShares* SharesOf(int inColour, int step) const
    {
        const auto found = std::find_if(shares.begin(), shares.end(), [=](const StepShares& one) {
            return one.inColour == inColour && one.step == step;
        });
        return found == shares.end() ? nullptr : &*found;
    }

    std::string NameOf(int outInk) const { return outInks[static_cast<std::size_t>(outInk)]; }

private:
    Values ValuesOf(const InColorRecord& record, const StepValues& step, std::size_t index) const
    {
        Values values;
        for (std::size_t p = 0; p < static_cast<std::size_t>(record.numInks); ++p) {
            const auto outInk = static_cast<std::size_t>(record.inks[p]);
            const int value = step.table[index][p] == unsetValue ? 0 : step.table[index][p] & 0xFF;
            if (value != 0 && outInk < outInks.size())
                values[outInks[outInk]] = value;
        }
        return values;
    }

    const PatternOutline& outline;
    std::vector<std::string> inColours;
    std::vector<std::string> outInks;
    std::vector<StepShares> shares;
};

std::string Words(const Values& values)
{
    std::vector<std::string> sets;
    for (const auto& [ink, value] : values)
        sets.push_back(ink + " " + std::to_string(value));
    return sets.empty() ? "no ink" : Joined(sets);
}

std::string Words(const Share& share)
{
    if (share.parts == 0)
        return "never";
    return Number(100 * static_cast<double>(share.parts) / static_cast<double>(share.whole)) + " %";
}

Values UpperNames(const Values& values)
{
    Values upper;
    for (const auto& [ink, value] : values)
        upper[UpperCase(ink)] = value;
    return upper;
}

class Comparison
{
public:
    Comparison(const PatternReport& newLeft, const PatternReport& newRight)
        : left(newLeft), right(newRight)
    {}

    std::vector<PatternDifference> Run()
    {
        Compare("random-source", Generation(left), Generation(right));
        Compare("seed", std::to_string(left.Outline().seed), std::to_string(right.Outline().seed));
        if (Upper(left.InColours()) != Upper(right.InColours()))
            Add({"in-colours", "", -1, "", Joined(left.InColours()), Joined(right.InColours())});
        if (Upper(left.OutInks()) != Upper(right.OutInks()))
            Add({"out-inks", "", -1, "", Joined(left.OutInks()), Joined(right.OutInks())});
        for (const std::string& inColour : left.InColours()) {
            const int leftIndex = left.IndexOf(inColour);
            const int rightIndex = right.IndexOf(inColour);
            if (leftIndex >= 0 && rightIndex >= 0)
                CompareInColour(inColour, leftIndex, rightIndex);
        }
        return std::move(differences);
    }

private:
    static std::string Generation(const Side& side)
    {
        return side.Outline().Generation() == 1 ? "first generation" : "second generation";
    }

    void Add(PatternDifference difference) { differences.push_back(std::move(difference)); }

    void Compare(const char* kind, const std::string& leftWords, const std::string& rightWords)
    {
        if (leftWords != rightWords)
            Add({kind, "", -1, "", leftWords, rightWords});
    }

    void CompareInColour(const std::string& name, int leftIndex, int rightIndex)
    {
        const int leftSteps = left.StepCount(leftIndex);
        const int rightSteps = right.StepCount(rightIndex);
        if (leftSteps != rightSteps)
            Add({"steps", name, -1, "", StepWords(leftSteps), StepWords(rightSteps)});
        for (int step = 0; step < std::min(leftSteps, rightSteps); ++step) {
            CompareAlternatives(name, leftIndex, rightIndex, step);
            CompareShares(name, left.SharesOf(leftIndex, step), right.SharesOf(rightIndex, step));
        }
    }

    static std::string StepWords(int count)
    {
        return count == 0 ? "no steps" : "steps 0 to " + std::to_string(count - 1);
    }

    void CompareAlternatives(const std::string& name, int leftIndex, int rightIndex, int step)
    {
        using Pair = std::pair<Share, Share>;
        std::map<Values, Pair> shares;
        std::map<Values, Values> spellings;
        const auto take = [&](const Alternatives& alternatives, Share Pair::*member) {
            for (const auto& [values, share] : alternatives) {
                spellings.emplace(UpperNames(values), values);
                shares[UpperNames(values)].*member = share;
            }
        };
        take(left.AlternativesOf(leftIndex, step), &Pair::first);
        take(right.AlternativesOf(rightIndex, step), &Pair::second);
        for (const auto& [values, pair] : shares) {
            if (pair.first != pair.second)
                Add({"alternative", name, step, Words(spellings[values]), Words(pair.first),
                     Words(pair.second)});
        }
    }

    void CompareShares(const std::string& name, const StepShares* leftShares,
                       const StepShares* rightShares)
    {
        if (leftShares == nullptr || rightShares == nullptr)
            return;
        std::map<std::string, std::pair<const InkShares*, const InkShares*>> inks;
        for (const InkShares& ink : leftShares->inks)
            inks[UpperCase(left.NameOf(ink.outInk))].first = &ink;
        for (const InkShares& ink : rightShares->inks)
            inks[UpperCase(right.NameOf(ink.outInk))].second = &ink;
        for (const auto& [upper, pair] : inks) {
            const auto& [leftInk, rightInk] = pair;
            const std::string ink =
                leftInk != nullptr ? left.NameOf(leftInk->outInk) : right.NameOf(rightInk->outInk);
            CompareInk(name, leftShares->step, ink, leftInk, rightInk);
        }
    }

    void CompareInk(const std::string& name, int step, const std::string& ink,
                    const InkShares* leftInk, const InkShares* rightInk)
    {
        std::map<int, std::pair<double, double>> shares;
        if (leftInk != nullptr)
            for (const ValueShare& share : leftInk->values)
                shares[share.value].first = share.expected;
        if (rightInk != nullptr)
            for (const ValueShare& share : rightInk->values)
                shares[share.value].second = share.expected;
        for (const auto& [value, pair] : shares) {
            if (Differ(pair.first, pair.second))
                Add({"share", name, step, ink + " " + std::to_string(value),
                     Number(100 * pair.first) + " %", Number(100 * pair.second) + " %"});
        }
        const double leftMean = leftInk == nullptr ? 0 : MeanOf(*leftInk).expected;
        const double rightMean = rightInk == nullptr ? 0 : MeanOf(*rightInk).expected;
        if (Differ(leftMean, rightMean))
            Add({"mean-ink", name, step, ink, Number(leftMean), Number(rightMean)});
    }

    // Sums of the same parts in another order may differ in their last bits.
    static bool Differ(double a, double b) { return std::abs(a - b) > 1e-9; }

    Side left;
    Side right;
    std::vector<PatternDifference> differences;
};

std::string PlaceWords(const PatternDifference& difference)
{
    std::string words = difference.kind;
    if (!difference.inColour.empty())
        words = difference.inColour +
                (difference.step < 0 ? "" : " step " + std::to_string(difference.step)) + ": " +
                words;
    return words + (difference.ink.empty() ? "" : " " + difference.ink);
}

// People see from these which shares of unequal alternatives differ.
std::vector<PatternDifference> WithoutFollowingShares(std::vector<PatternDifference> differences)
{
    std::set<std::pair<std::string, int>> steps;
    for (const PatternDifference& difference : differences) {
        if (difference.kind == "alternative")
            steps.emplace(difference.inColour, difference.step);
    }
    std::erase_if(differences, [&](const PatternDifference& difference) {
        return difference.kind == "share" &&
               steps.count({difference.inColour, difference.step}) != 0;
    });
    return differences;
}

} // namespace

std::vector<PatternDifference> CompareReports(const PatternReport& left, const PatternReport& right)
{
    return Comparison(left, right).Run();
}

std::string DifferenceWords(const std::vector<PatternDifference>& all, const std::string& leftPath,
                            const std::string& rightPath)
{
    const std::vector<PatternDifference> differences = WithoutFollowingShares(all);
    std::string words = Shown(leftPath) + " and " + Shown(rightPath) + ": ";
    if (differences.empty())
        return words + "no difference\n";
    words += Counted(differences.size(), "difference", "differences") + "\n";
    for (const PatternDifference& difference : differences)
        words += "  " + Shown(PlaceWords(difference)) + ": " + Shown(difference.left) + " -> " +
                 Shown(difference.right) + "\n";
    return words;
}

std::string DifferenceJson(const std::vector<PatternDifference>& differences,
                           const std::string& leftPath, const std::string& rightPath)
{
    Json json = {{"schema", schemaVersion},
                 {"left", leftPath},
                 {"right", rightPath},
                 {"same", differences.empty()},
                 {"differences", Json::array()}};
    for (const PatternDifference& difference : differences) {
        const bool ofInColour = !difference.inColour.empty();
        json["differences"].push_back(
            {{"kind", difference.kind},
             {"inColour", ofInColour ? Json(difference.inColour) : Json(nullptr)},
             {"step", difference.step < 0 ? Json(nullptr) : Json(difference.step)},
             {"of", difference.ink.empty() ? Json(nullptr) : Json(difference.ink)},
             {"left", difference.left},
             {"right", difference.right}});
    }
    return JsonText(json);
}

} // namespace zvk::Pelkraft::Client
