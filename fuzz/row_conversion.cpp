#include "tests/support/any_conversion.h"
#include "zvk/diagnostics.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

class SilentSink final : public zvk::Diagnostics::ILogSink
{
public:
    void Write(const wchar_t*) override {}
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    static SilentSink sink;
    zvk::Diagnostics::Seh::SetDefaultLog(&sink);
    const std::string finding =
        zvk::Pelkraft::TestSupport::CheckAnyConversionAtAllLevels(bytes, count);
    if (!finding.empty()) {
        std::fprintf(stderr, "%s\n", finding.c_str());
        std::abort();
    }
    return 0;
}
