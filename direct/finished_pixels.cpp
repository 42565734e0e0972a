#include "direct/finished_pixels.h"

#include "common/bit_sizes.h"

#include <cstring>

namespace zvk::Pelkraft {
namespace {

void Store(const DirectPlan& plan, const unsigned char* from, unsigned char* to, std::size_t bytes)
{
    if (plan.extras->streamed)
        plan.kernels->finish->stream(from, to, bytes);
    else
        std::memcpy(to, from, bytes);
}

} // namespace

void PatchPixels(const DirectPlan& plan, const PassTarget& pixels, std::size_t channels)
{
    if (plan.extras->patch != nullptr)
        PatchRow(*plan.kernels->finish, *plan.extras->patch,
                 {pixels.bytes, pixels.planeStep, pixels.firstChannel, channels, pixels.pixels});
}

void StorePixels(const DirectPlan& plan, const PassTarget& tile, const PassTarget& row,
                 std::size_t channels)
{
    PatchPixels(plan, tile, channels);
    const PassOutput& pass = plan.passes[plan.passCount - 1U];
    if (!pass.planar)
        return Store(plan, tile.bytes, row.bytes,
                     BytesOf(tile.pixels * tile.pixelChannels, pass.bits));
    for (std::size_t c = 0; c != channels; ++c) {
        const auto plane = static_cast<std::ptrdiff_t>(c);
        Store(plan, tile.bytes + plane * tile.planeStep, row.bytes + plane * row.planeStep,
              BytesOf(tile.pixels, pass.bits));
    }
}

} // namespace zvk::Pelkraft
