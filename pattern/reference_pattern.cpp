#include "pattern/reference_pattern.h"

#include "pattern/field_walk.h"
#include "pattern/tokenizer.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>

namespace zvk::Pelkraft::Testonly {
namespace {

constexpr const char* arrayTooLong = "Array too long for pattern tables";

constexpr ReaderRules secondRules = {
    .weightsOfLine = 12,
    .positions = outInksOfPixel,
    .highestWeightSum = highestWeightSum,
    .lowestVersion = std::numeric_limits<std::int32_t>::min(),
    .entriesAlwaysNamePosition = false,
};

// Steps share a source in the newer way of drawing if they agree in all of it: in-colour, number
// and sum of weights, and the first four weights.
using Distribution = std::array<std::int64_t, 7>;

Distribution DistributionOf(std::int32_t inColor, const ValueLine& line)
{
    return {inColor,         line.count,      line.weightSum, line.weights[0],
            line.weights[1], line.weights[2], line.weights[3]};
}

} // namespace

// The sink stores what the reader finds in the fields of the class.
template <typename RandomSource>
class CDotWeavePattern<RandomSource>::TextSink final : public PatternHandler
{
public:
    explicit TextSink(CDotWeavePattern& newPattern) : pattern(newPattern) {}

    void TakeVersion(std::int32_t version, const PatternToken&) override
    {
        pattern.mVersion = version;
    }
    void TakeSeed(std::int32_t seed) override { pattern.mRandomSeed = seed; }
    void AllocateInColors(std::int32_t count) override { pattern.mInColors.Allocate(count); }
    void SelectInColor(std::int32_t inColor, const PatternToken&) override
    {
        pattern.mInColors.Select(inColor);
    }

    void TakeInk(std::int32_t inColor, std::int32_t position, std::int32_t outInk,
                 const PatternToken&) override
    {
        pattern.mInColors.Select(inColor).inks[static_cast<std::size_t>(position)] = outInk;
    }

    void TakeInkCount(std::int32_t inColor, std::int32_t count) override
    {
        pattern.mInColors.Select(inColor).numInks = count;
    }

    void BeginValueLines(std::int32_t inColor) override
    {
        pattern.mInColors.Select(inColor).numValueLines = 0;
    }

    void TakeValueLine(std::int32_t inColor, const ValueLine& line) override
    {
        auto& record = pattern.mInColors.Select(inColor);
        auto& step = record.steps[static_cast<std::size_t>(line.step)];
        step.random = line.weightSum >= 2 ? SourceFor(inColor, line) : nullptr;
        ++record.numValueLines;
        Expand(line, step);
        if (line.hasSuffix)
            for (auto s = static_cast<std::size_t>(line.step) + 1; s < record.steps.size(); ++s)
                record.steps[s] = step;
    }

private:
    RandomSource* SourceFor(std::int32_t inColor, const ValueLine& line)
    {
        const std::int64_t key =
            pattern.mRandomOld ? static_cast<std::int64_t>(line.weightSum) : KeyOf(inColor, line);
        auto& source = pattern.mRandomFields[key];
        if (source == nullptr) {
            source = MakeSource(line.weightSum);
            source->Reset();
        }
        return source.get();
    }

    // The keys follow the order in which the distributions appear.
    std::int64_t KeyOf(std::int32_t inColor, const ValueLine& line)
    {
        const auto next = static_cast<std::int64_t>(keys.size());
        return keys.emplace(DistributionOf(inColor, line), next).first->second;
    }

    std::unique_ptr<RandomSource> MakeSource(std::uint32_t weightSum) const
    {
        if (pattern.mRandomOld)
            return std::make_unique<RandomSource>(pattern.mRandomSeed, weightSum);
        return std::make_unique<RandomSource>(pattern.mRandomSeed, weightSum, Divisor());
    }

