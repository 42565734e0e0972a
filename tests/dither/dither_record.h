#pragma once

#include "pelkraft/dither.h"
#include "tests/dither/naive_dither.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

struct FreeDither
{
    void operator()(plk_dither* dither) const { plk_dither_free(dither); }
};
using DitherHandle = std::unique_ptr<plk_dither, FreeDither>;

// The record of what the naive dither takes, with the lists that it refers to.
struct DitherRecord
{
    explicit DitherRecord(const NaiveDither& naive, std::int32_t road = PLK_ROAD_AUTOMATIC);

    std::vector<std::vector<std::uint32_t>> inks;
    std::vector<plk_tones> tones;
    std::vector<std::uint16_t> mask;
    plk_dither_spec spec = {};
};

} // namespace zvk::Pelkraft::TestSupport
