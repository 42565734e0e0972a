#include "tests/c_interface/plan_support.h"
#include "tests/c_interface/sealed_record.h"
#include "tests/support/random_bytes.h"

#include <cstring>
#include <functional>
#include <map>
#include <set>

namespace zvk::Pelkraft::TestSupport {
namespace {

Bytes Unsealed(const Bytes& record)
{
    return Bytes(record.begin(), record.end() - 4);
}

std::string LoadWords(const Bytes& record)
{
    auto* plan = reinterpret_cast<plk_plan*>(1);
    plk_failure failure = Sized<plk_failure>();
    const plk_status status = plk_plan_load(record.data(), record.size(), &plan, &failure);
    EXPECT_EQ(plan == nullptr, status != PLK_OK);
    plk_plan_free(plan);
    return WordsOf(status, failure);
}

PlanHandle LoadPlan(const Bytes& record)
{
    plk_plan* plan = nullptr;
    EXPECT_EQ(plk_plan_load(record.data(), record.size(), &plan, nullptr), PLK_OK);
    return PlanHandle(plan);
}

std::string TextOf(const Bytes& bytes)
{
    return std::string(bytes.begin(), bytes.end());
}

const std::int32_t mapOfFour[] = {3, PLK_EMPTY, 0, PLK_CONSTANT(77)};

plk_spec RichSpec()
{
    plk_spec spec = SpecOf(1001, 5, 8, 16);
    spec.target.width = 2000;
    spec.target.channels = 4;
    spec.target.planar = 1;
    spec.map = mapOfFour;
    spec.map_count = 4;
    spec.repeat = 2;
    spec.mirror = spec.invert = spec.clip = spec.stream = spec.road = 1;
    spec.samples = PLK_SAMPLES_AS_LEVELS;
    return spec;
}

TEST(SavedPlan, HasAllFieldsWithTheirLowByteFirst)
{
    Bytes record = {'p', 'l', 'k', 'P'};
    AppendNumber(record, 1, 4);
    AppendNumber(record, 96, 8);
    for (const std::uint64_t width : {1001U, 2000U}) {
        AppendNumber(record, width, 8);
        AppendNumber(record, width == 1001 ? 5 : 4, 4);
        AppendNumber(record, width == 1001 ? 8 : 16, 4);
        AppendNumber(record, width == 1001 ? 0 : 1, 4);
    }
    for (const std::uint64_t field : {2U, 1U, 2U, 1U, 1U, 1U, 1U, 1U})
        AppendNumber(record, field, 4);
    AppendNumber(record, 4, 8);
    for (const std::int32_t entry : mapOfFour)
        AppendNumber(record, static_cast<std::uint32_t>(entry), 4);
    EXPECT_EQ(Saved(PlanOf(RichSpec()).get()), Sealed(record));
}

TEST(SavedPlan, IsTheSameAgainAfterLoading)
{
    for (const std::int32_t bits : {1, 2, 8, 16})
        for (const std::int32_t samples : {0, 1, 2})
            for (const std::int32_t flags : {0, 1}) {
                plk_spec spec = RichSpec();
                spec.source.bits = bits;
                spec.source.planar = 1;
                spec.samples = samples;
                spec.mirror = spec.invert = spec.stream = spec.road = flags;
                const PlanHandle plan = PlanOf(spec);
                const Bytes record = Saved(plan.get());
                const PlanHandle loaded = LoadPlan(record);
                EXPECT_EQ(Saved(loaded.get()), record);
                EXPECT_EQ(Described(loaded.get(), PLK_JSON), Described(plan.get(), PLK_JSON));
            }
}

TEST(SavedPlan, HoldsAMapOfNoEntries)
{
    const std::int32_t none = 0;
    plk_spec spec = SpecOf(5, 3, 8, 8);
    spec.target.channels = 0;
    spec.map = &none;
    const Bytes record = Saved(PlanOf(spec).get());
    EXPECT_EQ(Saved(LoadPlan(record).get()), record);
}

// The specs that mean the same share a record, and no others do.
TEST(SavedPlan, IsTheSameForEqualPlansAlone)
{
    const std::int32_t same[] = {0, 1, 2};
    const std::int32_t turned[] = {0, 2, 1};
    const std::int32_t fewer[] = {0, 1};
    const plk_spec plain = SpecOf(8, 3, 8, 8);
    const auto recordOf = [&](const std::function<void(plk_spec&)>& change) {
        plk_spec spec = plain;
        change(spec);
        return Saved(PlanOf(spec).get());
    };
    const auto mapped = [](const std::int32_t* map, std::int32_t count) {
        return [=](plk_spec& spec) {
            spec.map = map;
            spec.map_count = static_cast<std::uint64_t>(count);
            spec.target.channels = count;
        };
    };
    const Bytes record = recordOf([](auto&) {});
    EXPECT_EQ(recordOf(mapped(same, 3)), record);
    EXPECT_EQ(recordOf([](auto& spec) { spec.repeat = 1; }), record);
    EXPECT_EQ(recordOf([](auto& spec) { spec.clip = 1; }), record);
    EXPECT_EQ(recordOf([](auto& spec) { spec.samples = PLK_SAMPLES_AS_TONES; }), record);
    EXPECT_EQ(recordOf([](auto& spec) { spec.samples = PLK_SAMPLES_AS_LEVELS; }), record);
    const std::vector<std::function<void(plk_spec&)>> others = {
        mapped(turned, 3),
        mapped(fewer, 2),
        [](auto& spec) { spec.source.width = spec.target.width = 9; },
        [](auto& spec) { spec.source.channels = spec.target.channels = 4; },
        [](auto& spec) { spec.source.bits = 16; },
        [](auto& spec) { spec.target.bits = 16; },
        [](auto& spec) { spec.source.planar = 1; },
        [](auto& spec) { spec.target.planar = 1; },
        [](auto& spec) { spec.repeat = 2, spec.target.width = 16; },
        [](auto& spec) { spec.repeat = 4, spec.target.width = 32; },
        [](auto& spec) { spec.mirror = 1; },
        [](auto& spec) { spec.invert = 1; },
        [](auto& spec) { spec.clip = 1, spec.target.width = 7; },
        [](auto& spec) { spec.stream = 1; },
        [](auto& spec) { spec.road = 1; },
    };
    std::set<std::string> records = {TextOf(record)};
    for (const auto& other : others)
        EXPECT_TRUE(records.insert(TextOf(recordOf(other))).second) << records.size();
}

// A row of many samples of each depth, in every form that there is.
std::vector<NaiveGeometry> SampleRows()
{
    constexpr int width = 1000;
    return {{width, 1, 1, true},  {width, 1, 2, true},   {width, 1, 8, true},
            {width, 1, 16, true}, {width, 1, 1, false},  {width, 1, 2, false},
            {width, 1, 8, false}, {width, 1, 10, false}, {width, 1, 16, false}};
}

// Two kinds of samples share a record where no sample of the source becomes another by them.
void ExpectARecordForEachMeaning(NaiveJoin join)
{
    const Bytes samples = RandomBytes(2000, 8);
    std::map<std::string, std::set<std::string>> recordsOfMeaning;
    std::map<std::string, std::set<std::string>> meaningsOfRecord;
    for (const NaiveSamples kind :
         {NaiveSamples::AsFill, NaiveSamples::AsTones, NaiveSamples::AsLevels}) {
        join.samples = kind;
        const plk_spec spec = SpecOf(join);
        if (CreateWords(&spec) != "OK")
            continue;
        const std::string meaning =
            TextOf(NaiveRun(join, samples, {0, 0, 0}, Bytes(2000), {0, 0, 0}, 1));
        const std::string record = TextOf(Saved(PlanOf(spec).get()));
        recordsOfMeaning[meaning].insert(record);
        meaningsOfRecord[record].insert(meaning);
    }
    EXPECT_EQ(recordsOfMeaning.size(), meaningsOfRecord.size()) << Describe(join);
    for (const auto& [meaning, records] : recordsOfMeaning)
        EXPECT_EQ(records.size(), 1U) << Describe(join);
    for (const auto& [record, meanings] : meaningsOfRecord)
        EXPECT_EQ(meanings.size(), 1U) << Describe(join);
}

TEST(SavedPlan, KeepsTheKindOfSamplesOnlyWhereItCounts)
{
    for (const NaiveGeometry& source : SampleRows())
        for (const NaiveGeometry& target : SampleRows())
            ExpectARecordForEachMeaning({source, target});
}

TEST(SavedPlan, IsRefusedWithAnyDamage)
{
    const Bytes record = Saved(PlanOf(RichSpec()).get());
    ASSERT_EQ(LoadWords(record), "OK");
    for (std::size_t i = 0; i != record.size(); ++i)
        for (unsigned value = 1; value != 256; ++value) {
            Bytes damaged = record;
            damaged[i] = static_cast<unsigned char>(damaged[i] ^ value);
            const std::string words = LoadWords(damaged);
            ASSERT_EQ(words.substr(0, 10), "BAD_RECORD") << "byte " << i << ": " << words;
        }
    for (std::size_t size = 1; size != record.size(); ++size) {
        const std::string words =
            LoadWords(Bytes(record.begin(), record.begin() + static_cast<long>(size)));
        ASSERT_EQ(words.substr(0, 10), "BAD_RECORD") << words;
    }
    Bytes longer = record;
    longer.push_back(0);
    EXPECT_EQ(LoadWords(longer), Words(PLK_BAD_RECORD, "bytes", 117, 116));
    EXPECT_EQ(LoadWords({}), Words(PLK_INVALID, "record", 0, 0));
}

// The check fits, so that the content is looked at.
TEST(SavedPlan, GoesThroughTheChecksOfASpec)
{
    const Bytes record = Unsealed(Saved(PlanOf(RichSpec()).get()));
    const auto wordsWith = [&](std::size_t place, std::uint64_t number, int count) {
        Bytes changed = record;
        Bytes bytes;
        AppendNumber(bytes, number, count);
        std::copy(bytes.begin(), bytes.end(), changed.begin() + static_cast<long>(place));
        return LoadWords(Sealed(changed));
    };
    EXPECT_EQ(wordsWith(4, 2, 4), Words(PLK_TOO_NEW, "record", 2, 1));
    EXPECT_EQ(wordsWith(4, 0, 4), Words(PLK_BAD_RECORD, "record", 0, 0));
    EXPECT_EQ(wordsWith(0, 0x516B6C70, 4), Words(PLK_BAD_RECORD, "record", 0, 0));
    EXPECT_EQ(wordsWith(16, ~0ULL, 8), Words(PLK_INVALID, "source.width", -1, 0));
    EXPECT_EQ(wordsWith(28, 9, 4), Words(PLK_INVALID, "source.bits", 9, 8));
    EXPECT_EQ(wordsWith(48, 10, 4), Words(PLK_UNSUPPORTED, "target.bits", 10, 16));
    EXPECT_EQ(wordsWith(56, 5, 4), Words(PLK_INVALID, "repeat", 5, 1));
    EXPECT_EQ(wordsWith(88, 3, 8), Words(PLK_BAD_RECORD, "record", 0, 0));
    EXPECT_EQ(wordsWith(88, 5, 8), Words(PLK_BAD_RECORD, "map_count", 5, 4));
    EXPECT_EQ(wordsWith(84, 2, 4), Words(PLK_BAD_RECORD, "map", 2, 1));
    EXPECT_EQ(wordsWith(84, 0, 4), Words(PLK_BAD_RECORD, "map", 0, 1));
    EXPECT_EQ(wordsWith(88, ~0ULL, 8), Words(PLK_BAD_RECORD, "map_count", 0x7FFFFFFFFFFFFFFF, 4));
    EXPECT_EQ(wordsWith(96, 5, 4), Words(PLK_UNSUPPORTED, "map[0]", 5, 4));
    EXPECT_EQ(LoadWords(Sealed(Bytes(record.begin(), record.begin() + 16))),
              Words(PLK_BAD_RECORD, "bytes", 20, 116));
    Bytes empty(record.begin(), record.begin() + 16);
    std::fill(empty.begin() + 8, empty.end(), static_cast<unsigned char>(0));
    EXPECT_EQ(LoadWords(Sealed(empty)), Words(PLK_BAD_RECORD, "record", 0, 0));
}

// A plan of the record that it gives back is the same plan.
TEST(SavedPlan, GivesItsSpecBack)
{
    const std::int32_t none = 0;
    plk_spec withoutChannels = SpecOf(5, 3, 8, 8);
    withoutChannels.target.channels = 0;
    withoutChannels.map = &none;
    for (const plk_spec& spec : {RichSpec(), SpecOf(5, 3, 8, 16), withoutChannels}) {
        const PlanHandle plan = PlanOf(spec);
        plk_spec given = Sized<plk_spec>();
        ASSERT_EQ(plk_plan_spec(plan.get(), &given, nullptr), PLK_OK);
        EXPECT_EQ(Saved(PlanOf(given).get()), Saved(plan.get()));
        EXPECT_EQ(given.map == nullptr, spec.map == nullptr);
        EXPECT_NE(given.map, mapOfFour);
    }
    plk_spec given = Sized<plk_spec>();
    const PlanHandle plan = PlanOf(RichSpec());
    plk_failure failure = Sized<plk_failure>();
    EXPECT_EQ(WordsOf(plk_plan_spec(nullptr, &given, &failure), failure),
              Words(PLK_INVALID, "plan", 0, 0));
    EXPECT_EQ(WordsOf(plk_plan_spec(plan.get(), nullptr, &failure), failure),
              Words(PLK_INVALID, "spec", 0, 0));
}

TEST(SavedPlan, IsGivenOnlyAsAWhole)
{
    const PlanHandle plan = PlanOf(RichSpec());
    const Bytes record = Saved(plan.get());
    for (std::size_t bytes = 0; bytes <= record.size() + 2; ++bytes) {
        Bytes buffer(record.size() + 8, 0xEE);
        const Bytes before = buffer;
        std::uint64_t needed = 0;
        plk_failure failure = Sized<plk_failure>();
        const plk_status status =
            plk_plan_save(plan.get(), buffer.data(), bytes, &needed, &failure);
        EXPECT_EQ(needed, record.size());
        const auto given = static_cast<std::int64_t>(bytes);
        const auto whole = static_cast<std::int64_t>(record.size());
        EXPECT_EQ(WordsOf(status, failure),
                  given < whole ? Words(PLK_TOO_SMALL, "bytes", given, whole) : "OK");
        Bytes expected = before;
        if (given >= whole)
            std::copy(record.begin(), record.end(), expected.begin());
        EXPECT_EQ(buffer, expected);
    }
    EXPECT_EQ(plk_plan_save(plan.get(), nullptr, record.size(), nullptr, nullptr), PLK_INVALID);
    EXPECT_EQ(plk_plan_save(nullptr, nullptr, 0, nullptr, nullptr), PLK_INVALID);
    plk_plan* loaded = nullptr;
    EXPECT_EQ(plk_plan_load(record.data(), record.size(), nullptr, nullptr), PLK_INVALID);
    EXPECT_EQ(plk_plan_load(nullptr, record.size(), &loaded, nullptr), PLK_INVALID);
    EXPECT_EQ(loaded, nullptr);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
