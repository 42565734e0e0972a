#include "tests/dither/dither_calls.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <limits>

namespace zvk::Pelkraft::TestSupport {
namespace {

struct RefusedCase
{
    std::string words;
    std::function<void(DitherRecord&)> change;
};

TEST(DitherSpec, RefusesAFieldByItsNameAndNumbers)
{
    const std::vector<RefusedCase> cases = {
        {"OK", [](auto&) {}},
        {"1 spec.size 3 " + std::to_string(sizeof(plk_dither_spec)),
         [](auto& record) { record.spec.size = 3; }},
        {"1 bits 9 8", [](auto& record) { record.spec.bits = 9; }},
        {"1 bits 0 8", [](auto& record) { record.spec.size = 4; }},
        {"1 channels -1 0", [](auto& record) { record.spec.channels = -1; }},
        {"1 road 2 0", [](auto& record) { record.spec.road = 2; }},
        {"1 tones 0 0", [](auto& record) { record.spec.tones = nullptr; }},
        {"1 tones[1].steps 0 1", [](auto& record) { record.tones[1].steps = 0; }},
        {"1 tones[3].steps 257 256", [](auto& record) { record.tones[3].steps = 257; }},
        {"1 tones[0].no_ink -1 255", [](auto& record) { record.tones[0].no_ink = -1; }},
        {"1 tones[0].no_ink 256 255", [](auto& record) { record.tones[0].no_ink = 256; }},
        {"1 tones[2].full_ink 256 255", [](auto& record) { record.tones[2].full_ink = 256; }},
        {"1 tones[0].full_ink 0 255", [](auto& record) { record.tones[0].full_ink = 0; }},
        {"1 tones[1].full_ink 255 0", [](auto& record) { record.tones[1].full_ink = 255; }},
        {"3 tones[1].reserved 5 0", [](auto& record) { record.tones[1].reserved = 5; }},
        {"1 tones[2].inks 0 0", [](auto& record) { record.tones[2].inks = nullptr; }},
        {"1 tones[3].inks[0] 1 0", [](auto& record) { record.inks[3][0] = 1; }},
        {"1 tones[2].inks[3] 70 71", [](auto& record) { record.inks[2][3] = 70; }},
        {"1 tones[2].inks[1] 0 1", [](auto& record) { record.inks[2][1] = 0; }},
        {"1 tones[0].inks[3] 1073741825 1073741824",
         [](auto& record) { record.inks[0][3] = PLK_MOST_INK + 1; }},
        // The first channel comes first, and in it the fields in their order.
        {"1 tones[0].inks[1] 0 1",
         [](auto& record) {
             record.inks[0][1] = 0;
             record.tones[1].steps = 0;
         }},
    };
    for (const RefusedCase& refused : cases) {
        DitherRecord record(MixedDither(8));
        refused.change(record);
        EXPECT_EQ(refused.words, CreateWords(&record.spec));
    }
    EXPECT_EQ("1 spec 0 0", CreateWords(nullptr));
}

TEST(DitherSpec, SaysWhatWouldDo)
{
    DitherRecord record(MixedDither(16));
    record.inks[2][2] = 1;
    plk_dither* dither = nullptr;
    plk_failure failure = {};
    failure.size = sizeof failure;
    EXPECT_EQ(plk_dither_create(&record.spec, &dither, &failure), PLK_INVALID);
    EXPECT_STREQ(failure.text, "tones[2].inks[2] is 1; it must be more than the ink of the step "
                               "before it, 1");
    record.tones[0].no_ink = 65536;
    EXPECT_EQ(plk_dither_create(&record.spec, &dither, &failure), PLK_INVALID);
    EXPECT_STREQ(failure.text,
                 "tones[0].no_ink is 65536; the samples of 16 bits go from 0 to 65535");
    EXPECT_EQ(plk_dither_create(&record.spec, nullptr, &failure), PLK_INVALID);
    EXPECT_STREQ(failure.text, "dither is null; it must point to something");
}

TEST(DitherSpec, MayBeOfALaterHeader)
{
    struct
    {
        plk_dither_spec known;
        std::uint64_t unknown;
    } later = {};
    const DitherRecord record(MixedDither(8));
    later.known = record.spec;
    later.known.size = sizeof later;
    EXPECT_EQ("OK", CreateWords(&later.known));
    later.unknown = 1;
    EXPECT_EQ("3 spec.size " + std::to_string(sizeof later) + ' ' +
                  std::to_string(sizeof later.known),
              CreateWords(&later.known));
}

TEST(DitherSpec, MayHaveNoChannels)
{
    plk_dither_spec spec = {};
    spec.size = sizeof spec;
    spec.bits = 16;
    plk_dither* made = nullptr;
    ASSERT_EQ(plk_dither_create(&spec, &made, nullptr), PLK_OK);
    const DitherHandle dither(made);
    plk_dither_facts facts = {};
    facts.size = sizeof facts;
    EXPECT_EQ(plk_dither_needs(made, &facts, nullptr), PLK_OK);
    EXPECT_EQ(0U, facts.source_pixel_bytes);
    EXPECT_EQ(0U, facts.target_pixel_bytes);
    const plk_source from = SourceOf(nullptr, 0, 0);
    const plk_target to = TargetOf(nullptr, 0, 0);
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(plk_dither_run(made, 0, 0, most, most, &from, &to, nullptr), PLK_OK);
}

TEST(DitherFacts, NameTheBytesOfAPixel)
{
    for (const int bits : {8, 16}) {
        const DitherHandle dither = HandleOf(MixedDither(bits));
        plk_dither_facts facts = {};
        facts.size = sizeof facts;
        EXPECT_EQ(plk_dither_needs(dither.get(), &facts, nullptr), PLK_OK);
        EXPECT_EQ(static_cast<std::uint64_t>(bits / 2), facts.source_pixel_bytes);
        EXPECT_EQ(4U, facts.target_pixel_bytes);
        EXPECT_EQ(1, facts.in_place);
        facts.size = 0;
        EXPECT_EQ(plk_dither_needs(dither.get(), &facts, nullptr), PLK_INVALID);
        EXPECT_EQ(plk_dither_needs(dither.get(), nullptr, nullptr), PLK_INVALID);
        facts.size = sizeof facts;
        EXPECT_EQ(plk_dither_needs(nullptr, &facts, nullptr), PLK_INVALID);
    }
}

// Rows of 10 pixels of 4 channels of 16 bits, in buffers of 3 rows.
class DitherRun : public testing::Test
{
protected:
    static constexpr std::int64_t sourceBytes = 80;
    static constexpr std::int64_t targetBytes = 40;

