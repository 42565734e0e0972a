#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace zvk::Pelkraft {

class DotWeavePatternConverter;

// An engine applies a pattern. It is created empty, loaded once, then used by one thread at a time.
// The alignment lets it hold vectors as members.
class alignas(32) DotWeavePatternEngine
{
public:
    DotWeavePatternEngine() = default;
    virtual ~DotWeavePatternEngine() = default;
    DotWeavePatternEngine(const DotWeavePatternEngine&) = delete;
    DotWeavePatternEngine& operator=(const DotWeavePatternEngine&) = delete;

    virtual void InitFromText(char* text) = 0;
    virtual void ResetRandomizer() = 0;
    // Pixels are packed, of as many bytes as there are in-colours and out-inks. Only the low 32
    // bits of their count are taken.
    virtual void ApplyPattern(unsigned char* source, unsigned char* destination,
                              unsigned long pixels) = 0;
    virtual int GetInColorCount() = 0;
    virtual int GetNumberOfStepsForInColor(int inColor) = 0;
    virtual int GetOutColorCount() = 0;
    // An engine without a converter gives null.
    virtual DotWeavePatternConverter* GetConverter() = 0;

    // Pattern objects that are assigned share their engine; the last one destroys it. Holders
    // may be on different threads.
    void AddHolder() { holders.fetch_add(1, std::memory_order_relaxed); }
    void RemoveHolder()
    {
        if (holders.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }

private:
    std::atomic<std::int32_t> holders{1};
};

// The portable and the vector engine own a converter, and answer from its counts.
template <typename Converter>
class ConvertedPatternEngine : public DotWeavePatternEngine
{
public:
    int GetInColorCount() final { return mNumInColors; }
    int GetOutColorCount() final { return mNumOutInks; }
    DotWeavePatternConverter* GetConverter() final { return mConverter.get(); }

    // The result is the highest step: 255 for an in-colour without a block, 0 for none at all.
    int GetNumberOfStepsForInColor(int inColor) final
    {
        return inColor >= 0 && inColor < mNumInColors
                   ? mMaxStepOfInColor[static_cast<std::size_t>(inColor)]
                   : 0;
    }

protected:
    // A converter that fails to load leaves the engine without one.
    void LoadConverter(const char* text)
    {
        mConverter.reset();
        auto converter = std::make_unique<Converter>();
        converter->Load(text);
        mConverter = std::move(converter);
        mNumInColors = mConverter->GetInColorCount();
        mNumOutInks = mConverter->GetOutInkCount();
        mNumCombinations = mConverter->GetCombinationCount();
        mMaxStepOfInColor = mConverter->GetMaxStepOfInColor();
    }

    bool ExceedsTables() const
    {
        const auto lanes = static_cast<std::int32_t>(mMaxStepOfInColor.size());
        return mNumInColors > lanes || mNumOutInks > lanes;
    }

    // The random source stands still where there is no choice.
    bool DrawsCombinations() const { return mNumCombinations >= 2; }

    std::int32_t mNumInColors = 0;
    std::int32_t mNumOutInks = 0;
    std::uint32_t mNumCombinations = 0;
    std::array<std::uint8_t, 16> mMaxStepOfInColor{};
    std::unique_ptr<Converter> mConverter;
};

} // namespace zvk::Pelkraft
