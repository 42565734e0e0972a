#pragma once

#include "portal/conversion_portal.h"
#include "tests/support/guarded_buffer.h"

#include <gtest/gtest.h>

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

// Both rows lie at the end or the start of their pages, some bytes away from it.
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

// Runs at each level and at several places, with the chain that makeChain(sseVersion) gives.
template <typename MakeChain>
void ExpectEverywhere(const Bytes& expected, PortalCase portalCase, const Bytes& source,
                      MakeChain makeChain)
{
    for (const std::int32_t sseVersion : {0, 2, 3, 7}) {
        portalCase.sseVersion = sseVersion;
        for (const Placement& placement :
             {Placement{}, Placement{Flush::AtStart, 0}, Placement{Flush::AtStart, 1},
              Placement{Flush::AtEnd, 5}})
            ASSERT_EQ(expected, RunPortal(portalCase, source, makeChain(sseVersion), placement))
                << "level " << sseVersion;
    }
}

// The text that the portal throws, "bad allocation" of std::bad_alloc included; empty if none.
// The destination is proved untouched.
std::string FailureOf(const PortalCase& portalCase, const Bytes& source, const Records& chain);

} // namespace zvk::Pelkraft::TestSupport