    std::string Words(std::uint64_t rows = 3, std::uint64_t pixels = 10)
    {
        const Bytes before = memory;
        plk_failure failure = {};
        failure.size = sizeof failure;
        const plk_status status =
            plk_dither_run(dither.get(), 0, 0, rows, pixels, &source, &target, &failure);
        EXPECT_EQ(status != PLK_OK, before == memory) << "rows were written";
        return WordsOf(status, failure);
    }

    DitherHandle dither = HandleOf(MixedDither(16));
    Bytes memory = RandomBytes(3 * (sourceBytes + targetBytes), 4);
    plk_source source = SourceOf(memory.data(), 3 * sourceBytes, sourceBytes);
    plk_target target = TargetOf(memory.data() + 3 * sourceBytes, 3 * targetBytes, targetBytes);
};

TEST_F(DitherRun, RefusesMemoryThatEndsTooEarly)
{
    EXPECT_EQ("OK", Words());
    source.bytes -= 1;
    EXPECT_EQ("4 source.bytes 239 240", Words());
    source.bytes += 1;
    target.bytes -= 1;
    EXPECT_EQ("4 target.bytes 119 120", Words());
    target.bytes += 1;
    target.offset = 1;
    EXPECT_EQ("4 target.bytes 120 121", Words());
    target.offset = -1;
    EXPECT_EQ("4 target.offset -1 0", Words());
    target.offset = 0;
    source.row_stride = -sourceBytes;
    EXPECT_EQ("4 source.offset 0 160", Words());
    source.offset = 2 * sourceBytes;
    EXPECT_EQ("OK", Words());
}

TEST_F(DitherRun, RefusesNullAndUnknown)
{
    source.base = nullptr;
    EXPECT_EQ("1 source.base 0 0", Words());
    source.base = memory.data();
    target.base = nullptr;
    EXPECT_EQ("1 target.base 0 0", Words());
    target.base = memory.data() + 3 * sourceBytes;
    target.reserved = 1;
    EXPECT_EQ("3 target.reserved 1 0", Words());
    target.reserved = 0;
    source.size = 5000;
    EXPECT_EQ("1 source.size 5000 " + std::to_string(sizeof source), Words());
    source.size = sizeof source;
    plk_failure failure = {};
    failure.size = sizeof failure;
    EXPECT_EQ("1 dither 0 0",
              WordsOf(plk_dither_run(nullptr, 0, 0, 3, 10, &source, &target, &failure), failure));
    EXPECT_EQ(
        "1 source 0 0",
        WordsOf(plk_dither_run(dither.get(), 0, 0, 3, 10, nullptr, &target, &failure), failure));
    EXPECT_EQ(
        "1 target 0 0",
        WordsOf(plk_dither_run(dither.get(), 0, 0, 3, 10, &source, nullptr, &failure), failure));
}

TEST_F(DitherRun, RefusesMorePixelsThanMemoryHolds)
{
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    constexpr std::uint64_t limit = std::numeric_limits<std::int64_t>::max() / 8;
    EXPECT_EQ("1 pixels 9223372036854775807 " + std::to_string(limit), Words(1, most));
    EXPECT_EQ("4 source.bytes 240 0", Words(1, limit));
    EXPECT_EQ("4 source.bytes 240 0", Words(most, 10));
}

TEST_F(DitherRun, TakesNoRowsAndNoPixelsFromNowhere)
{
    source.base = nullptr;
    target.base = nullptr;
    plk_failure failure = {};
    failure.size = sizeof failure;
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    for (const auto& [rows, pixels] : {std::pair{std::uint64_t{0}, most}, {most, 0}})
        EXPECT_EQ(plk_dither_run(dither.get(), INT64_MIN, INT64_MAX, rows, pixels, &source, &target,
                                 &failure),
                  PLK_OK)
            << failure.text;
}

TEST_F(DitherRun, RefusesRowsThatShareBytes)
{
    target.row_stride = targetBytes - 1;
    EXPECT_EQ("5 target.row_stride 39 40", Words());
    target = TargetOf(memory.data(), memory.size(), targetBytes, 3 * sourceBytes - 1);
    EXPECT_EQ("5 target.base 0 0", Words());
    target.offset = 3 * sourceBytes;
    EXPECT_EQ("OK", Words());
    // In place the strides must be equal too, and the wider rows must not meet.
    target = TargetOf(memory.data(), memory.size(), targetBytes);
    EXPECT_EQ("5 target.base 0 0", Words());
    source.row_stride = targetBytes;
    EXPECT_EQ("5 target.base 0 0", Words());
    source.row_stride = target.row_stride = sourceBytes - 1;
    EXPECT_EQ("5 target.base 0 0", Words());
    EXPECT_EQ("OK", Words(1));
    source.row_stride = target.row_stride = sourceBytes;
    EXPECT_EQ("OK", Words());
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
