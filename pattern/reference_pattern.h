#pragma once

#include "pattern/dot_weave_pattern_engine.h"
#include "pattern/pattern_model.h"
#include "pattern/pattern_reader.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Testonly {

// Says whether the class is to draw in its older way: so where the machine's registry has a value
// "PatternRandomOld", whatever its data, and else by default.
bool ReadRandomOldSetting(bool byDefault);

constexpr std::int32_t outInksOfPixel = 12;
constexpr std::int32_t highestWeightSum = 30;

template <typename RandomSource>
struct TestStep
{
    // It is null where the sum of the weights is below 2.
    RandomSource* random = nullptr;
    // The values stand by ink position and random number.
    std::array<std::array<std::int32_t, highestWeightSum>, outInksOfPixel> table{};
};

template <typename RandomSource>
struct TestInColorRecord
{
    // Only the last list of values counts.
    std::int32_t numValueLines = 0;
    std::int32_t numInks = 0;
    // The out-inks stand by ink position.
    std::array<std::int32_t, outInksOfPixel> inks{};
    std::array<TestStep<RandomSource>, stepsOfInColor> steps;
};

// Does the same job without combinations: every step has a table and a random source of its own,
// and each in-colour of a pixel draws for itself. So the bytes are not those of the other engines.
template <typename RandomSource>
class CDotWeavePattern : public DotWeavePatternEngine
{
public:
    void InitFromText(char* text) override;
    void ResetRandomizer() override;
    void ApplyPattern(unsigned char* source, unsigned char* destination,
                      unsigned long pixels) override;
    int GetInColorCount() override { return static_cast<int>(mInColorNames.size()); }
    // The result is the number of value lines, and not the highest step; 0 outside the in-colours.
    int GetNumberOfStepsForInColor(int inColor) override;
    int GetOutColorCount() override { return static_cast<int>(mOutInkNames.size()); }
    DotWeavePatternConverter* GetConverter() override { return nullptr; }
    virtual RandomSource* GetRandomSource() { return nullptr; }

protected:
    // All steps of one sum of weights share a source, which moves with the pixels that use it. If
    // it is off, steps of one distribution share a source, which moves with every pixel.
    bool mRandomOld = ReadRandomOldSetting(true);
    InColorRecords<TestInColorRecord<RandomSource>> mInColors;

private:
    class TextSink;

    // A repeated name leads to an index beyond the pixel, where no step stands.
    std::int32_t CountInColors() { return std::min(mInColors.Count(), GetInColorCount()); }
    void ApplyPixel(const unsigned char* source);
    void ApplyInColor(const TestInColorRecord<RandomSource>& record, std::uint8_t step);

    std::vector<PatternToken> mTokens;
    std::int32_t mVersion = 1;
    NameTable mInColorNames;
    NameTable mOutInkNames;
    std::array<std::uint8_t, outInksOfPixel> mPixel{};
    std::map<std::int64_t, std::unique_ptr<RandomSource>> mRandomFields;
    std::int32_t mRandomSeed = 42;
};

} // namespace zvk::Pelkraft::Testonly
