#include "tests/c_interface/plan_support.h"

#include <cstring>

// A record of another header: shorter, or with fields that this library does not know.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::size_t canaryBytes = 64;
constexpr unsigned char canary = 0xA5;

// A copy of a record that has so many bytes, followed by canaries.
template <typename Record>
class CutRecord
{
public:
    CutRecord(const Record& record, std::uint32_t size, unsigned char more = 0)
        : words((size + canaryBytes + 7) / 8)
    {
        std::memset(words.data(), more, size);
        std::memset(Chars() + size, canary, words.size() * 8 - size);
        std::memcpy(Chars(), &record, std::min<std::size_t>(size, sizeof record));
        // The whole field, even where the size cuts it.
        std::memcpy(Chars(), &size, sizeof size);
        before = words;
    }

    Record* get() { return reinterpret_cast<Record*>(words.data()); }
    unsigned char* Chars() { return reinterpret_cast<unsigned char*>(words.data()); }

    // The number of the first byte, from one on, that is not what it was at first.
    std::size_t FirstChanged(std::size_t from)
    {
        const auto* old = reinterpret_cast<const unsigned char*>(before.data());
        while (from != words.size() * 8 && Chars()[from] == old[from])
            ++from;
        return from;
    }
    bool IsUnchangedFrom(std::size_t from) { return FirstChanged(from) == words.size() * 8; }

private:
    std::vector<std::uint64_t> words;
    std::vector<std::uint64_t> before;
};

// The ends of the fields, in their order.
template <typename Record>
const std::vector<std::size_t> fieldEnds;
#define END(Record, field) (offsetof(Record, field) + sizeof(Record::field))
#define FORMAT(side, field) (offsetof(plk_spec, side) + END(plk_format, field))
template <>
const std::vector<std::size_t> fieldEnds<plk_spec> = {
    END(plk_spec, size),      END(plk_spec, reserved),  FORMAT(source, width),
    FORMAT(source, channels), FORMAT(source, bits),     FORMAT(source, planar),
    FORMAT(source, reserved), FORMAT(target, width),    FORMAT(target, channels),
    FORMAT(target, bits),     FORMAT(target, planar),   FORMAT(target, reserved),
    END(plk_spec, map),       END(plk_spec, map_count), END(plk_spec, repeat),
    END(plk_spec, mirror),    END(plk_spec, samples),   END(plk_spec, invert),
    END(plk_spec, clip),      END(plk_spec, stream),    END(plk_spec, road),
    END(plk_spec, reserved2)};
template <>
const std::vector<std::size_t> fieldEnds<plk_source> = {
    END(plk_source, size),        END(plk_source, reserved), END(plk_source, base),
    END(plk_source, bytes),       END(plk_source, offset),   END(plk_source, row_stride),
    END(plk_source, plane_stride)};
template <>
const std::vector<std::size_t> fieldEnds<plk_target> = {
    END(plk_target, size),        END(plk_target, reserved), END(plk_target, base),
    END(plk_target, bytes),       END(plk_target, offset),   END(plk_target, row_stride),
    END(plk_target, plane_stride)};
template <>
const std::vector<std::size_t> fieldEnds<plk_needs> = {END(plk_needs, size),
                                                       END(plk_needs, in_place),
                                                       END(plk_needs, source_row_bytes),
                                                       END(plk_needs, source_plane_bytes),
                                                       END(plk_needs, target_row_bytes),
                                                       END(plk_needs, target_plane_bytes)};
template <>
const std::vector<std::size_t> fieldEnds<plk_failure> = {
    END(plk_failure, size),   END(plk_failure, status), END(plk_failure, field),
    END(plk_failure, given),  END(plk_failure, needed), END(plk_failure, line),
    END(plk_failure, column), END(plk_failure, text)};

// The bytes of whole fields that a record of this size has.
template <typename Record>
std::size_t WholeFields(std::size_t size)
{
    std::size_t whole = 0;
    for (const std::size_t end : fieldEnds<Record>)
        if (end <= size)
            whole = end;
    return whole;
}

// The record with zeros in the place of all fields that do not fit the size.
template <typename Record>
Record Shortened(const Record& record, std::uint32_t size)
{
    Record shortened = {};
    std::memcpy(&shortened, &record, WholeFields<Record>(size));
    shortened.size = sizeof shortened;
    return shortened;
}

TEST(RecordSizes, EndWithTheLastField)
{
    EXPECT_EQ(fieldEnds<plk_spec>.back(), sizeof(plk_spec));
    EXPECT_EQ(fieldEnds<plk_source>.back(), sizeof(plk_source));
    EXPECT_EQ(fieldEnds<plk_target>.back(), sizeof(plk_target));
    EXPECT_EQ(fieldEnds<plk_needs>.back(), sizeof(plk_needs));
    EXPECT_EQ(fieldEnds<plk_failure>.back(), sizeof(plk_failure));
}

