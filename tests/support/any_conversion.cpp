#include "tests/support/any_conversion.h"

#include "tests/direct/levels.h"
#include "tests/support/chain_row.h"
#include "tests/support/conversion_run.h"
#include "tests/support/random_bytes.h"

#include <algorithm>
#include <memory>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Takes numbers from the input; after its end all are 0.
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
    return Describe(oneCase) + ", level " + std::to_string(SystemTools::GetSseVersion()) + ": " +
           what;
}

// A case with the bytes of its rows. Where they overlap, both begin in one block of memory: the
// destination so many bytes after the source, or before it.
struct AnyCase
{
    ConversionCase oneCase;
    Bytes source;
    Bytes before;
    bool overlaps;
    int shift;
};

AnyCase TakeAnyCase(const std::uint8_t* bytes, std::size_t count)
{
    Numbers numbers(bytes, count);
    AnyCase any{TakeCase(numbers), {}, {}, false, 0};
    const auto seed = static_cast<std::uint32_t>(numbers.Next(65536));
    // Rows of more than one tile, and pixels that do not fit one.
    const int stretch = numbers.Next(8);
    NaiveGeometry& source = any.oneCase.source;
    NaiveGeometry& destination = any.oneCase.destination;
    if (stretch == 1) {
        source.width *= 17;
        destination.width *= 17;
    } else if (stretch == 2 && source.channels == destination.channels &&
               !any.oneCase.operation.hasMap) {
        source.channels *= 9;
        destination.channels *= 9;
    }
    any.source = RandomBytes(NaiveRowBytes(source), seed);
    any.before = RandomBytes(NaiveRowBytes(destination), seed + 1);
    any.overlaps = numbers.Next(4) == 1 && !any.source.empty() && !any.before.empty();
    if (any.overlaps) {
        const auto sourceBytes = static_cast<int>(any.source.size());
        const auto rowBytes = static_cast<int>(any.before.size());
        any.shift = static_cast<int>(RandomBytes(1, seed + 2)[0]) * 65536 + numbers.Next(65536);
        any.shift = any.shift % (sourceBytes + rowBytes - 1) - rowBytes + 1;
    }
    return any;
}

// The bytes of all memory after the conversion, and its text if it was refused.
struct Outcome
{
    Bytes source;
    Bytes row;
    const char* refusal = nullptr;
};

// Row is the destination's class.
template <typename Row>
const char* ConvertTo(const ConversionCase& oneCase, unsigned char* source, unsigned char* row)
{
    const NaiveGeometry& from = oneCase.source;
    const NaiveGeometry& to = oneCase.destination;
    const ImageRow sourceRow(from.width, from.channels, from.bits, from.planar, source);
    Row destination(to.width, to.channels, to.bits, to.planar, row);
    try {
        RunConversion(oneCase, sourceRow, destination);
    } catch (const char* text) {
        return text;
    }
    return nullptr;
}

// Buffers of exactly the rows' size, so that the sanitizer sees a byte too many.
template <typename Row>
Outcome RunOn(const AnyCase& any, const ConversionCase& oneCase)
{
    const std::size_t sourceBytes = any.source.size();
    const std::size_t rowBytes = any.before.size();
    const auto source = std::make_unique<unsigned char[]>(sourceBytes);
    const auto row = std::make_unique<unsigned char[]>(rowBytes);
    std::copy(any.source.begin(), any.source.end(), source.get());
    std::copy(any.before.begin(), any.before.end(), row.get());
    Outcome outcome;
    outcome.refusal = ConvertTo<Row>(oneCase, source.get(), row.get());
    outcome.source.assign(source.get(), source.get() + sourceBytes);
    outcome.row.assign(row.get(), row.get() + rowBytes);
    return outcome;
}

template <typename Row>
Outcome RunInOneBlock(const AnyCase& any, const ConversionCase& oneCase)
{
    const auto sourceAt = static_cast<std::size_t>(std::max(0, -any.shift));
    const auto rowAt = static_cast<std::size_t>(std::max(0, any.shift));
    const std::size_t size = std::max(sourceAt + any.source.size(), rowAt + any.before.size());
    const auto block = std::make_unique<unsigned char[]>(size);
    std::copy(any.source.begin(), any.source.end(), block.get() + sourceAt);
    std::copy(any.before.begin(), any.before.end(), block.get() + rowAt);
    Outcome outcome;
    outcome.refusal = ConvertTo<Row>(oneCase, block.get() + sourceAt, block.get() + rowAt);
    outcome.row.assign(block.get(), block.get() + size);
    return outcome;
}

// Only the chain knows what comes out of rows that share bytes.
std::string CheckOverlap(const AnyCase& any, const ConversionCase& oneCase)
{
    const Outcome outcome = RunInOneBlock<ImageRow>(any, oneCase);
    if (outcome.refusal != nullptr || RunInOneBlock<ChainRow>(any, oneCase).row == outcome.row)
        return {};
    return Finding(oneCase, "of rows that overlap is not that of the chain");
}

std::string CheckSamples(const AnyCase& any, const ConversionCase& oneCase, Outcome& outcome)
{
    Bytes expected = NaiveConvert(oneCase.source, any.source, oneCase.destination, any.before,
                                  oneCase.operation);
    ForgetLeftPacked(oneCase, expected);
    ForgetLeftPacked(oneCase, outcome.row);
    return outcome.row == expected ? std::string() : Finding(oneCase, "differs from the reference");
}

std::string CheckRoad(const AnyCase& any, const ConversionCase& oneCase)
{
    Outcome outcome = RunOn<ImageRow>(any, oneCase);
    if (outcome.source != any.source)
        return Finding(oneCase, "the source has changed");
    // Without channels there is nothing to move, but a pair that no chain serves is refused.
    if (oneCase.destination.channels == 0)
        return {};
    if (outcome.refusal != nullptr) {
        if (outcome.row != any.before)
            return Finding(oneCase, "refused, and yet the row has changed");
        return IsExpectedToWork(oneCase) ? Finding(oneCase, outcome.refusal) : std::string();
    }
    if (!IsExpectedToWork(oneCase))
        return Finding(oneCase, "served, and yet it should not be");
    if (RunOn<ChainRow>(any, oneCase).row != outcome.row)
        return Finding(oneCase, "the direct road and the chain differ");
    return CheckSamples(any, oneCase, outcome);
}

std::string CheckBothKinds(const AnyCase& any, bool forcePortable)
{
    ConversionCase oneCase = any.oneCase;
    oneCase.forcePortable = forcePortable;
    const std::string finding = CheckRoad(any, oneCase);
    return finding.empty() && any.overlaps ? CheckOverlap(any, oneCase) : finding;
}

} // namespace

std::string CheckAnyConversion(const std::uint8_t* bytes, std::size_t count)
{
    const AnyCase any = TakeAnyCase(bytes, count);
    const std::string finding = CheckBothKinds(any, false);
    return finding.empty() ? CheckBothKinds(any, true) : finding;
}

std::string CheckAnyConversionAtAllLevels(const std::uint8_t* bytes, std::size_t count)
{
    const AnyCase any = TakeAnyCase(bytes, count);
    for (const int level : LevelsOfThisProcessor()) {
        const LimitedLevel limited(level);
        // At level 0 that is what the processor asks for.
        std::string finding = CheckBothKinds(any, level == 0);
        if (!finding.empty())
            return finding;
    }
    return {};
}

} // namespace zvk::Pelkraft::TestSupport
