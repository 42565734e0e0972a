#pragma once

#include "tests/dither/dither_record.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// The dither that must be made of a spec.
DitherHandle HandleOf(const NaiveDither& naive, std::int32_t road = PLK_ROAD_AUTOMATIC);

// Status, field, given and needed of a refusal, "1 bits 9 8"; "OK" where there was none.
std::string WordsOf(plk_status status, const plk_failure& failure);
std::string CreateWords(const plk_dither_spec* spec);

plk_source SourceOf(const void* base, std::uint64_t bytes, std::int64_t rowStride,
                    std::int64_t offset = 0);
plk_target TargetOf(void* base, std::uint64_t bytes, std::int64_t rowStride,
                    std::int64_t offset = 0);

// Rows of so many bytes, one directly after the other, which must be accepted.
Bytes RunRows(const plk_dither* dither, std::int64_t x, std::int64_t y, std::uint64_t rows,
              const Bytes& source);

// The library's own mask.
std::vector<std::uint16_t> OwnMask();

// 4 channels of 4, 2, 5 and 1 steps, in both polarities, with narrower ranges and random ranks.
NaiveDither MixedDither(int bits);

} // namespace zvk::Pelkraft::TestSupport