// A spec of which every field counts.
plk_spec FullSpec(const std::int32_t* map)
{
    plk_spec spec = SpecOf(5, 4, 8, 16);
    spec.target.width = 11;
    spec.map = map;
    spec.map_count = 4;
    spec.repeat = 2;
    spec.mirror = spec.invert = spec.clip = spec.stream = spec.road = 1;
    spec.samples = PLK_SAMPLES_AS_LEVELS;
    return spec;
}

TEST(RecordSizes, OfAShorterSpecLeaveTheRestZero)
{
    const std::int32_t map[] = {3, 2, PLK_EMPTY, PLK_CONSTANT(700)};
    const plk_spec full = FullSpec(map);
    for (std::uint32_t size = 4; size <= sizeof full; ++size) {
        CutRecord<plk_spec> cut(full, size, canary);
        const plk_spec shortened = Shortened(full, size);
        const std::string words = CreateWords(&shortened);
        ASSERT_EQ(CreateWords(cut.get()), words) << size;
        if (words != "OK")
            continue;
        plk_plan* plan = nullptr;
        ASSERT_EQ(plk_plan_create(cut.get(), &plan, nullptr), PLK_OK);
        const PlanHandle owner(plan);
        EXPECT_EQ(Saved(plan), Saved(PlanOf(shortened).get())) << size;
        EXPECT_TRUE(cut.IsUnchangedFrom(0));
    }
}

TEST(RecordSizes, OfALongerSpecAreServedWhereTheRestIsZero)
{
    const std::int32_t map[] = {3, 2, PLK_EMPTY, PLK_CONSTANT(700)};
    const plk_spec full = FullSpec(map);
    for (std::uint32_t more = 1; more != 50; ++more) {
        const auto size = static_cast<std::uint32_t>(sizeof full + more);
        CutRecord<plk_spec> longer(full, size);
        EXPECT_EQ(CreateWords(longer.get()), "OK") << size;
        longer.Chars()[size - 1] = 1;
        EXPECT_EQ(CreateWords(longer.get()), Words(PLK_TOO_NEW, "spec.size", size, sizeof full));
        longer.Chars()[size - 1] = 0;
        longer.Chars()[sizeof full] = 0x80;
        EXPECT_EQ(CreateWords(longer.get()), Words(PLK_TOO_NEW, "spec.size", size, sizeof full));
    }
}

TEST(RecordSizes, OutsideOfAllHeadersAreRefused)
{
    for (const std::uint32_t size : {0U, 1U, 2U, 3U, 4097U, 0x80000000U, 0xFFFFFFFFU}) {
        plk_spec spec = SpecOf(5, 4, 8, 8);
        const PlanHandle plan = PlanOf(spec);
        spec.size = size;
        EXPECT_EQ(CreateWords(&spec), Words(PLK_INVALID, "spec.size", size, sizeof spec));
        Bytes bytes(40);
        plk_source source = SourceOf(bytes, {0, 20, 0});
        Bytes inks(40);
        plk_target target = TargetOf(inks, {0, 20, 0});
        target.size = size;
        EXPECT_EQ(RunWords(plan.get(), &source, &target, 2),
                  Words(PLK_INVALID, "target.size", size, sizeof target));
        source.size = size;
        EXPECT_EQ(RunWords(plan.get(), &source, &target, 0),
                  Words(PLK_INVALID, "source.size", size, sizeof source));
        CutRecord<plk_needs> needs(Sized<plk_needs>(), sizeof(plk_needs));
        needs.get()->size = size;
        plk_failure failure = Sized<plk_failure>();
        EXPECT_EQ(WordsOf(plk_plan_needs(plan.get(), needs.get(), &failure), failure),
                  Words(PLK_INVALID, "needs.size", size, sizeof(plk_needs)));
        EXPECT_TRUE(needs.IsUnchangedFrom(4));
    }
}

