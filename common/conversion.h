#pragma once

#include "common/image_row_format.h"
#include "common/row_size.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

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

// The pixels of each row that have a counterpart in the other.
struct ActiveWidths
{
    std::int64_t source;
    std::int64_t destination;
};

inline ActiveWidths ActiveWidthsOf(const ConversionRequest& request)
{
    const std::int64_t sourceWidth = request.source.width;
    const std::int64_t destinationWidth = request.destination.width;
    std::int64_t sourceActive = std::min(sourceWidth, destinationWidth);
    std::int64_t destinationActive = sourceActive;
    // Most calls have the factor 1, and a division takes longer than all else here.
    if (request.factor != 1) {
        const std::int64_t repeats = std::abs(std::int64_t{request.factor});
        sourceActive = std::min(sourceWidth, (destinationWidth + repeats - 1) / repeats);
        destinationActive = std::min(sourceWidth * repeats, destinationWidth);
    }
    return {sourceActive, destinationActive};
}

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
