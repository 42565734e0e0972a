#include "tests/pattern/naive_reference.h"
#include "tests/reproducibility/digest.h"
#include "tests/reproducibility/golden_cases.h"
#include "tests/reproducibility/golden_digests.h"
#include "tests/reproducibility/library_digests.h"
#include "zvk/system_tools.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

// Holds the library as a customer links it against goldens.txt, at every level that it has here:
//   check_goldens GOLDENS [EVERY]
// It takes every EVERY-th seed of the patterns. A difference names the conversion or the pattern,
// the row and the byte; the last line is the same wherever all is equal but for the levels.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int levels[] = {0, 3, 6, 7};
constexpr struct
{
    DotWeavePattern::Engine engine;
    const char* name;
} engines[] = {{DotWeavePattern::Automatic, "Automatic"},
               {DotWeavePattern::X86, "X86"},
               {DotWeavePattern::Sse, "Sse"},
               {DotWeavePattern::Reference, "Reference"}};

// All digests of one level, and whether each was right.
struct Outcome
{
    Digest all;
    bool equal = true;
    int leftPacked = 0;
};

std::string DescribeByte(const Bytes& is, const Bytes& wanted)
{
    const auto place = std::mismatch(is.begin(), is.end(), wanted.begin(), wanted.end());
    if (place.first == is.end() || place.second == wanted.end())
        return is.size() == wanted.size() ? "" : "another number of bytes";
    std::ostringstream text;
    text << "byte " << place.first - is.begin() << " is " << int{*place.first} << ", not "
         << int{*place.second};
    return text.str();
}

void Report(Outcome& outcome, const std::string& name, const std::string& where)
{
    outcome.equal = false;
    std::cout << name << " at level " << SystemTools::GetSseVersion() << ": " << where << '\n';
}

void CheckConversion(int number, const GoldenDigests& goldens, Outcome& outcome)
{
    // The portable road has no golden bytes for what it leaves packed.
    if (SystemTools::GetSseVersion() < 3 && IsLeftPackedSomewhere(number)) {
        outcome.all.Add(goldens.Conversion(number));
        ++outcome.leftPacked;
        return;
    }
    const std::string digest = LibraryConversionDigest(number, false);
    outcome.all.Add(digest);
    if (digest == goldens.Conversion(number))
        return;
    const std::string byte =
        DescribeByte(LibraryConversionRow(number, false), NaiveConversionRow(number));
    Report(outcome, ConversionName(number),
           byte.empty() ? "the row is right, the golden digest is not" : "row 0, " + byte);
}

using ApplyToRow = std::function<Bytes(const Bytes& row)>;

ApplyToRow MakeNaiveApply(const NaivePattern& description, DotWeavePattern::Engine engine)
{
    if (engine == DotWeavePattern::Reference)
        return [naive = NaiveReference(description)](const Bytes& row) mutable {
            return naive.Apply(row);
        };
    return
        [naive = NaiveSimulation(description)](const Bytes& row) mutable { return naive.Row(row); };
}

// The first byte at which a picture differs from that of the naive references.
std::string DescribePattern(int number, int seed, DotWeavePattern::Engine engine)
{
    const NaivePattern description = MakeGoldenPattern(number, seed);
    for (const PictureSize& size : pictureSizes) {
        DotWeavePattern pattern = BuildPattern(description, engine);
        const ApplyToRow applyNaively = MakeNaiveApply(description, engine);
        int y = 0;
        for (const Bytes& row : MakeGoldenPicture(description, size, seed)) {
            const std::string byte = DescribeByte(ApplyRow(pattern, row), applyNaively(row));
            if (!byte.empty())
                return "picture " + std::to_string(size.width) + " x " +
                       std::to_string(size.height) + ", row " + std::to_string(y) + ", " + byte;
            ++y;
        }
    }
    return "the pictures are right; the row after a reset or the golden digest is not";
}

bool IsGolden(const EngineDigests& is, const PatternDigests& golden, DotWeavePattern::Engine engine)
{
    if (engine == DotWeavePattern::Reference)
        return is.allPictures == golden.reference;
    const bool startsLater =
        engine == DotWeavePattern::X86 ||
        (engine == DotWeavePattern::Automatic && SystemTools::GetSseVersion() < 3);
    return std::equal(is.pictures.begin(), is.pictures.end(), golden.pictures) &&
           is.afterReset == (startsLater ? golden.afterReset : golden.pictures[0]);
}

void CheckPattern(int number, int seed, const GoldenDigests& goldens, Outcome& outcome)
{
    for (const auto& [engine, name] : engines) {
        // That engine needs the byte shuffles of level 3, and never asks for the level.
        if (engine == DotWeavePattern::Sse && SystemTools::GetSseVersion() < 3)
            continue;
        const EngineDigests digests = LibraryPatternDigests(number, seed, engine);
        if (engine == DotWeavePattern::X86 || engine == DotWeavePattern::Reference)
            outcome.all.Add(digests.allPictures);
        if (!IsGolden(digests, goldens.Pattern(number, seed), engine))
            Report(outcome, PatternName(number, seed) + " by " + name,
                   DescribePattern(number, seed, engine));
    }
}

Outcome CheckLevel(const GoldenDigests& goldens, int every)
{
    Outcome outcome;
    for (int number = 0; number < goldenConversionCount; ++number)
        CheckConversion(number, goldens, outcome);
    for (int number = 0; number < goldenPatternCount; ++number)
        for (int seed = 0; seed < goldenSeedCount; seed += every)
            CheckPattern(number, seed, goldens, outcome);
    return outcome;
}

int Check(const std::string& path, int every)
{
    const GoldenDigests goldens(path);
    const int patterns = goldenPatternCount * ((goldenSeedCount + every - 1) / every);
    const int highest = SystemTools::GetSseVersion();
    bool equal = true;
    for (const int level : levels) {
        if (level > highest) {
            std::cout << "level " << level << " is not run: this processor has " << highest << '\n';
            continue;
        }
        SystemTools::LimitSseVersion(level);
        const Outcome outcome = CheckLevel(goldens, every);
        equal = equal && outcome.equal;
        std::cout << "digest of " << goldenConversionCount << " conversions and " << patterns
                  << " patterns at level " << level << ": " << outcome.all.Hex()
                  << (outcome.equal ? ", as the goldens" : ", NOT as the goldens");
        if (outcome.leftPacked != 0)
            std::cout << "; " << outcome.leftPacked
                      << " conversions are not run, whose channels stay packed, nor is Sse";
        std::cout << '\n';
    }
    return equal ? 0 : 1;
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport

int main(int argc, char** argv)
{
    const int every = argc == 3 ? std::atoi(argv[2]) : 1;
    if (argc < 2 || argc > 3 || every < 1) {
        std::cerr << "usage: check_goldens GOLDENS [EVERY]\n";
        return 2;
    }
    try {
        return zvk::Pelkraft::TestSupport::Check(argv[1], every);
    } catch (const std::exception& failure) {
        std::cerr << "check_goldens: " << failure.what() << '\n';
        return 2;
    }
}
