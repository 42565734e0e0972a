#include "tests/bounds/covered_bytes.h"
#include "tests/copy/copy_reach.h"
#include "tests/direct/levels.h"
#include "tests/pattern/pattern_grid.h"
#include "tests/support/conversion_grid.h"
#include "tests/undefined_bytes/defined_samples.h"
#include "tests/undefined_bytes/memory_shadow.h"

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <vector>

// Runs conversions, pattern rows and copies into memory without a defined bit, under a tool that
// knows of each bit whether it has been set: what an operation covers must be defined afterwards,
// and the tool reports each branch and each address that hangs on an undefined bit. Stands alone,
// without a test framework, since all that handles such memory must be compiled with the tool.
//   undefined_bytes EVERY   takes one of so many cases
namespace zvk::Pelkraft::TestSupport {
namespace {

std::uint64_t every = 1;
// The levels that are gone through: those of the processor, as the tool shows it, which the tool
// can follow.
std::vector<int> levels;
std::uint64_t failures = 0;

class Turn
{
public:
    explicit Turn(std::uint64_t newOf = every) : of(newOf) {}

    bool Comes()
    {
        const bool comes = asked++ % of == 0;
        count += comes ? 1 : 0;
        return comes;
    }
    void Print(const char* what) const
    {
        std::printf("%" PRIu64 " %s without an undefined byte\n", count, what);
    }

private:
    std::uint64_t of;
    std::uint64_t asked = 0;
    std::uint64_t count = 0;
};

// Printed number by number: texts of numbers come out of the library's own file, so that
// MemorySanitizer takes them for undefined.
void Fail(const char* what, std::size_t byte, std::initializer_list<int> numbers)
{
    std::printf("undefined byte %zu: %s", byte, what);
    for (const int number : numbers)
        std::printf(" %d", number);
    std::printf("\n");
    ++failures;
}

void FailConversion(const ConversionCase& oneCase, int level, std::size_t byte)
{
    const auto& [from, to, operation, forcePortable] = oneCase;
    Fail("conversion of width, channels, bits, planar of both, factor, portable, level, map:", byte,
         {from.width, from.channels, from.bits, from.planar, to.width, to.channels, to.bits,
          to.planar, operation.factor, forcePortable, level});
    for (const int entry : operation.map)
        std::printf("    %d\n", entry);
}

// Or all that follows would prove nothing.
bool ToolKnowsUndefinedBits()
{
    unsigned char bytes[3] = {1, 2, 3};
    unsigned char copy[3] = {};
    MarkUndefined(bytes + 1, 1);
    bytes[1] = static_cast<unsigned char>((bytes[1] & 0x80U) | 0x05U);
    std::memcpy(copy, bytes, sizeof copy);
    const bool seesCopy = FirstUndefined(copy, sizeof copy) == 1;
    copy[1] = static_cast<unsigned char>(copy[1] & 0x0FU);
    return seesCopy && FirstUndefined(copy, sizeof copy) == sizeof copy;
}

void Convert(const ConversionCase& oneCase, int level)
{
    Bytes source = BarelyDefinedSource(oneCase);
    Bytes destination(NaiveRowBytes(oneCase.destination));
    MarkUndefined(destination.data(), destination.size());
    RunConversion(oneCase, source.data(), destination.data());
    ForgetLeftPacked(oneCase, destination);
    const int pixels =
        CountSetPixels(oneCase.source, oneCase.destination, oneCase.operation.factor);
    const CoveredBytes covered = BytesOfPixels(oneCase.destination, pixels);
    for (std::size_t i = 0; i != destination.size(); ++i)
        if (covered[i] && FirstUndefined(&destination[i], 1) == 0)
            return FailConversion(oneCase, level, i);
}

void ConvertAll()
{
    std::vector<int> widths = WidthsUpTo(40);
    widths.insert(widths.end(), {63, 64, 65, 127, 128, 129, 255, 256, 257});
    Turn turn;
    for (const int level : levels) {
        const LimitedLevel limited(level);
        ConversionGrid{{1, 2, 3, 4, 5, 16, 17, 41, 81}, widths}.ForEach(
            [&turn, level](const ConversionCase& oneCase) {
                if (turn.Comes())
                    Convert(oneCase, level);
            });
    }
    turn.Print("conversions");
}

void ApplyRow(DotWeavePattern& pattern, const PatternShape& shape, std::size_t pixels)
{
    Bytes source = NoisySteps(pixels * static_cast<std::size_t>(shape.inColors));
    Bytes destination(pixels * static_cast<std::size_t>(shape.outInks));
    MarkUndefined(destination.data(), destination.size());
    pattern.ApplyPattern(source.data(), destination.data(), static_cast<unsigned long>(pixels));
    const std::size_t first = FirstUndefined(destination.data(), destination.size());
    if (first != destination.size())
        Fail("pattern row of engine, version, in-colours, inks, draws:", first,
             {shape.engine, shape.version, shape.inColors, shape.outInks, shape.draws});
}

void ApplyPatterns(Turn& turn)
{
    constexpr std::size_t widths[] = {0, 1, 2, 3, 7, 8, 15, 16, 17, 31, 32, 33, 65, 266};
    for (const PatternShape& shape : AllPatternShapes()) {
        if (!turn.Comes())
            continue;
        std::string text = TextOf(shape);
        DotWeavePattern pattern(text.data(), shape.engine);
        for (const std::size_t pixels : widths) {
            ApplyRow(pattern, shape, pixels);
            pattern.ResetRandomizer();
        }
    }
}

void ApplyAllPatterns()
{
    // They are few beside the conversions.
    Turn turn(every / 64 + 1);
    for (const int level : levels) {
        const LimitedLevel limited(level);
        ApplyPatterns(turn);
    }
    turn.Print("patterns in rows of all kinds of width");
}

void Copy(const CopyShape& shape)
{
    // Units, since two of the copies take 16-aligned memory alone.
    struct alignas(16) Unit
    {
        unsigned char bytes[16];
    };
    const std::size_t reach = ReachOf(shape);
    std::vector<Unit> source((reach + 15) / 16);
    std::vector<Unit> destination(source.size());
    auto* const to = reinterpret_cast<unsigned char*>(destination.data());
    MarkUndefined(to, destination.size() * 16);
    RunCopy(shape, reinterpret_cast<unsigned char*>(source.data()), to);
    const std::size_t first = FirstUndefined(to, reach);
    if (first != reach)
        Fail("copy of kind, size, pixelBytes:", first, {shape.kind, shape.size, shape.pixelBytes});
}

void CopyAll()
{
    Turn turn;
    for (const CopyShape& shape : AllCopyShapes(266))
        if (turn.Comes())
            Copy(shape);
    turn.Print("copies");
}

// The conversions that take portable code at any level stand for level 0.
void ChooseLevels()
{
    for (const int level : LevelsOfThisProcessor()) {
        if (level > HighestFollowedLevel())
            std::printf("level %d not run: %s does not follow it\n", level, ShadowTool());
        else if (level != 0)
            levels.push_back(level);
    }
    if (levels.empty())
        levels.push_back(0);
}

int RunAll()
{
    if (ShadowTool() == nullptr || !ToolKnowsUndefinedBits()) {
        std::printf("undefined_bytes: no tool that knows of undefined bits\n");
        return 2;
    }
    std::printf("undefined_bytes under %s\n", ShadowTool());
    ChooseLevels();
    ConvertAll();
    ApplyAllPatterns();
    CopyAll();
    return failures == 0 ? 0 : 1;
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport

int main(int argumentCount, char** arguments)
{
    if (argumentCount > 1)
        zvk::Pelkraft::TestSupport::every = std::strtoul(arguments[1], nullptr, 10);
    if (zvk::Pelkraft::TestSupport::every == 0)
        return 2;
    return zvk::Pelkraft::TestSupport::RunAll();
}
