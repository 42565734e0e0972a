#pragma once

#include "common/image_row_format.h"
#include "common/row_size.h"

#include <cstdint>

namespace zvk::Pelkraft {

// One entry for each channel of the destination names the source's channel, or is negative for
// zeros.
struct ChannelMap
{
    std::uint64_t entryCount = 0;
    const std::int32_t* entries = nullptr;
};

// One conversion as it is asked for.
struct ConversionRequest
{
    RowGeometry source;
    RowGeometry destination;
    std::int32_t sseVersion;
    // The signed repeat factor; a negative one reads the source back to front.
    std::int32_t factor = 1;
    // A repeat may have the factor 1, and a map no entries: both are options all the same.
    bool repeats = false;
    bool maps = false;
    ChannelMap map = {};
};

struct FormatPair
{
    ImageRowFormat source;
    ImageRowFormat destination;
};

// One row to convert, with everything already checked.
struct ConversionJob
{
    std::int32_t sseVersion;
    const unsigned char* sourceData;
    unsigned char* destinationData;
    ImageRowFormat source;
    ImageRowFormat destination;
};

} // namespace zvk::Pelkraft
