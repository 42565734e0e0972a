#pragma once

#include <atomic>
#include <cstdint>

namespace zvk::Pelkraft {

class DotWeavePatternConverter;

// What applies a pattern. Created empty, loaded once, then used by one thread at a time.
// Aligned so that an engine may hold its vectors as members.
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
    // Null for an engine without one.
    virtual DotWeavePatternConverter* GetConverter() = 0;

    // Pattern objects that are assigned share their engine; the last one destroys it. Holders
    // may be on different threads.
    void AddHolder() { holders.fetch_add(1, std::memory_order_relaxed); }
    void RemoveHolder();

private:
    std::atomic<std::int32_t> holders{1};
};

} // namespace zvk::Pelkraft
