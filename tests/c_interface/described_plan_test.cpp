#include "tests/c_interface/plan_support.h"
#include "tests/direct/levels.h"

namespace zvk::Pelkraft::TestSupport {
namespace {

TEST(DescribedPlan, NamesRoadStepsAndBytes)
{
    const LimitedLevel portable(0);
    plk_spec spec = SpecOf(1000, 4, 8, 8);
    spec.target.planar = 1;
    EXPECT_EQ(Described(PlanOf(spec).get(), PLK_TEXT), "road: direct, plain code (level 0)\n"
                                                       "  split 4 channels of 8 bits\n"
                                                       "reads 4000 bytes, writes 4000 bytes\n");
}

TEST(DescribedPlan, RepeatsTheSpecInJson)
{
    const LimitedLevel portable(0);
    plk_spec spec = SpecOf(10, 4, 8, 8);
    const std::string plain =
        "{\"schema\":1,"
        "\"source\":{\"width\":10,\"channels\":4,\"bits\":8,\"planar\":false},"
        "\"target\":{\"width\":10,\"channels\":4,\"bits\":8,\"planar\":false},"
        "\"map\":null,\"repeat\":1,\"mirror\":false,\"samples\":\"fill\","
        "\"invert\":false,\"clip\":false,\"stream\":false,\"road\":\"direct\"";
    EXPECT_EQ(Described(PlanOf(spec).get(), PLK_JSON).substr(0, plain.size()), plain);
    const std::int32_t map[] = {2, PLK_EMPTY, 0};
    spec.target.channels = 3;
    spec.target.planar = 1;
    spec.target.width = 19;
    spec.map = map;
    spec.map_count = 3;
    spec.repeat = 2;
    spec.mirror = spec.clip = spec.stream = 1;
    const std::string text = Described(PlanOf(spec).get(), PLK_JSON);
    const std::string head =
        "{\"schema\":1,"
        "\"source\":{\"width\":10,\"channels\":4,\"bits\":8,\"planar\":false},"
        "\"target\":{\"width\":19,\"channels\":3,\"bits\":8,\"planar\":true},"
        "\"map\":[2,\"empty\",0],\"repeat\":2,\"mirror\":true,\"samples\":\"fill\","
        "\"invert\":false,\"clip\":true,\"stream\":true,"
        "\"road\":\"direct\",\"level\":\"plain code (level 0)\",\"steps\":[\"";
    EXPECT_EQ(text.substr(0, head.size()), head);
    const std::string tail = "\"],\"bytes_read\":40,\"bytes_written\":57,\"in_place\":false}\n";
    ASSERT_GT(text.size(), tail.size());
    EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
}

TEST(DescribedPlan, NamesTheLevelThatItWasMadeFor)
{
    for (const int level : LevelsOfThisProcessor()) {
        const LimitedLevel limited(level);
        plk_spec spec = SpecOf(10, 4, 8, 16);
        const std::string given = "(level " + std::to_string(level) + ")";
        EXPECT_NE(Described(PlanOf(spec).get(), PLK_TEXT).find(given), std::string::npos);
        spec.road = PLK_ROAD_PORTABLE;
        EXPECT_NE(Described(PlanOf(spec).get(), PLK_TEXT).find("plain code (level 0)"),
                  std::string::npos);
    }
}

TEST(DescribedPlan, HasNoStepsWithoutPixels)
{
    const LimitedLevel portable(0);
    EXPECT_EQ(Described(PlanOf(SpecOf(0, 4, 8, 8)).get(), PLK_TEXT),
              "road: none, plain code (level 0)\nreads 0 bytes, writes 0 bytes\n");
}

TEST(DescribedPlan, IsGivenOnlyAsAWhole)
{
    const PlanHandle plan = PlanOf(SpecOf(10, 4, 8, 16));
    for (const std::int32_t form : {PLK_TEXT, PLK_JSON}) {
        const std::string text = Described(plan.get(), form);
        for (std::size_t bytes = 0; bytes <= text.size() + 2; ++bytes) {
            std::string buffer(text.size() + 8, '#');
            std::uint64_t needed = 0;
            plk_failure failure = Sized<plk_failure>();
            const plk_status status =
                plk_plan_describe(plan.get(), form, buffer.data(), bytes, &needed, &failure);
            EXPECT_EQ(needed, text.size() + 1);
            const auto given = static_cast<std::int64_t>(bytes);
            const auto whole = static_cast<std::int64_t>(needed);
            EXPECT_EQ(WordsOf(status, failure),
                      given < whole ? Words(PLK_TOO_SMALL, "bytes", given, whole) : "OK");
            const std::string end = given < whole
                                        ? std::string(text.size() + 8, '#')
                                        : text + std::string(1, '\0') + std::string(7, '#');
            EXPECT_EQ(buffer, end);
        }
    }
}

TEST(DescribedPlan, IsRefusedInAnotherForm)
{
    const PlanHandle plan = PlanOf(SpecOf(10, 4, 8, 16));
    char buffer[4];
    plk_failure failure = Sized<plk_failure>();
    for (const std::int32_t form : {-1, 2})
        EXPECT_EQ(
            WordsOf(plk_plan_describe(plan.get(), form, buffer, 4, nullptr, &failure), failure),
            Words(PLK_INVALID, "form", form, 0));
    EXPECT_EQ(plk_plan_describe(nullptr, 0, buffer, 4, nullptr, nullptr), PLK_INVALID);
    EXPECT_EQ(plk_plan_describe(plan.get(), 0, nullptr, 4000, nullptr, nullptr), PLK_INVALID);
}

TEST(DescribedPlan, SaysInNeedsWhatItsRowsTake)
{
    for (const std::int32_t bits : {1, 2, 8, 16})
        for (const std::int32_t targetBits : {8, 16}) {
            plk_spec spec = SpecOf(13, 3, bits, targetBits);
            spec.source.planar = 1;
            plk_needs needs = Sized<plk_needs>();
            ASSERT_EQ(plk_plan_needs(PlanOf(spec).get(), &needs, nullptr), PLK_OK);
            const auto plane = static_cast<std::uint64_t>((13 * bits + 7) / 8);
            const auto row = static_cast<std::uint64_t>(13 * 3 * targetBits / 8);
            EXPECT_EQ(needs.source_plane_bytes, plane);
            EXPECT_EQ(needs.source_row_bytes, 3 * plane);
            EXPECT_EQ(needs.target_plane_bytes, row);
            EXPECT_EQ(needs.target_row_bytes, row);
        }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
