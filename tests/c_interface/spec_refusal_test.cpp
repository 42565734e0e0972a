#include "tests/c_interface/plan_support.h"

#include <functional>
#include <limits>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t widest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t mostBytes = std::numeric_limits<std::ptrdiff_t>::max();

// A change of a spec of 5 pixels, 4 channels and 8 bits on both sides, and its refusal.
struct Fault
{
    std::function<void(plk_spec&)> make;
    std::string words;
};

void ExpectRefusals(const std::vector<Fault>& faults)
{
    for (const Fault& fault : faults) {
        plk_spec spec = SpecOf(5, 4, 8, 8);
        fault.make(spec);
        EXPECT_EQ(CreateWords(&spec), fault.words);
    }
}

TEST(PlanSpec, RefusesAFieldWithAValueThatNoneMayHave)
{
    ExpectRefusals({
        {[](auto& spec) { spec.source.width = -1; }, Words(PLK_INVALID, "source.width", -1, 0)},
        {[](auto& spec) { spec.source.channels = -3; },
         Words(PLK_INVALID, "source.channels", -3, 0)},
        {[](auto& spec) { spec.source.bits = 0; }, Words(PLK_INVALID, "source.bits", 0, 8)},
        {[](auto& spec) { spec.source.planar = 2; }, Words(PLK_INVALID, "source.planar", 2, 0)},
        {[](auto& spec) { spec.target.width = -widest; },
         Words(PLK_INVALID, "target.width", -widest, 0)},
        {[](auto& spec) { spec.target.channels = lowest; },
         Words(PLK_INVALID, "target.channels", lowest, 0)},
        {[](auto& spec) { spec.target.bits = 12; }, Words(PLK_INVALID, "target.bits", 12, 8)},
        {[](auto& spec) { spec.target.planar = -1; }, Words(PLK_INVALID, "target.planar", -1, 0)},
        {[](auto& spec) { spec.map_count = 4; }, Words(PLK_INVALID, "map", 0, 0)},
        {[](auto& spec) { spec.repeat = 3; }, Words(PLK_INVALID, "repeat", 3, 1)},
        {[](auto& spec) { spec.repeat = -1; }, Words(PLK_INVALID, "repeat", -1, 1)},
        {[](auto& spec) { spec.mirror = 2; }, Words(PLK_INVALID, "mirror", 2, 0)},
        {[](auto& spec) { spec.samples = 3; }, Words(PLK_INVALID, "samples", 3, 0)},
        {[](auto& spec) { spec.samples = -1; }, Words(PLK_INVALID, "samples", -1, 0)},
        {[](auto& spec) { spec.invert = -1; }, Words(PLK_INVALID, "invert", -1, 0)},
        {[](auto& spec) { spec.clip = 7; }, Words(PLK_INVALID, "clip", 7, 0)},
        {[](auto& spec) { spec.stream = 2; }, Words(PLK_INVALID, "stream", 2, 0)},
        {[](auto& spec) { spec.road = 2; }, Words(PLK_INVALID, "road", 2, 0)},
    });
}

TEST(PlanSpec, RefusesReservedFieldsThatAreSet)
{
    ExpectRefusals({
        {[](auto& spec) { spec.reserved = 1; }, Words(PLK_TOO_NEW, "reserved", 1, 0)},
        {[](auto& spec) { spec.source.reserved = -1; },
         Words(PLK_TOO_NEW, "source.reserved", -1, 0)},
        {[](auto& spec) { spec.target.reserved = 5; }, Words(PLK_TOO_NEW, "target.reserved", 5, 0)},
        {[](auto& spec) { spec.reserved2 = lowest; }, Words(PLK_TOO_NEW, "reserved2", lowest, 0)},
    });
}

