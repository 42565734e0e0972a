#pragma once

#include "pattern/converted_pattern_engine.h"
#include "pattern/pattern_converter_x86.h"

#include <array>
#include <cstdint>
#include <memory>

namespace zvk::Pelkraft {

// One byte and one table look-up at a time. What a pixel means is read off here.
template <typename RandomSource>
class DotWeavePatternEngineX86 final : public ConvertedPatternEngine<DotWeavePatternConverterX86>
{
public:
    DotWeavePatternEngineX86();
    ~DotWeavePatternEngineX86() override;

    void InitFromText(char* text) override;
    void ResetRandomizer() override;
    void ApplyPattern(unsigned char* source, unsigned char* destination,
                      unsigned long pixels) override;
    virtual RandomSource* GetRandomSource() { return mRandom.get(); }

private:
    void ApplyDrawn(const unsigned char* source, unsigned char* destination, std::uint32_t pixels);
    void ApplySingle(const unsigned char* source, unsigned char* destination,
                     std::uint32_t pixels) const;
    void ApplyPixel(const unsigned char* source, unsigned char* destination,
                    const PatternCombination& combination) const;

    std::unique_ptr<RandomSource> mRandom;
    std::array<std::uint8_t, 16> mInColorOfOutInk;
};

} // namespace zvk::Pelkraft
