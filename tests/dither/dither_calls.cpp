#include "tests/dither/dither_calls.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

namespace zvk::Pelkraft::TestSupport {

DitherHandle HandleOf(const NaiveDither& naive, std::int32_t road)
{
    const DitherRecord record(naive, road);
    plk_dither* dither = nullptr;
    plk_failure failure = {};
    failure.size = sizeof failure;
    if (plk_dither_create(&record.spec, &dither, &failure) != PLK_OK)
        ADD_FAILURE() << failure.text;
    return DitherHandle(dither);
}

std::string WordsOf(plk_status status, const plk_failure& failure)
{
    if (status == PLK_OK)
        return "OK";
    EXPECT_EQ(status, failure.status);
    // The sentence begins with the field, and with what it was.
    EXPECT_EQ(std::string(failure.text).find(failure.field), 0U) << failure.text;
    std::ostringstream words;
    words << status << ' ' << failure.field << ' ' << failure.given << ' ' << failure.needed;
    return words.str();
}

std::string CreateWords(const plk_dither_spec* spec)
{
    char other = 0;
    auto* dither = reinterpret_cast<plk_dither*>(&other);
    plk_failure failure;
    std::memset(&failure, 0x5A, sizeof failure);
    failure.size = sizeof failure;
    const plk_status status = plk_dither_create(spec, &dither, &failure);
    EXPECT_EQ(status != PLK_OK, dither == nullptr);
    plk_dither_free(dither);
    return WordsOf(status, failure);
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

Bytes RunRows(const plk_dither* dither, std::int64_t x, std::int64_t y, std::uint64_t rows,
              const Bytes& source)
{
    plk_dither_facts facts = {};
    facts.size = sizeof facts;
    EXPECT_EQ(plk_dither_needs(dither, &facts, nullptr), PLK_OK);
    const std::uint64_t pixels = source.size() / rows / facts.source_pixel_bytes;
    Bytes steps(static_cast<std::size_t>(rows * pixels * facts.target_pixel_bytes), 0xA5);
    const plk_source from = SourceOf(source.data(), source.size(),
                                     static_cast<std::int64_t>(pixels * facts.source_pixel_bytes));
    const plk_target to = TargetOf(steps.data(), steps.size(),
                                   static_cast<std::int64_t>(pixels * facts.target_pixel_bytes));
    plk_failure failure = {};
    failure.size = sizeof failure;
    EXPECT_EQ(plk_dither_run(dither, x, y, rows, pixels, &from, &to, &failure), PLK_OK)
        << failure.text;
    return steps;
}

std::vector<std::uint16_t> OwnMask()
{
    const std::uint16_t* ranks = plk_dither_mask();
    return std::vector<std::uint16_t>(ranks, ranks + 65536);
}

NaiveDither MixedDither(int bits)
{
    const std::int64_t unit = bits == 16 ? 257 : 1;
    NaiveDither naive;
    naive.bits = bits;
    naive.mask = RandomMask(7);
    naive.channels = {{{0, 333, 500, 1000}, 0, 255 * unit},
                      {{0, 1}, 255 * unit, 0},
                      {{0, 1, 70, 71, 100000}, 20 * unit, 230 * unit - 3},
                      {{0}, 201 * unit, 7 * unit}};
    return naive;
}

} // namespace zvk::Pelkraft::TestSupport