TEST(PlanSpec, ServesEveryDepthBut10BitsInPlanes)
{
    for (std::int32_t bits = -2; bits != 40; ++bits)
        for (const std::int32_t planar : {0, 1}) {
            plk_spec spec = SpecOf(5, 4, bits, bits);
            spec.source.planar = spec.target.planar = planar;
            const bool valid = bits == 1 || bits == 2 || bits == 8 || bits == 10 || bits == 16;
            const bool served = valid && (bits != 10 || planar == 0);
            EXPECT_EQ(CreateWords(&spec), served  ? "OK"
                                          : valid ? Words(PLK_UNSUPPORTED, "source.bits", 10, 16)
                                                  : Words(PLK_INVALID, "source.bits", bits, 8));
        }
    plk_spec spec = SpecOf(5, 4, 8, 10);
    spec.target.planar = 1;
    EXPECT_EQ(CreateWords(&spec), Words(PLK_UNSUPPORTED, "target.bits", 10, 16));
}

TEST(PlanSpec, RefusesChannelsThatDoNotMeet)
{
    plk_spec spec = SpecOf(5, 4, 8, 8);
    spec.target.channels = 3;
    EXPECT_EQ(CreateWords(&spec), Words(PLK_UNSUPPORTED, "target.channels", 3, 4));
    const std::int32_t map[] = {3, PLK_EMPTY, 0, 4};
    spec.map = map;
    for (const std::uint64_t count : {0U, 2U, 4U}) {
        spec.map_count = count;
        EXPECT_EQ(CreateWords(&spec),
                  Words(PLK_UNSUPPORTED, "map_count", static_cast<std::int64_t>(count), 3));
    }
    spec.map_count = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(CreateWords(&spec), Words(PLK_UNSUPPORTED, "map_count", widest, 3));
    spec.map_count = 3;
    EXPECT_EQ(CreateWords(&spec), "OK");
}

TEST(PlanSpec, RefusesEntriesThatNameNothing)
{
    std::int32_t map[] = {0, 1, 2, 4};
    plk_spec spec = SpecOf(5, 4, 8, 8);
    spec.map = map;
    spec.map_count = 4;
    EXPECT_EQ(CreateWords(&spec), Words(PLK_UNSUPPORTED, "map[3]", 4, 3));
    map[3] = PLK_CONSTANT(255);
    EXPECT_EQ(CreateWords(&spec), "OK");
    map[3] = PLK_CONSTANT(256);
    EXPECT_EQ(CreateWords(&spec),
              Words(PLK_UNSUPPORTED, "map[3]", PLK_CONSTANT(256), PLK_CONSTANT(255)));
    map[1] = PLK_CONSTANT(65536);
    EXPECT_EQ(CreateWords(&spec),
              Words(PLK_INVALID, "map[1]", PLK_CONSTANT(65536), PLK_CONSTANT(65535)));
    map[0] = lowest;
    EXPECT_EQ(CreateWords(&spec), Words(PLK_INVALID, "map[0]", lowest, PLK_CONSTANT(65535)));
    spec.source.channels = 0;
    map[0] = 0;
    EXPECT_EQ(CreateWords(&spec), Words(PLK_UNSUPPORTED, "map[0]", 0, PLK_EMPTY));
}

TEST(PlanSpec, TakesConstantsUpToTheLargestSample)
{
    for (const std::int32_t planar : {0, 1})
        for (const std::int32_t bits : {1, 2, 8, 10, 16}) {
            if (planar != 0 && bits == 10)
                continue;
            // Interleaved samples are bytes or pairs of bytes.
            const std::int32_t largest = (1 << (planar != 0 ? bits : bits <= 8 ? 8 : 16)) - 1;
            plk_spec spec = SpecOf(5, 1, bits, bits);
            spec.source.planar = spec.target.planar = planar;
            std::int32_t entry = PLK_CONSTANT(largest);
            spec.map = &entry;
            spec.map_count = 1;
            EXPECT_EQ(CreateWords(&spec), "OK") << bits;
            --entry;
            EXPECT_EQ(CreateWords(&spec), Words(largest == 65535 ? PLK_INVALID : PLK_UNSUPPORTED,
                                                "map[0]", entry, PLK_CONSTANT(largest)));
        }
}

