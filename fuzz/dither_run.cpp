#include "tests/dither/any_dither.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    const std::string finding = zvk::Pelkraft::TestSupport::CheckAnyDither(bytes, count);
    if (!finding.empty()) {
        std::fprintf(stderr, "%s\n", finding.c_str());
        std::abort();
    }
    return 0;
}
