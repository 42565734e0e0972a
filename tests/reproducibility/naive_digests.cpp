#include "tests/pattern/naive_reference.h"
#include "tests/reproducibility/digest.h"
#include "tests/reproducibility/golden_cases.h"
#include "tests/reproducibility/golden_digests.h"

namespace zvk::Pelkraft::TestSupport {

Bytes NaiveConversionRow(int number)
{
    const GoldenConversion made = MakeGoldenConversion(number);
    return NaiveConvert(made.source, made.sourceRow, made.destination, made.before, made.operation);
}

std::string NaiveConversionDigest(int number)
{
    return Digest().Add(NaiveConversionRow(number)).Hex();
}

PatternDigests NaivePatternDigests(int number, int seedNumber)
{
    const NaivePattern pattern = MakeGoldenPattern(number, seedNumber);
    const NaiveSimulation fresh(pattern);
    PatternDigests digests;
    Digest reference;
    for (std::size_t size = 0; size < std::size(pictureSizes); ++size) {
        const auto picture = MakeGoldenPicture(pattern, pictureSizes[size], seedNumber);
        NaiveSimulation simulation(fresh);
        digests.pictures[size] =
            DigestOfRows(picture, [&](const Bytes& row) { return simulation.Row(row); });
        NaiveReference drawn(pattern);
        for (const Bytes& row : picture)
            reference.Add(drawn.Apply(row));
    }
    digests.reference = reference.Hex();
    NaiveSimulation again(fresh);
    again.Reset(true);
    digests.afterReset = DigestOfRows(MakeGoldenPicture(pattern, pictureSizes[0], seedNumber),
                                      [&](const Bytes& row) { return again.Row(row); });
    return digests;
}

} // namespace zvk::Pelkraft::TestSupport