TEST(PlanSpec, RefusesWidthsThatDoNotMeetUnlessItClips)
{
    for (std::int64_t source = 0; source != 9; ++source)
        for (std::int64_t target = 0; target != 40; ++target)
            for (const std::int32_t repeat : {0, 1, 2, 4}) {
                plk_spec spec = SpecOf(source, 4, 8, 8);
                spec.target.width = target;
                spec.repeat = repeat;
                const std::int64_t needed = source * (repeat == 0 ? 1 : repeat);
                EXPECT_EQ(CreateWords(&spec),
                          target == needed
                              ? "OK"
                              : Words(PLK_UNSUPPORTED, "target.width", target, needed));
                spec.clip = 1;
                EXPECT_EQ(CreateWords(&spec), "OK");
            }
}

TEST(PlanSpec, RefusesRowsThatNoAddressesAreLeftFor)
{
    plk_spec spec = SpecOf(mostBytes / 4, 4, 8, 8);
    EXPECT_EQ(CreateWords(&spec), "OK");
    spec.source.width = spec.target.width = mostBytes / 4 + 1;
    EXPECT_EQ(CreateWords(&spec),
              Words(PLK_UNSUPPORTED, "source.width", mostBytes / 4 + 1, mostBytes / 4));
    spec.source.width = 5;
    spec.clip = 1;
    EXPECT_EQ(CreateWords(&spec),
              Words(PLK_UNSUPPORTED, "target.width", mostBytes / 4 + 1, mostBytes / 4));
    spec.source.channels = spec.target.channels = std::numeric_limits<std::int32_t>::max();
    spec.source.bits = 16;
    spec.source.width = widest;
    EXPECT_EQ(CreateWords(&spec), Words(PLK_UNSUPPORTED, "source.width", widest,
                                        mostBytes / 2 / std::numeric_limits<std::int32_t>::max()));
}

TEST(PlanSpec, ServesTheWidestRowsOfPlanes)
{
    for (const std::int32_t bits : {1, 2, 8, 16}) {
        const std::int64_t pixels = bits == 16 ? mostBytes / 2 : bits == 8 ? mostBytes : widest;
        plk_spec spec = SpecOf(pixels, 1, bits, bits);
        spec.source.planar = spec.target.planar = 1;
        if (sizeof(std::ptrdiff_t) == 8) {
            EXPECT_EQ(CreateWords(&spec), "OK") << bits;
        }
        spec.repeat = 2;
        EXPECT_NE(CreateWords(&spec), "OK") << bits;
        spec.clip = 1;
        if (sizeof(std::ptrdiff_t) == 8) {
            EXPECT_EQ(CreateWords(&spec), "OK") << bits;
        }
    }
    // Rows without channels have no bytes.
    plk_spec spec = SpecOf(widest, 0, 16, 8);
    EXPECT_EQ(CreateWords(&spec), "OK");
    spec.repeat = 4;
    EXPECT_EQ(CreateWords(&spec), Words(PLK_UNSUPPORTED, "source.width", widest, widest / 4));
    // Four times this width is 0 in 64 bits.
    spec.source.width = std::int64_t{1} << 62;
    spec.target.width = 0;
    EXPECT_EQ(CreateWords(&spec), Words(PLK_UNSUPPORTED, "source.width", spec.source.width, 0));
}

