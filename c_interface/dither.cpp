#include "pelkraft/dither.h"

#include "c_interface/border.h"
#include "c_interface/dither_request.h"
#include "c_interface/record_size.h"
#include "c_interface/row_overlap.h"
#include "c_interface/row_views.h"
#include "dither/dither_rows.h"
#include "dither/mask.h"

#include <cstddef>
#include <limits>
#include <memory>

struct plk_dither
{
    explicit plk_dither(const zvk::Pelkraft::DitherRequest& request)
        : sourcePixelBytes(request.scales.size() * static_cast<std::uint64_t>(request.bits / 8)),
          targetPixelBytes(request.scales.size()), rows(zvk::Pelkraft::MakeDitherRows(request))
    {}

    std::uint64_t sourcePixelBytes;
    std::uint64_t targetPixelBytes;
    std::unique_ptr<const zvk::Pelkraft::DitherRows> rows;
};

namespace zvk::Pelkraft {

template <>
struct FieldEnds<plk_dither_facts>
{
    static constexpr std::array ends = {
        PELKRAFT_FIELD_END(plk_dither_facts, size),
        PELKRAFT_FIELD_END(plk_dither_facts, in_place),
        PELKRAFT_FIELD_END(plk_dither_facts, source_pixel_bytes),
        PELKRAFT_FIELD_END(plk_dither_facts, target_pixel_bytes),
    };
};

namespace {

const plk_dither& Required(const plk_dither* dither)
{
    if (dither == nullptr)
        throw NullRefusal("dither");
    return *dither;
}

// A page's part whose first pixel stands at x and y, which count modulo the mask's side.
struct PagePart
{
    std::uint64_t x;
    std::uint64_t y;
    std::uint64_t rows;
    std::uint64_t pixels;
};

void RequirePixels(std::uint64_t pixels, std::uint64_t pixelBytes)
{
    constexpr std::uint64_t mostBytes = std::numeric_limits<std::int64_t>::max();
    const std::uint64_t most = pixelBytes == 0 ? pixels : mostBytes / pixelBytes;
    if (pixels > most)
        throw Refusal(PLK_INVALID, FieldName("pixels"), Limited(pixels), Limited(most),
                      "pixels is ", pixels, "; no memory holds so many, and ", most,
                      " is the most");
}

// Steps that are narrower than their samples may take their place as long as no row reaches into
// the next one.
bool MayBeInPlace(const RowSide& source, const RowSide& target, std::uint64_t rows)
{
    return rows < 2 || source.covered.count == target.covered.count ||
           Magnitude(source.view.rowStride) >= source.covered.count;
}

void Run(const plk_dither& dither, const PagePart& part, const RowView& source,
         const RowView& target)
{
    if (part.rows == 0)
        return;
    RequirePixels(part.pixels, dither.sourcePixelBytes);
    const RowSide from = InterleavedSide(source, part.pixels, dither.sourcePixelBytes);
    const RowSide to = InterleavedSide(target, part.pixels, dither.targetPixelBytes);
    RequireMemory(from, to, part.rows, MayBeInPlace(from, to, part.rows));
    // There may be more rows of no pixels than anyone could count.
    if (!to.covered.HasBytes())
        return;
    for (std::uint64_t row = 0; row != part.rows; ++row)
        dither.rows->Apply(part.x, part.y + row, RowAt(source, row),
                           const_cast<unsigned char*>(RowAt(target, row)),
                           static_cast<std::size_t>(part.pixels));
}

} // namespace
} // namespace zvk::Pelkraft

using namespace zvk::Pelkraft;

plk_status plk_dither_create(const plk_dither_spec* spec, plk_dither** dither, plk_failure* failure)
{
    return MakeAtBorder("dither", dither, failure,
                        [=] { return std::make_unique<plk_dither>(CheckDitherSpec(spec)); });
}

plk_status plk_dither_run(const plk_dither* dither, int64_t x, int64_t y, uint64_t rows,
                          uint64_t pixels, const plk_source* source, const plk_target* target,
                          plk_failure* failure)
{
    return AtBorder(failure, [=] {
        const plk_dither& handle = Required(dither);
        const RowView from = ViewOf(source);
        const RowView to = ViewOf(target);
        Run(handle, {static_cast<std::uint64_t>(x), static_cast<std::uint64_t>(y), rows, pixels},
            from, to);
    });
}

plk_status plk_dither_needs(const plk_dither* dither, plk_dither_facts* facts, plk_failure* failure)
{
    return AtBorder(failure, [=] {
        const plk_dither& handle = Required(dither);
        RequireKnown(facts, "facts");
        WriteRecord(facts, {0, 1, handle.sourcePixelBytes, handle.targetPixelBytes});
    });
}

const uint16_t* plk_dither_mask(void)
{
    return BuiltInMask();
}

void plk_dither_free(plk_dither* dither)
{
    delete dither;
}