    // The sources act as digits of one number. Beyond the generator's reach a divisor gives 0,
    // however large it is.
    std::uint32_t Divisor() const
    {
        std::uint32_t product = 1;
        for (const auto& [key, source] : pattern.mRandomFields)
            if (source != nullptr)
                product = std::min(product * source->GetCount(), linearRandomValues);
        return product;
    }

    // Deals the random numbers out to the alternatives, as many to each as its weight says.
    static void Expand(const ValueLine& line, TestStep<RandomSource>& step)
    {
        std::size_t number = 0;
        for (std::size_t j = 0; j < static_cast<std::size_t>(line.count); ++j) {
            auto& values = step.table[static_cast<std::size_t>(line.positions[j])];
            const std::size_t end = number + static_cast<std::size_t>(line.weights[j]);
            for (; number < end; ++number)
                values[number] = line.values[j];
        }
    }

    CDotWeavePattern& pattern;
    std::map<Distribution, std::int64_t> keys;
};

template <typename RandomSource>
void CDotWeavePattern<RandomSource>::InitFromText(char* text)
{
    mRandomFields.clear();
    mInColors.Free();
    mVersion = 1;
    mTokens = CutTokens(text, patternComment);
    TextSink sink(*this);
    PatternReader reader(secondRules, mInColorNames, mOutInkNames, sink);
    if (!reader.Read(mTokens))
        return;
    if (GetOutColorCount() > outInksOfPixel)
        throw arrayTooLong;
    ResetRandomizer();
}

template <typename RandomSource>
void CDotWeavePattern<RandomSource>::ResetRandomizer()
{
    for (const auto& [key, source] : mRandomFields)
        source->Reset();
}

template <typename RandomSource>
void CDotWeavePattern<RandomSource>::ApplyPattern(unsigned char* source, unsigned char* destination,
                                                  unsigned long pixels)
{
    for (auto rest = static_cast<std::uint32_t>(pixels); rest != 0; --rest) {
        ApplyPixel(source);
        std::memcpy(destination, mPixel.data(), mOutInkNames.size());
        source += mInColorNames.size();
        destination += mOutInkNames.size();
    }
}

template <typename RandomSource>
void CDotWeavePattern<RandomSource>::ApplyPixel(const unsigned char* source)
{
    mPixel.fill(0);
    const std::int32_t inColors = CountInColors();
    for (std::int32_t i = 0; i < inColors; ++i)
        if (const auto* record = mInColors.Find(i); record != nullptr)
            ApplyInColor(*record, source[i]);
    if (!mRandomOld)
        for (const auto& [key, random] : mRandomFields)
            random->Next();
}

template <typename RandomSource>
void CDotWeavePattern<RandomSource>::ApplyInColor(const TestInColorRecord<RandomSource>& record,
                                                  std::uint8_t step)
{
    // It counts as a step without a line, which draws nothing and adds nothing.
    if (step >= record.steps.size())
        return;
    const TestStep<RandomSource>& values = record.steps[step];
    std::uint32_t number = 0;
    if (values.random != nullptr)
        number = mRandomOld ? values.random->Next() : values.random->Current();
    for (std::size_t p = 0; p < static_cast<std::size_t>(record.numInks); ++p)
        // The bits that an earlier in-colour gave the ink stay.
        if (const auto ink = static_cast<std::size_t>(record.inks[p]); ink < mPixel.size())
            mPixel[ink] = static_cast<std::uint8_t>(
                mPixel[ink] | static_cast<std::uint8_t>(values.table[p][number]));
}

template <typename RandomSource>
int CDotWeavePattern<RandomSource>::GetNumberOfStepsForInColor(int inColor)
{
    if (inColor < 0 || inColor >= CountInColors())
        return 0;
    const auto* record = mInColors.Find(inColor);
    return record != nullptr ? record->numValueLines : 0;
}

template class CDotWeavePattern<RandomField>;

} // namespace zvk::Pelkraft::Testonly
