#pragma once

#include "pattern/dot_weave_pattern_converter.h"
#include "pattern/dot_weave_pattern_engine.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>

namespace zvk::Pelkraft {

// Repairs the rows once after parsing, so that a pixel is a lookup without a test: unset values
// become 0, and steps that the in-colour does not have take the values of its last one.
class DotWeavePatternConverterX86 final : public DotWeavePatternConverter
{
public:
    // Throws "out-ink without in-colour in pattern" too.
    bool Parse(const std::string& text, int flag) override;

private:
    void RepairRows();
    std::int32_t TopStepOfInk(std::size_t outInk) const;
};

// Applies a pattern by one table look-up for each ink: this loop says what a pixel means.
template <typename RandomSource>
class DotWeavePatternEngineX86 final : public ConvertedPatternEngine<DotWeavePatternConverterX86>
{
public:
    void InitFromText(char* text) override;
    void ResetRandomizer() override;
    void ApplyPattern(unsigned char* source, unsigned char* destination,
                      unsigned long pixels) override;
    virtual RandomSource* GetRandomSource() { return mRandom.get(); }

    // A row that starts at this place of the field and leaves the random source alone.
    void ApplyFrom(std::uint32_t position, const unsigned char* source, unsigned char* destination,
                   std::uint32_t pixels) const;
    const RandomSource& GetWalk() const { return *mRandom; }

private:
    void ApplyDrawn(std::uint32_t position, const unsigned char* source, unsigned char* destination,
                    std::uint32_t pixels) const;
    void ApplySingle(const unsigned char* source, unsigned char* destination,
                     std::uint32_t pixels) const;
    void ApplyPixel(const unsigned char* source, unsigned char* destination,
                    const PatternCombination& combination) const;

    std::unique_ptr<RandomSource> mRandom;
    std::array<std::uint8_t, 16> mInColorOfOutInk{};
};

} // namespace zvk::Pelkraft
