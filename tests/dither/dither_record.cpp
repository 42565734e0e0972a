#include "tests/dither/dither_record.h"

namespace zvk::Pelkraft::TestSupport {

DitherRecord::DitherRecord(const NaiveDither& naive, std::int32_t road) : mask(naive.mask)
{
    for (const NaiveTones& channel : naive.channels)
        inks.emplace_back(channel.inks.begin(), channel.inks.end());
    for (std::size_t i = 0; i != inks.size(); ++i)
        tones.push_back({inks[i].data(), static_cast<std::int32_t>(inks[i].size()),
                         static_cast<std::int32_t>(naive.channels[i].noInk),
                         static_cast<std::int32_t>(naive.channels[i].fullInk), 0});
    spec.size = sizeof spec;
    spec.bits = naive.bits;
    spec.tones = tones.data();
    spec.channels = static_cast<std::int32_t>(tones.size());
    spec.road = road;
    spec.mask = mask.data();
}

} // namespace zvk::Pelkraft::TestSupport
