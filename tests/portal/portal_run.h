#pragma once

#include "portal/conversion_portal.h"
#include "tests/support/guarded_buffer.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

using Bytes = std::vector<unsigned char>;
using Records = std::vector<ChunkConvertFacility>;

// A row of which every pixel takes part.
ImageRowFormat MakeFormat(std::int32_t bits, std::int32_t layout, std::int32_t channels,
                          std::int64_t width);

// Bytes of a row, from the definition.
std::size_t RowBytes(const ImageRowFormat& format);

// Where both rows lie: at the end or the start of their pages, some bytes away from it.
struct Placement
{
    Flush flush = Flush::AtEnd;
    std::size_t gap = 0;
};

struct PortalCase
{
    std::int32_t sseVersion;
    ImageRowFormat source;
    ImageRowFormat destination;
};

// Runs the portal on rows of exactly their size, on a destination full of `fill`.
Bytes RunPortal(const PortalCase& portalCase, const Bytes& source, const Records& chain,
                const Placement& placement = {}, unsigned char fill = 0xEE);

// The text that the portal throws, "bad allocation" of std::bad_alloc included; empty if none.
// The destination is proved untouched.
std::string FailureOf(const PortalCase& portalCase, const Bytes& source, const Records& chain);

} // namespace zvk::Pelkraft::TestSupport
