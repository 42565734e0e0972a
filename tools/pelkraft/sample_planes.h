#pragma once

#include "tools/pelkraft/row_pipeline.h"
#include "tools/pelkraft/row_plan.h"
#include "tools/pelkraft/tiff_file.h"
#include "tools/pelkraft/tiff_picture.h"

#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::Client {

// The samples of a page's rows channel by channel, each in a byte, or in two where they have 16
// bits.
class SamplePlanes
{
public:
    // For some channels of a page, or for all of them without a map.
    SamplePlanes(const TiffFile& file, const TiffPicture& picture, const std::vector<int>& map);

    std::int64_t Width() const { return plan.Request().to.width; }
    int Channels() const { return plan.Request().to.channels; }
    int SampleBytes() const { return plan.Request().to.bits / 8; }

    // Each thread has one of its own.
    class Row
    {
    public:
        explicit Row(const SamplePlanes& newPlanes);

        void Take(const unsigned char* fileRow) { pipeline.Run(fileRow, bytes.Data()); }
        // The samples of a channel of the row that was taken last.
        template <typename Sample>
        const Sample* Channel(int channel) const
        {
            return reinterpret_cast<const Sample*>(bytes.Data()) + planes.Width() * channel;
        }

    private:
        const SamplePlanes& planes;
        RowPipeline pipeline;
        RowBuffer bytes;
    };

private:
    RowPlan plan;
};

} // namespace zvk::Pelkraft::Client
