#pragma once

#include "direct/level_changes_lanes.h"
#include "direct/mirror_lanes.h"
#include "direct/pack_split_lanes.h"
#include "direct/unpack_lanes.h"

// The table of a level's kernels for samples. The file that includes it gives the splitter of its
// vectors.
namespace zvk::Pelkraft {
namespace {

template <template <int channels, bool turned> typename Splitter>
constexpr SampleKernels MakeSampleKernels()
{
    return {
        Widen,
        Narrow,
        {Pack<1, 1>, Pack<2, 1>},
        {Unpack<1, 1>, Unpack<2, 1>},
        {Mirror<1>, Mirror<2>},
        {Pack<1, 2>, Pack<2, 2>},
        {Unpack<1, 2>, Unpack<2, 2>},
        {{nullptr, nullptr, PackSplit<1, Splitter<2, true>>, PackSplit<1, Splitter<3, true>>,
          PackSplit<1, Splitter<4, true>>},
         {nullptr, nullptr, PackSplit<2, Splitter<2, false>>, PackSplit<2, Splitter<3, false>>,
          PackSplit<2, Splitter<4, false>>}},
        {ChangeBytes<ToLevels<1>>, ChangeBytes<ToLevels<2>>},
        {ChangeBytes<ToTones<1>>, ChangeBytes<ToTones<2>>},
        Cut,
        Extend,
    };
}

} // namespace
} // namespace zvk::Pelkraft