TEST(PlanSpec, RefusesTonesAndInversionWithoutAFullScale)
{
    for (const std::int32_t bits : {1, 2, 10})
        for (const bool isSource : {true, false}) {
            plk_spec spec = SpecOf(5, 4, isSource ? bits : 8, isSource ? 8 : bits);
            EXPECT_EQ(CreateWords(&spec), "OK");
            spec.invert = 1;
            EXPECT_EQ(CreateWords(&spec), Words(PLK_UNSUPPORTED, "invert", 1, 0));
            spec.samples = PLK_SAMPLES_AS_LEVELS;
            EXPECT_EQ(CreateWords(&spec), Words(PLK_UNSUPPORTED, "invert", 1, 0));
            spec.samples = PLK_SAMPLES_AS_TONES;
            EXPECT_EQ(CreateWords(&spec), Words(PLK_UNSUPPORTED, "samples", 1, 0));
            if (bits == 10)
                continue;
            (isSource ? spec.source : spec.target).planar = 1;
            EXPECT_EQ(CreateWords(&spec), "OK");
        }
}

TEST(PlanSpec, RefusesNullPointers)
{
    EXPECT_EQ(CreateWords(nullptr), Words(PLK_INVALID, "spec", 0, 0));
    const plk_spec spec = SpecOf(5, 4, 8, 8);
    plk_failure failure = Sized<plk_failure>();
    EXPECT_EQ(WordsOf(plk_plan_create(&spec, nullptr, &failure), failure),
              Words(PLK_INVALID, "plan", 0, 0));
    EXPECT_EQ(plk_plan_create(nullptr, nullptr, nullptr), PLK_INVALID);
    plk_plan_free(nullptr);
}

TEST(PlanSpec, NamesTheFirstOfItsFaults)
{
    std::int32_t map[] = {9};
    plk_spec spec = SpecOf(-5, -4, 3, 3);
    spec.source.planar = spec.target.planar = 9;
    spec.source.reserved = spec.target.reserved = spec.reserved = spec.reserved2 = 1;
    spec.map_count = 1;
    spec.repeat = spec.mirror = spec.samples = spec.invert = spec.clip = spec.stream = spec.road =
        9;
    const auto expectAndMend = [&](const char* field, auto& value, std::int64_t mended) {
        const std::string words = CreateWords(&spec);
        EXPECT_EQ(words.substr(words.find(' ') + 1, words.find(':') - words.find(' ') - 1), field);
        value = static_cast<std::remove_reference_t<decltype(value)>>(mended);
    };
    expectAndMend("reserved", spec.reserved, 0);
    expectAndMend("source.width", spec.source.width, 5);
    expectAndMend("source.channels", spec.source.channels, 4);
    expectAndMend("source.bits", spec.source.bits, 10);
    expectAndMend("source.planar", spec.source.planar, 1);
    expectAndMend("source.reserved", spec.source.reserved, 0);
    expectAndMend("target.width", spec.target.width, 6);
    expectAndMend("target.channels", spec.target.channels, 3);
    expectAndMend("target.bits", spec.target.bits, 10);
    expectAndMend("target.planar", spec.target.planar, 1);
    expectAndMend("target.reserved", spec.target.reserved, 0);
    const std::string nullMap = CreateWords(&spec);
    EXPECT_EQ(nullMap, Words(PLK_INVALID, "map", 0, 0));
    spec.map = map;
    expectAndMend("repeat", spec.repeat, 0);
    expectAndMend("mirror", spec.mirror, 0);
    expectAndMend("samples", spec.samples, 1);
    expectAndMend("invert", spec.invert, 1);
    expectAndMend("clip", spec.clip, 0);
    expectAndMend("stream", spec.stream, 0);
    expectAndMend("road", spec.road, 0);
    expectAndMend("reserved2", spec.reserved2, 0);
    expectAndMend("source.bits", spec.source.bits, 8);
    expectAndMend("target.bits", spec.target.bits, 2);
    expectAndMend("map_count", spec.target.channels, 1);
    expectAndMend("map[0]", map[0], 0);
    spec.target.planar = 0;
    expectAndMend("target.width", spec.target.width, 5);
    expectAndMend("samples", spec.samples, 0);
    expectAndMend("invert", spec.invert, 0);
    EXPECT_EQ(CreateWords(&spec), "OK");
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
