#include "pattern/early_check.h"
#include "pattern/pattern_converter_sse.h"
#include "pattern/random_fields.h"
#include "pelkraft/dot_weave_pattern.h"
#include "zvk/split.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

// Loads any bytes as a pattern text on all engines and applies rows of any steps. The portable
// and the vector engine must agree on every row of a text that both of them take.
namespace zvk::Pelkraft {
namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::size_t mostPixels = 40;
// Ahead of a reset.
constexpr std::size_t rows = 3;

// A field of the second generation grows with a denominator that a few bytes of text can name:
// that takes time and memory, and nothing else.
bool IsSlowToLoad(const std::string& text)
{
    constexpr std::uint32_t highestDenominator = 400000;
    try {
        if (CheckPatternText(text.c_str(), zvk::split) < 3)
            return false;
        const auto converter = std::make_unique<DotWeavePatternConverterSse>();
        try {
            converter->Load(text.c_str());
        } catch (const char*) {
            // Refused by the vector engine, but the model may be whole.
        }
        return FindFieldDenominator(converter->GetCombinations(), converter->GetCombinationCount(),
                                    1) > highestDenominator;
    } catch (const char*) {
    } catch (const wchar_t*) {
    }
    return false;
}

// cppcheck-suppress passedByValue // a pattern is loaded from a text that may be changed
std::unique_ptr<DotWeavePattern> Load(std::string text, DotWeavePattern::Engine engine)
{
    try {
        return std::make_unique<DotWeavePattern>(text.data(), engine);
    } catch (const char*) {
    } catch (const wchar_t*) {
    }
    return nullptr;
}

// Buffers of exactly the row's size, so that the sanitizer sees a byte too many.
Bytes Apply(DotWeavePattern& pattern, const Bytes& steps, std::size_t row, std::size_t pixels)
{
    const auto inColors = static_cast<std::size_t>(pattern.GetInColorCount());
    const std::size_t destinationBytes =
        pixels * static_cast<std::size_t>(pattern.GetOutColorCount());
    const auto source = std::make_unique<unsigned char[]>(pixels * inColors);
    const auto destination = std::make_unique<unsigned char[]>(destinationBytes);
    for (std::size_t i = 0; i < pixels * inColors; ++i)
        source[i] = steps[(i + row) % steps.size()];
    pattern.ApplyPattern(source.get(), destination.get(), pixels);
    return Bytes(destination.get(), destination.get() + destinationBytes);
}

std::vector<Bytes> ApplyRows(DotWeavePattern& pattern, const Bytes& steps)
{
    for (const int inColor : {-1, 0, 1, 15, 16, 100})
        pattern.GetNumberOfStepsForInColor(inColor);
    std::vector<Bytes> results;
    for (std::size_t row = 0; row < rows; ++row)
        results.push_back(Apply(pattern, steps, row, (steps.size() + row) % mostPixels));
    // After a reset the two families stand at different places for one row, and no longer.
    pattern.ResetRandomizer();
    Apply(pattern, steps, 0, mostPixels);
    results.push_back(Apply(pattern, steps, 1, mostPixels));
    return results;
}

void LoadOnAllEngines(const std::string& text, const Bytes& steps)
{
    if (IsSlowToLoad(text))
        return;
    if (const auto reference = Load(text, DotWeavePattern::Reference))
        ApplyRows(*reference, steps);
    const auto portable = Load(text, DotWeavePattern::X86);
    const auto vector = Load(text, DotWeavePattern::Sse);
    std::vector<Bytes> portableRows;
    if (portable != nullptr)
        portableRows = ApplyRows(*portable, steps);
    if (vector == nullptr)
        return;
    const std::vector<Bytes> vectorRows = ApplyRows(*vector, steps);
    if (portable != nullptr && portableRows != vectorRows) {
        std::fprintf(stderr, "the engines disagree on\n%s\n", text.c_str());
        std::abort();
    }
}

} // namespace
} // namespace zvk::Pelkraft

// The text ends at the first NUL; the steps follow it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string whole(reinterpret_cast<const char*>(data), size);
    const std::string text = whole.substr(0, whole.find('\0'));
    zvk::Pelkraft::Bytes steps(data + text.size(), data + size);
    for (unsigned char step = 0; step < 8; ++step)
        steps.push_back(step);
    steps.push_back(0xFF);
    zvk::Pelkraft::LoadOnAllEngines(text, steps);
    return 0;
}
