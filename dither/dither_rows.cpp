#include "dither/dither_rows.h"

#include "dither/level_dither.h"
#include "dither/limit_dither.h"

namespace zvk::Pelkraft {
namespace {

// A program may hold some of them.
constexpr std::uint64_t mostLimitBytes = std::uint64_t{16} << 20;

} // namespace

std::unique_ptr<const DitherRows> MakeDitherRows(const DitherRequest& request)
{
    return LimitBytes(request) <= mostLimitBytes ? MakeLimitDither(request)
                                                 : MakeLevelDither(request);
}

} // namespace zvk::Pelkraft
