#include "tests/reproducibility/library_digests.h"

#include "tests/reproducibility/digest.h"
#include "tests/reproducibility/golden_cases.h"
#include "tests/support/conversion_run.h"

namespace zvk::Pelkraft::TestSupport {
namespace {

ConversionCase CaseOf(const GoldenConversion& made, bool forcePortable)
{
    return {made.source, made.destination, made.operation, forcePortable};
}

} // namespace

Bytes LibraryConversionRow(int number, bool forcePortable)
{
    GoldenConversion made = MakeGoldenConversion(number);
    RunConversion(CaseOf(made, forcePortable), made.sourceRow.data(), made.before.data());
    return made.before;
}

std::string LibraryConversionDigest(int number, bool forcePortable)
{
    return Digest().Add(LibraryConversionRow(number, forcePortable)).Hex();
}

bool IsLeftPackedSomewhere(int number)
{
    const ConversionCase portable = CaseOf(MakeGoldenConversion(number), true);
    for (int channel = 0; channel < portable.destination.channels; ++channel)
        if (IsLeftPacked(portable, channel))
            return true;
    return false;
}

DotWeavePattern BuildPattern(NaivePattern description, DotWeavePattern::Engine engine)
{
    // The reference class reads values without positions at other versions.
    if (engine == DotWeavePattern::Reference)
        description.version = 2;
    std::string text = description.Text();
    return DotWeavePattern(text.data(), engine);
}

EngineDigests LibraryPatternDigests(int number, int seedNumber, DotWeavePattern::Engine engine)
{
    const NaivePattern description = MakeGoldenPattern(number, seedNumber);
    EngineDigests digests;
    Digest all;
    for (std::size_t size = 0; size < std::size(pictureSizes); ++size) {
        const auto picture = MakeGoldenPicture(description, pictureSizes[size], seedNumber);
        DotWeavePattern pattern = BuildPattern(description, engine);
        const auto apply = [&](const Bytes& row) { return ApplyRow(pattern, row); };
        digests.pictures[size] = DigestOfRows(picture, [&](const Bytes& row) {
            Bytes inks = apply(row);
            all.Add(inks);
            return inks;
        });
        if (size == 0) {
            pattern.ResetRandomizer();
            digests.afterReset = DigestOfRows(picture, apply);
        }
    }
    digests.allPictures = all.Hex();
    return digests;
}

Bytes ApplyRow(DotWeavePattern& pattern, const Bytes& source)
{
    const auto pixels = static_cast<unsigned long>(
        source.size() / static_cast<std::size_t>(pattern.GetInColorCount()));
    Bytes from = source;
    Bytes to(pixels * static_cast<std::size_t>(pattern.GetOutColorCount()), 0xA5);
    pattern.ApplyPattern(from.data(), to.data(), static_cast<unsigned long>(pixels));
    return to;
}

} // namespace zvk::Pelkraft::TestSupport
