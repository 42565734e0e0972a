#include "tests/portal/portal_run.h"

#include <gtest/gtest.h>

#include <new>

namespace zvk::Pelkraft::TestSupport {

ImageRowFormat MakeFormat(std::int32_t bits, std::int32_t layout, std::int32_t channels,
                          std::int64_t width)
{
    ImageRowFormat format;
    format.bits = bits;
    format.layout = layout;
    format.channels = channels;
    format.width = width;
    format.activeWidth = width;
    return format;
}

std::size_t RowBytes(const ImageRowFormat& format)
{
    const std::int64_t lineBytes = format.layout == LayoutPlanarPacked
                                       ? (format.width * format.bits + 7) / 8
                                       : format.width * (format.bits > 8 ? 2 : 1);
    return static_cast<std::size_t>(lineBytes * format.channels);
}

Bytes RunPortal(const PortalCase& portalCase, const Bytes& source, const Records& chain,
                const Placement& placement, unsigned char fill)
{
    const GuardedBuffer from(source, placement.flush, placement.gap);
    const GuardedBuffer to(Bytes(RowBytes(portalCase.destination), fill), placement.flush,
                           placement.gap);
    ConversionPortal(
        {portalCase.sseVersion, from.data(), to.data(), portalCase.source, portalCase.destination},
        chain.size(), chain.data());
    EXPECT_EQ(source, from.bytes());
    return to.bytes();
}

std::string FailureOf(const PortalCase& portalCase, const Bytes& source, const Records& chain)
{
    const Bytes before(RowBytes(portalCase.destination), 0xEE);
    Bytes row = before;
    std::string text;
    try {
        ConversionPortal({portalCase.sseVersion, source.data(), row.data(), portalCase.source,
                          portalCase.destination},
                         chain.size(), chain.data());
        return text;
    } catch (const char* failure) {
        text = failure;
    } catch (const std::bad_alloc& failure) {
        text = failure.what();
    }
    EXPECT_EQ(before, row);
    return text;
}

} // namespace zvk::Pelkraft::TestSupport
