#pragma once

#include "pelkraft/plan.h"
#include "tests/pattern/naive_pattern.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace zvk::Pelkraft::TestSupport {

struct FreePattern
{
    void operator()(plk_pattern* pattern) const { plk_pattern_free(pattern); }
};
using PatternHandle = std::unique_ptr<plk_pattern, FreePattern>;

// The record of a failure before a call: junk, so that what the call leaves alone shows.
plk_failure JunkFailure();

// The status, the field, and line and column where there are some: "7 text 3:5", "1 engine".
std::string Brief(const plk_failure& failure);

// A call that must succeed.
PatternHandle MakeHandle(std::string_view text, std::int32_t engine = PLK_ENGINE_AUTOMATIC);
// A call that must fail, and leave a null pattern behind.
plk_failure FailureOf(std::string_view text, std::int32_t engine = PLK_ENGINE_AUTOMATIC);

plk_source SourceOf(const void* base, std::uint64_t bytes, std::int64_t rowStride,
                    std::int64_t offset = 0);
plk_target TargetOf(void* base, std::uint64_t bytes, std::int64_t rowStride,
                    std::int64_t offset = 0);

// One row, on buffers of exactly its size between forbidden pages.
Bytes RunRow(const plk_pattern* pattern, std::uint64_t row, const Bytes& source);

std::string SavedBytesOf(const plk_pattern* pattern);

} // namespace zvk::Pelkraft::TestSupport
