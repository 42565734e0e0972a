#include "pelkraft/image_row.h"
#include "web/module/surface.h"

#include <cstdint>

namespace zvk::Pelkraft::Web {
namespace {

// JavaScript writes these records as numbers of 32 bits, in this order.
struct Row
{
    std::int32_t width;
    std::int32_t channels;
    std::int32_t bits;
    std::int32_t planar;
    unsigned char* data;

    ImageRow AsImageRow() const { return ImageRow(width, channels, bits, planar != 0, data); }
};

enum class Operation : std::int32_t
{
    Fill,
    Map,
    Repeat,
};

struct Conversion
{
    Row source;
    Row target;
    Operation operation;
    const std::int32_t* map;
    std::int32_t factor;
    std::int32_t portable;
};

static_assert(sizeof(Conversion) == 14 * sizeof(std::int32_t));

} // namespace

// The data of both rows are never null, so that no row allocates pixels of its own.
PELKRAFT_FOR_JAVASCRIPT(convert_row) const char* ConvertRow(const Conversion* conversion)
{
    return TextOfFailure([conversion] {
        const ImageRow source = conversion->source.AsImageRow();
        ImageRow target = conversion->target.AsImageRow();
        const bool portable = conversion->portable != 0;
        switch (conversion->operation) {
        case Operation::Fill:
            target.FillFrom(source, false, portable);
            break;
        case Operation::Map:
            target.FillFromWithRemap(source, conversion->map, false, portable);
            break;
        case Operation::Repeat:
            target.FillFromWithPixelRepeat(source, conversion->factor, false, portable);
            break;
        }
    });
}

} // namespace zvk::Pelkraft::Web
