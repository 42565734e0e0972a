#pragma once

#include "pattern/pattern_combinations.h"
#include "pattern/pattern_model.h"
#include "pattern/pattern_reader.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft {

// A converter makes tables of a text, in which an engine only looks things up. It is loaded once
// and not changed after that. Each final form prepares the rows for its own engine.
class DotWeavePatternConverter
{
public:
    DotWeavePatternConverter(const DotWeavePatternConverter&) = delete;
    DotWeavePatternConverter& operator=(const DotWeavePatternConverter&) = delete;

    // The result is false if the header word is missing. The flag has no effect. Throws as Load
    // does.
    virtual bool Parse(const std::string& text, int flag);
    virtual void Reset();

    // Each refusal of a text is thrown, that of a missing header word as the wide "Internal
    // Message: init from dotweave pattern failed".
    void Load(const char* text);

    // Distinct names are counted: a repeated name makes the counts smaller than the lists.
    std::int32_t GetInColorCount() const { return static_cast<std::int32_t>(mInColorNames.size()); }
    std::int32_t GetOutInkCount() const { return static_cast<std::int32_t>(mOutInkNames.size()); }

    std::int32_t GetVersion() const { return mVersion; }
    std::int32_t GetRandomSeed() const { return mRandomSeed; }
    std::uint32_t GetCombinationCount() const { return mNumCombinations; }
    const PatternCombinations& GetCombinations() const { return mCombinations; }
    const CombinationDistribution& GetDistribution() const { return mDistribution; }
    const std::array<std::uint8_t, 16>& GetInColorOfOutInk() const { return mInColorOfOutInk; }
    const std::array<std::uint8_t, 16>& GetMaxStepOfInColor() const { return mMaxStepOfInColor; }
    const std::vector<PatternToken>& GetTokens() const { return mTokens; }
    const InColorRecords<InColorRecord>& GetInColors() const { return mInColors; }

protected:
    DotWeavePatternConverter();
    ~DotWeavePatternConverter() = default;

    PatternCombinations mCombinations{};
    std::uint32_t mNumCombinations = 0;

private:
    class TextSink;

    void Finish();

    std::int32_t mVersion = 1;
    InColorRecords<InColorRecord> mInColors;
    std::array<std::uint8_t, 16> mInColorOfOutInk;
    std::array<std::uint8_t, 16> mMaxStepOfInColor{};
    std::int32_t mRandomSeed = 42;
    CombinationDistribution mDistribution;
    char mCommentCharacter = patternComment;
    std::vector<PatternToken> mTokens;
    NameTable mInColorNames;
    NameTable mOutInkNames;
};

} // namespace zvk::Pelkraft
