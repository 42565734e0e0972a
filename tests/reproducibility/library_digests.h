#pragma once

#include "pelkraft/dot_weave_pattern.h"
#include "tests/pattern/naive_pattern.h"
#include "tests/reproducibility/golden_digests.h"

#include <array>
#include <string>

// The library's own digests of the golden cases.
namespace zvk::Pelkraft::TestSupport {

// The destination row of a golden conversion, and its digest.
Bytes LibraryConversionRow(int number, bool forcePortable);
std::string LibraryConversionDigest(int number, bool forcePortable);

// True if the portable road leaves channels of it packed, so that it has no golden bytes there.
bool IsLeftPackedSomewhere(int number);

// One engine's part in the digests of a pattern.
struct EngineDigests
{
    std::array<std::string, 3> pictures;
    std::string afterReset;
    std::string allPictures;
};

DotWeavePattern BuildPattern(NaivePattern description, DotWeavePattern::Engine engine);

// Each picture by a pattern built for it alone.
EngineDigests LibraryPatternDigests(int number, int seedNumber, DotWeavePattern::Engine engine);

// One row into a destination that held other bytes before.
Bytes ApplyRow(DotWeavePattern& pattern, const Bytes& source);

} // namespace zvk::Pelkraft::TestSupport
