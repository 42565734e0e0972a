#include "tests/reproducibility/golden_cases.h"
#include "tests/reproducibility/golden_digests.h"

#include <iostream>

// Prints goldens.txt anew, from the naive references.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr const char* head =
    R"(# FNV-1a digests of what never changes, as write_goldens prints them.
# conversion NUMBER: the destination row
# pattern NUMBER seed NUMBER: three pictures, the first of them again after a reset of X86, and
#   all three by Reference
)";

void Write(std::ostream& out)
{
    out << head;
    for (int number = 0; number < goldenConversionCount; ++number)
        out << ConversionName(number) << ": " << NaiveConversionDigest(number) << '\n';
    for (int number = 0; number < goldenPatternCount; ++number)
        for (int seed = 0; seed < goldenSeedCount; ++seed) {
            const PatternDigests digests = NaivePatternDigests(number, seed);
            out << PatternName(number, seed) << ':';
            for (const std::string& picture : digests.pictures)
                out << ' ' << picture;
            out << ' ' << digests.afterReset << ' ' << digests.reference << '\n';
        }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport

int main()
{
    zvk::Pelkraft::TestSupport::Write(std::cout);
    return std::cout.flush() ? 0 : 1;
}
