#include "tests/c_interface/pattern_calls.h"

#include "tests/support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

namespace zvk::Pelkraft::TestSupport {

plk_failure JunkFailure()
{
    plk_failure failure;
    std::memset(&failure, 0x5A, sizeof failure);
    failure.size = sizeof failure;
    return failure;
}

std::string Brief(const plk_failure& failure)
{
    std::ostringstream brief;
    brief << failure.status << ' ' << failure.field;
    if (failure.line != 0 || failure.column != 0)
        brief << ' ' << failure.line << ':' << failure.column;
    return brief.str();
}

PatternHandle MakeHandle(std::string_view text, std::int32_t engine)
{
    const plk_pattern_spec spec = {sizeof spec, engine};
    plk_pattern* pattern = nullptr;
    plk_failure failure = JunkFailure();
    if (plk_pattern_create(text.data(), text.size(), &spec, &pattern, &failure) != PLK_OK)
        ADD_FAILURE() << failure.text << "\n" << text;
    return PatternHandle(pattern);
}

plk_failure FailureOf(std::string_view text, std::int32_t engine)
{
    const plk_pattern_spec spec = {sizeof spec, engine};
    char other = 0;
    auto* pattern = reinterpret_cast<plk_pattern*>(&other);
    plk_failure failure = JunkFailure();
    const plk_status status =
        plk_pattern_create(text.data(), text.size(), &spec, &pattern, &failure);
    EXPECT_NE(status, PLK_OK) << text;
    EXPECT_EQ(status, failure.status);
    EXPECT_EQ(pattern, nullptr);
    EXPECT_EQ(failure.size, sizeof failure);
    return failure;
}

plk_source SourceOf(const void* base, std::uint64_t bytes, std::int64_t rowStride,
                    std::int64_t offset)
{
    return {sizeof(plk_source), 0, base, bytes, offset, rowStride, 0};
}

plk_target TargetOf(void* base, std::uint64_t bytes, std::int64_t rowStride, std::int64_t offset)
{
    return {sizeof(plk_target), 0, base, bytes, offset, rowStride, 0};
}

Bytes RunRow(const plk_pattern* pattern, std::uint64_t row, const Bytes& source)
{
    plk_pattern_facts facts = {};
    facts.size = sizeof facts;
    EXPECT_EQ(plk_pattern_needs(pattern, &facts, nullptr), PLK_OK);
    const std::size_t pixels = source.size() / static_cast<std::size_t>(facts.in_colours);
    const GuardedBuffer from(source);
    const GuardedBuffer to(pixels * static_cast<std::size_t>(facts.out_inks), Flush::AtEnd, 0xA5);
    const plk_source sourceView = SourceOf(from.data(), from.size(), 0);
    const plk_target targetView = TargetOf(to.data(), to.size(), 0);
    plk_failure failure = JunkFailure();
    EXPECT_EQ(plk_pattern_run(pattern, row, 1, pixels, &sourceView, &targetView, &failure), PLK_OK)
        << failure.text;
    return to.bytes();
}

std::string SavedBytesOf(const plk_pattern* pattern)
{
    std::uint64_t needed = 0;
    EXPECT_EQ(plk_pattern_save(pattern, nullptr, 0, &needed, nullptr), PLK_TOO_SMALL);
    std::string record(static_cast<std::size_t>(needed), 'x');
    EXPECT_EQ(plk_pattern_save(pattern, record.data(), record.size(), &needed, nullptr), PLK_OK);
    EXPECT_EQ(needed, record.size());
    return record;
}

} // namespace zvk::Pelkraft::TestSupport
