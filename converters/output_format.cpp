#include "converters/output_format.h"

namespace zvk::Pelkraft {

ImageRowFormat& SetInterleavedFormat(ImageRowFormat& out, std::int32_t bits, std::int32_t channels)
{
    out.bits = bits;
    out.layout = LayoutInterleaved;
    out.channels = channels;
    out.reversed = false;
    return out;
}

ImageRowFormat& KeepFormat(ImageRowFormat& out, const ImageRowFormat& input)
{
    out.bits = input.bits;
    out.layout = input.layout;
    out.channels = input.channels;
    out.reversed = input.reversed;
    return out;
}

} // namespace zvk::Pelkraft
