#include "pattern/early_check.h"
#include "pattern/pattern_converter_sse.h"
#include "pattern/random_fields.h"
#include "pelkraft/dot_weave_pattern.h"
#include "pelkraft/plan.h"
#include "zvk/split.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

// Loads any bytes as a pattern text on all engines and applies rows of any steps. The portable
// and the vector engine must agree on every row of a text that both of them take, and handles take
// the same texts and give the same rows from the last to the first.
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

[[noreturn]] void Fail(const char* what, const std::string& text)
{
    std::fprintf(stderr, "%s on\n%s\n", what, text.c_str());
    std::abort();
}

// Gives the handle's bytes of a row that the engines have applied.
Bytes ApplyHandle(const plk_pattern* handle, const Bytes& steps, std::size_t row,
                  std::size_t pixels)
{
    plk_pattern_facts facts = {};
    facts.size = sizeof facts;
    plk_pattern_needs(handle, &facts, nullptr);
    const std::size_t sourceBytes = pixels * static_cast<std::size_t>(facts.in_colours);
    const std::size_t targetBytes = pixels * static_cast<std::size_t>(facts.out_inks);
    const auto source = std::make_unique<unsigned char[]>(sourceBytes);
    const auto target = std::make_unique<unsigned char[]>(targetBytes);
    for (std::size_t i = 0; i < sourceBytes; ++i)
        source[i] = steps[(i + row) % steps.size()];
    const plk_source from = {sizeof from, 0, source.get(), sourceBytes, 0, 0, 0};
    const plk_target to = {sizeof to, 0, target.get(), targetBytes, 0, 0, 0};
    if (plk_pattern_run(handle, row, 1, pixels, &from, &to, nullptr) != PLK_OK)
        Fail("a row is refused", "");
    return Bytes(target.get(), target.get() + targetBytes);
}

void RequireRefusal(const plk_failure& failure, const std::string& text)
{
    const std::size_t lines =
        1 + static_cast<std::size_t>(std::count_if(
                text.begin(), text.end(), [](char byte) { return byte == '\n' || byte == '\r'; }));
    const bool isKnown = failure.status == PLK_BAD_TEXT || failure.status == PLK_NO_MEMORY;
    const bool hasPlace = failure.line != 0;
    if (!isKnown || failure.text[0] == 0 || failure.line > lines ||
        failure.column > text.size() + 1 || hasPlace != (failure.column != 0))
        Fail("a handle is refused in a wrong way", text);
}

// The rows are those of an engine, and there are none where it refuses the text.
void CompareHandle(const std::string& text, std::int32_t engine, const Bytes& steps,
                   const std::vector<Bytes>& expected)
{
    const plk_pattern_spec spec = {sizeof spec, engine};
    plk_failure failure = {};
    failure.size = sizeof failure;
    plk_pattern* handle = nullptr;
    const plk_status status =
        plk_pattern_create(text.data(), text.size(), &spec, &handle, &failure);
    if ((status == PLK_OK) == expected.empty())
        Fail("a handle and its engine disagree", text);
    if (status != PLK_OK)
        return RequireRefusal(failure, text);
    for (std::size_t row = rows; row-- != 0;)
        if (ApplyHandle(handle, steps, row, (steps.size() + row) % mostPixels) != expected[row])
            Fail("a handle gives other rows", text);
    plk_pattern_free(handle);
}

// The bytes may be any, with zero bytes within too.
void MakeHandle(const std::string& bytes)
{
    plk_pattern* handle = nullptr;
    plk_pattern_create(bytes.data(), bytes.size(), nullptr, &handle, nullptr);
    plk_pattern_free(handle);
    plk_pattern_load(bytes.data(), bytes.size(), &handle, nullptr);
    plk_pattern_free(handle);
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
    std::vector<Bytes> vectorRows;
    if (vector != nullptr)
        vectorRows = ApplyRows(*vector, steps);
    if (portable != nullptr && vector != nullptr && portableRows != vectorRows)
        Fail("the engines disagree", text);
    CompareHandle(text, PLK_ENGINE_X86, steps, portableRows);
    CompareHandle(text, PLK_ENGINE_AUTOMATIC, steps, vectorRows);
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
    // One at the end alone is none of the text.
    if (text.size() + 1 < whole.size())
        zvk::Pelkraft::MakeHandle(whole);
    return 0;
}
