#include "tests/support/any_conversion.h"

#include "tests/support/conversion_run.h"
#include "tests/support/random_bytes.h"

#include <algorithm>
#include <memory>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Takes numbers from the input; behind its end all are 0.
class Numbers
{
public:
    Numbers(const std::uint8_t* newBytes, std::size_t newCount) : bytes(newBytes), count(newCount)
    {}

    int Next(int limit)
    {
        unsigned value = 0;
        for (int i = 0; i != 2; ++i) {
            value <<= 8;
            if (count != 0) {
                value |= *bytes++;
                --count;
            }
        }
        return static_cast<int>(value % static_cast<unsigned>(limit));
    }

private:
    const std::uint8_t* bytes;
    std::size_t count;
};

NaiveGeometry TakeGeometry(Numbers& numbers)
{
    constexpr int depths[] = {1, 2, 8, 10, 16, 8, 16, 4};
    const int width = numbers.Next(300);
    const int channels = numbers.Next(40);
    return {width, channels, depths[numbers.Next(8)], numbers.Next(2) == 1};
}

ConversionCase TakeCase(Numbers& numbers)
{
    constexpr int factors[] = {1, 2, 4, -1, -2, -4, 0, 3};
    ConversionCase oneCase{TakeGeometry(numbers), TakeGeometry(numbers), {}, false};
    const int kind = numbers.Next(4);
    oneCase.operation.isFill = kind == 0;
    if (kind == 1) {
        oneCase.operation.factor = factors[numbers.Next(8)];
    } else if (kind >= 2) {
        oneCase.operation.hasMap = true;
        // Entries up to the source's channels: beyond them the roads differ.
        for (int i = 0; i != oneCase.destination.channels; ++i)
            oneCase.operation.map.push_back(numbers.Next(oneCase.source.channels + 1) - 1);
    }
    if (kind < 2 && numbers.Next(8) != 0)
        oneCase.destination.channels = oneCase.source.channels;
    return oneCase;
}

bool IsExpectedToWork(const ConversionCase& oneCase)
{
    const auto isDepth = [](int bits) { return bits != 4; };
    const int factor = oneCase.operation.factor;
    if (factor == 0 || factor == 3 || !isDepth(oneCase.source.bits) ||
        !isDepth(oneCase.destination.bits))
        return false;
    if (!oneCase.operation.hasMap && oneCase.source.channels != oneCase.destination.channels)
        return false;
    NaiveGeometry source = oneCase.source;
    NaiveGeometry destination = oneCase.destination;
    if (oneCase.operation.hasMap)
        source.channels = destination.channels;
    return destination.channels == 0
               ? true
               : oneCase.source.channels != 0 && IsServed(source, destination, oneCase.operation);
}

std::string Finding(const ConversionCase& oneCase, const char* what)
{
    return Describe(oneCase) + ": " + what;
}

// The bytes after the conversion, or those before it and a text.
struct Outcome
{
    Bytes row;
    const char* refusal = nullptr;
};

// Buffers of exactly the rows' size, so that the sanitizer sees a byte too many.
Outcome RunOn(const ConversionCase& oneCase, const Bytes& sourceBytes, const Bytes& before)
{
    const auto source = std::make_unique<unsigned char[]>(sourceBytes.size());
    const auto row = std::make_unique<unsigned char[]>(before.size());
    std::copy(sourceBytes.begin(), sourceBytes.end(), source.get());
    std::copy(before.begin(), before.end(), row.get());
    Outcome outcome;
    try {
        RunConversion(oneCase, source.get(), row.get());
    } catch (const char* text) {
        outcome.refusal = text;
    }
    outcome.row.assign(row.get(), row.get() + before.size());
    return outcome;
}

std::string CheckRoad(const ConversionCase& oneCase, const Bytes& sourceBytes, const Bytes& before)
{
    Outcome outcome = RunOn(oneCase, sourceBytes, before);
    // Without channels there is nothing to move, but a pair that no chain serves is refused.
    if (oneCase.destination.channels == 0)
        return {};
    if (outcome.refusal != nullptr) {
        if (outcome.row != before)
            return Finding(oneCase, "refused, and yet the row has changed");
        return IsExpectedToWork(oneCase) ? Finding(oneCase, outcome.refusal) : std::string();
    }
    if (!IsExpectedToWork(oneCase))
        return Finding(oneCase, "served, and yet it should not be");
    Bytes expected =
        NaiveConvert(oneCase.source, sourceBytes, oneCase.destination, before, oneCase.operation);
    ForgetLeftPacked(oneCase, expected);
    ForgetLeftPacked(oneCase, outcome.row);
    return outcome.row == expected ? std::string() : Finding(oneCase, "differs from the reference");
}

} // namespace

std::string CheckAnyConversion(const std::uint8_t* bytes, std::size_t count)
{
    Numbers numbers(bytes, count);
    ConversionCase oneCase = TakeCase(numbers);
    const auto seed = static_cast<std::uint32_t>(numbers.Next(65536));
    const Bytes source = RandomBytes(NaiveRowBytes(oneCase.source), seed);
    const Bytes before = RandomBytes(NaiveRowBytes(oneCase.destination), seed + 1);
    oneCase.forcePortable = false;
    const std::string finding = CheckRoad(oneCase, source, before);
    oneCase.forcePortable = true;
    return finding.empty() ? CheckRoad(oneCase, source, before) : finding;
}

} // namespace zvk::Pelkraft::TestSupport