template <typename Record>
void ExpectShortenedViews(const plk_plan* plan, const Record& full,
                          const std::function<std::string(const Record*)>& run, const char* name)
{
    for (std::uint32_t size = 4; size != sizeof full + 40; ++size) {
        CutRecord<Record> cut(full, size, size > sizeof full ? 0 : canary);
        const Record same = size < sizeof full ? Shortened(full, size) : full;
        ASSERT_EQ(run(cut.get()), run(&same)) << name << " of " << size << " bytes";
        EXPECT_TRUE(cut.IsUnchangedFrom(0));
        if (size <= sizeof full)
            continue;
        cut.Chars()[size - 1] = 1;
        EXPECT_EQ(run(cut.get()),
                  Words(PLK_TOO_NEW, std::string(name) + ".size", size, sizeof full));
    }
    EXPECT_EQ(run(nullptr), Words(PLK_INVALID, name, 0, 0));
    Record reserved = full;
    reserved.reserved = 3;
    EXPECT_EQ(run(&reserved), Words(PLK_TOO_NEW, std::string(name) + ".reserved", 3, 0));
    EXPECT_NE(plan, nullptr);
}

TEST(RecordSizes, OfShorterAndLongerViewsAreServedAlike)
{
    plk_spec spec = SpecOf(5, 4, 8, 8);
    spec.source.planar = spec.target.planar = 1;
    const PlanHandle plan = PlanOf(spec);
    const Bytes pixels(200, 7);
    Bytes inks(200);
    const plk_source source = SourceOf(pixels, {3, 20, 5});
    const plk_target target = TargetOf(inks, {3, 20, 5});
    for (const std::uint64_t rows : {0U, 3U}) {
        ExpectShortenedViews<plk_source>(
            plan.get(), source,
            [&](const plk_source* from) { return RunWords(plan.get(), from, &target, rows); },
            "source");
        ExpectShortenedViews<plk_target>(
            plan.get(), target,
            [&](const plk_target* to) { return RunWords(plan.get(), &source, to, rows); },
            "target");
    }
}

TEST(RecordSizes, BoundWhatIsWrittenOfNeeds)
{
    const PlanHandle plan = PlanOf(SpecOf(5, 4, 8, 16));
    plk_needs full = Sized<plk_needs>();
    ASSERT_EQ(plk_plan_needs(plan.get(), &full, nullptr), PLK_OK);
    for (std::uint32_t size = 4; size != sizeof full + 40; ++size) {
        CutRecord<plk_needs> cut({}, size);
        ASSERT_EQ(plk_plan_needs(plan.get(), cut.get(), nullptr), PLK_OK) << size;
        const std::size_t known = WholeFields<plk_needs>(size);
        EXPECT_TRUE(cut.IsUnchangedFrom(known)) << size;
        EXPECT_EQ(cut.get()->size, size);
        EXPECT_EQ(std::memcmp(cut.Chars() + 4, reinterpret_cast<const char*>(&full) + 4, known - 4),
                  0);
        if (size <= sizeof full)
            continue;
        cut.Chars()[size - 1] = 1;
        EXPECT_EQ(plk_plan_needs(plan.get(), cut.get(), nullptr), PLK_TOO_NEW);
    }
    EXPECT_EQ(plk_plan_needs(plan.get(), nullptr, nullptr), PLK_INVALID);
}

TEST(RecordSizes, BoundWhatIsWrittenOfAFailure)
{
    plk_spec spec = SpecOf(5, 4, 8, 8);
    spec.target.width = 7;
    plk_plan* plan = nullptr;
    plk_failure full = Sized<plk_failure>();
    ASSERT_EQ(plk_plan_create(&spec, &plan, &full), PLK_UNSUPPORTED);
    plk_failure junk;
    std::memset(&junk, canary, sizeof junk);
    for (std::uint32_t size = 0; size != sizeof full + 40; ++size) {
        CutRecord<plk_failure> cut(junk, std::max(size, 4U), canary);
        cut.get()->size = size;
        ASSERT_EQ(plk_plan_create(&spec, &plan, cut.get()), PLK_UNSUPPORTED) << size;
        const std::size_t known = WholeFields<plk_failure>(size);
        EXPECT_TRUE(cut.IsUnchangedFrom(std::max<std::size_t>(known, 4))) << size;
        EXPECT_EQ(cut.get()->size, size);
        if (known > 4) {
            EXPECT_EQ(
                std::memcmp(cut.Chars() + 4, reinterpret_cast<const char*>(&full) + 4, known - 4),
                0);
        }
    }
}

TEST(RecordSizes, OfAFailureStayAsTheyAreOnSuccess)
{
    plk_failure failure;
    std::memset(&failure, canary, sizeof failure);
    failure.size = sizeof failure;
    const plk_failure before = failure;
    const plk_spec spec = SpecOf(5, 4, 8, 8);
    plk_plan* plan = nullptr;
    ASSERT_EQ(plk_plan_create(&spec, &plan, &failure), PLK_OK);
    plk_plan_free(plan);
    EXPECT_EQ(std::memcmp(&failure, &before, sizeof failure), 0);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
