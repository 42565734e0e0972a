#include "tests/c_interface/plan_support.h"
#include "tests/support/random_bytes.h"

#include <limits>

// The checks of a run against a map of bytes, for all strides around the smallest ones.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

class ExtentTrials
{
public:
    explicit ExtentTrials(const NaiveJoin& newSpec)
        : spec(newSpec), plan(PlanOf(SpecOf(newSpec))), pixels(RandomBytes(size, 5))
    {
        plk_needs needs = Sized<plk_needs>();
        EXPECT_EQ(plk_plan_needs(plan.get(), &needs, nullptr), PLK_OK);
        inPlace = needs.in_place != 0;
    }

    void Try(const NaivePlacement& from, const NaivePlacement& to, int rows, bool shared)
    {
        const NaiveTrial trial = {spec, from, to, rows, shared};
        Bytes source = pixels;
        Bytes target = shared ? pixels : Bytes(size, 0xCC);
        Bytes& read = shared ? target : source;
        const Bytes before = target;
        const plk_source sourceView = SourceOf(read, from);
        const plk_target targetView = TargetOf(target, to);
        const std::string words =
            RunWords(plan.get(), &sourceView, &targetView, static_cast<std::uint64_t>(rows));
        const std::string expected = NaiveEnd(trial, inPlace, size);
        ASSERT_EQ(words.substr(0, words.find('.')), expected) << Describe(trial) << ": " << words;
        ++(expected == "OK" ? accepted : refused);
        const Bytes after =
            expected == "OK" ? NaiveRun(spec, pixels, from, before, to, rows) : before;
        ASSERT_TRUE(target == after) << Describe(trial);
        ASSERT_TRUE(shared || source == pixels) << Describe(trial);
    }

    static constexpr std::size_t size = 24;
    int accepted = 0;
    int refused = 0;

private:
    NaiveJoin spec;
    PlanHandle plan;
    bool inPlace = false;
    Bytes pixels;
};

int ElementBytes(const NaiveGeometry& geometry)
{
    return (geometry.bits + 7) / 8;
}

std::vector<NaiveJoin> SmallSpecs()
{
    std::vector<NaiveJoin> specs = {
        {{2, 2, 8, false}, {2, 2, 8, false}},  {{2, 2, 8, false}, {2, 2, 8, true}},
        {{1, 2, 8, true}, {1, 2, 8, false}},   {{2, 2, 8, true}, {2, 2, 8, true}},
        {{1, 1, 16, false}, {1, 1, 16, true}}, {{1, 2, 8, true}, {1, 2, 16, true}},
        {{9, 2, 8, true}, {9, 2, 1, true}},    {{5, 2, 2, true}, {5, 2, 8, false}},
        {{1, 3, 8, true}, {1, 3, 8, true}},    {{0, 2, 8, false}, {0, 2, 8, true}},
        {{2, 0, 8, false}, {2, 0, 8, true}},
    };
    NaiveJoin mapped = {{1, 3, 8, true}, {1, 2, 8, true}, true, {2, -1}};
    specs.push_back(mapped);
    mapped.map = {0, 2};
    specs.push_back(mapped);
    mapped.map = {-5, -1};
    specs.push_back(mapped);
    NaiveJoin clipped = {{4, 2, 8, true}, {2, 2, 8, true}};
    specs.push_back(clipped);
    clipped.mirrored = true;
    specs.push_back(clipped);
    return specs;
}

// For each stride of both sides from -3 to 3 elements.
template <typename Body>
void ForStrides(const NaiveJoin& spec, const Body& body)
{
    const int from = ElementBytes(spec.source);
    const int to = ElementBytes(spec.target);
    for (int row = -3; row <= 3; ++row)
        for (int plane = -3; plane <= 3; ++plane)
            for (int targetRow = -3; targetRow <= 3; ++targetRow)
                for (int targetPlane = -3; targetPlane <= 3; ++targetPlane)
                    body(NaivePlacement{0, row * from, plane * from},
                         NaivePlacement{0, targetRow * to, targetPlane * to});
}

TEST(RunExtents, AreThoseOfAByteMapInBuffersOfTheirOwn)
{
    for (const NaiveJoin& spec : SmallSpecs()) {
        ExtentTrials trials(spec);
        ForStrides(spec, [&](NaivePlacement from, NaivePlacement to) {
            for (const int offset : {0, 1, 12, 21})
                for (const int rows : {0, 1, 3}) {
                    from.offset = offset;
                    to.offset = 24 - 2 * offset / 3 - 2;
                    trials.Try(from, to, rows, false);
                }
        });
        EXPECT_GT(trials.accepted, 0) << Describe(spec);
        if (spec.source.width != 0 && spec.source.channels != 0) {
            EXPECT_GT(trials.refused, 0) << Describe(spec);
        }
        if (HasFatalFailure())
            return;
    }
}

TEST(RunExtents, AreThoseOfAByteMapInOneBuffer)
{
    for (const NaiveJoin& spec : SmallSpecs()) {
        ExtentTrials trials(spec);
        ForStrides(spec, [&](NaivePlacement from, NaivePlacement to) {
            for (const int distance : {-4, -2, -1, 0, 1, 3})
                for (const int rows : {1, 3}) {
                    from.offset = 11;
                    to.offset = 11 + distance;
                    trials.Try(from, to, rows, true);
                }
        });
        EXPECT_GT(trials.accepted, 0) << Describe(spec);
        if (HasFatalFailure())
            return;
    }
}

// Rows and planes of many counts and strides, in which planes of one row stand between rows.
TEST(RunExtents, KeepTheTargetsOwnPiecesApart)
{
    int accepted = 0;
    for (int width = 1; width <= 3; ++width)
        for (int channels = 1; channels <= 7; ++channels) {
            const NaiveJoin spec = {{width, channels, 8, false}, {width, channels, 8, true}};
            const PlanHandle plan = PlanOf(SpecOf(spec));
            for (int rows = 1; rows <= 7; ++rows)
                for (int row = -20; row <= 20; ++row)
                    for (int plane = -20; plane <= 20; ++plane) {
                        const NaivePlacement to = {300, row, plane};
                        const NaivePlacement from = {0, 0, 0};
                        const Bytes pixels(static_cast<std::size_t>(width * channels), 9);
                        Bytes inks(700);
                        const plk_source source = SourceOf(pixels, from);
                        const plk_target target = TargetOf(inks, to);
                        const bool apart =
                            NaiveEnd({spec, from, to, rows, false}, false, inks.size()) == "OK";
                        plk_failure failure = Sized<plk_failure>();
                        ASSERT_EQ(plk_plan_run(plan.get(), &source, &target,
                                               static_cast<std::uint64_t>(rows), &failure),
                                  apart ? PLK_OK : PLK_OVERLAP)
                            << width << " pixels, " << channels << " planes at " << plane << ", "
                            << rows << " rows at " << row << ": " << failure.text;
                        accepted += apart ? 1 : 0;
                    }
        }
    EXPECT_GT(accepted, 10000);
}

TEST(RunExtents, ServeTheHalvesOfAPicture)
{
    const NaiveJoin spec = {{50, 3, 8, false}, {50, 3, 8, false}, false, {}, 1, true};
    const PlanHandle plan = PlanOf(SpecOf(spec));
    Bytes picture = RandomBytes(100 * 300, 3);
    const NaivePlacement left = {0, 300, 0};
    const NaivePlacement right = {150, 300, 0};
    const Bytes expected = NaiveRun(spec, picture, left, picture, right, 100);
    const plk_source source = SourceOf(picture, left);
    plk_target target = TargetOf(picture, right);
    EXPECT_EQ(RunWords(plan.get(), &source, &target, 100), "OK");
    EXPECT_TRUE(picture == expected);
    target.offset = 149;
    EXPECT_EQ(RunWords(plan.get(), &source, &target, 100), Words(PLK_OVERLAP, "target.base", 0, 0));
}

struct NumberCase
{
    std::int64_t offset;
    std::int64_t rowStride;
    std::int64_t planeStride;
    std::uint64_t rows;
    std::string words;
};

// Numbers that wrap in 64 bits when they are multiplied or added.
TEST(RunExtents, AreNotWrappedByAnyNumber)
{
    const NaiveJoin spec = {{2, 2, 8, true}, {2, 2, 8, true}};
    const PlanHandle plan = PlanOf(SpecOf(spec));
    const std::int64_t wide = std::int64_t{1} << 62;
    const std::uint64_t many = std::numeric_limits<std::uint64_t>::max();
    const auto beyond = [](const char* field) { return Words(PLK_TOO_SMALL, field, 16, 0); };
    const std::vector<NumberCase> cases = {
        {0, 4, 2, many, beyond("source.bytes")},
        {0, 0, 2, many, Words(PLK_OVERLAP, "target.row_stride", 0, 4)},
        {0, largest, 2, 2, beyond("source.bytes")},
        {0, -largest - 1, 2, 2, beyond("source.bytes")},
        {0, -largest - 1, 2, 3, beyond("source.bytes")},
        {0, wide, 2, 5, beyond("source.bytes")},
        {0, 4, wide, 1, beyond("source.bytes")},
        {0, 4, -largest - 1, 1, beyond("source.bytes")},
        {largest, 4, 2, 1, beyond("source.bytes")},
        {-largest - 1, 4, 2, 1, beyond("source.bytes")},
        {0, std::int64_t{1} << 32, 2, (std::uint64_t{1} << 32) + 1, beyond("source.bytes")},
        {0, largest, 2, 1, "OK"},
        {12, -largest - 1, -10, 1, "OK"},
        {-1, 4, 2, 1, Words(PLK_TOO_SMALL, "source.offset", -1, 0)},
        {3, -4, 2, 2, Words(PLK_TOO_SMALL, "source.offset", 3, 4)},
        {3, 4, -4, 2, Words(PLK_TOO_SMALL, "source.offset", 3, 4)},
        {13, 4, 2, 1, Words(PLK_TOO_SMALL, "source.bytes", 16, 17)},
        {0, 4, 2, 5, Words(PLK_TOO_SMALL, "source.bytes", 16, 20)},
        {0, 4, 3, 1, "OK"},
        {0, 1000, 3, 1000, Words(PLK_TOO_SMALL, "source.bytes", 16, 999005)},
    };
    for (const NumberCase& number : cases) {
        const Bytes pixels(16, 1);
        Bytes inks(16);
        plk_source source = SourceOf(pixels, {0, 0, 0});
        plk_target target = TargetOf(inks, {0, 0, 0});
        source.offset = target.offset = number.offset;
        source.row_stride = target.row_stride = number.rowStride;
        source.plane_stride = target.plane_stride = number.planeStride;
        EXPECT_EQ(RunWords(plan.get(), &source, &target, number.rows), number.words);
        const bool isTarget = number.words.find("target") != std::string::npos;
        if (number.words == "OK" || isTarget)
            continue;
        // The same on the other side.
        const plk_source good = SourceOf(pixels, {0, 0, 2});
        std::string words = number.words;
        words.replace(words.find("source"), 6, "target");
        EXPECT_EQ(RunWords(plan.get(), &good, &target, number.rows), words);
    }
}

TEST(RunExtents, EndWithTheAddresses)
{
    const PlanHandle plan = PlanOf(SpecOf(2, 2, 8, 8));
    const Bytes pixels(4, 1);
    Bytes inks(4);
    plk_source source = SourceOf(pixels, {0, 4, 0});
    const plk_target target = TargetOf(inks, {0, 4, 0});
    source.bytes = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(RunWords(plan.get(), &source, &target, 1), "OK");
    // The rows would go on at address 0.
    source.base = reinterpret_cast<const void*>(std::numeric_limits<std::uintptr_t>::max() - 2);
    EXPECT_EQ(RunWords(plan.get(), &source, &target, 1),
              Words(PLK_TOO_SMALL, "source.bytes", largest, 0));
}

TEST(RunExtents, RefuseNullWhereThereAreBytes)
{
    const PlanHandle plan = PlanOf(SpecOf(2, 2, 8, 8));
    const Bytes pixels(4, 1);
    Bytes inks(4, 8);
    plk_source source = SourceOf(pixels, {0, 4, 0});
    plk_target target = TargetOf(inks, {0, 4, 0});
    target.base = nullptr;
    EXPECT_EQ(RunWords(plan.get(), &source, &target, 1), Words(PLK_INVALID, "target.base", 0, 0));
    source.base = nullptr;
    EXPECT_EQ(RunWords(plan.get(), &source, &target, 1), Words(PLK_INVALID, "source.base", 0, 0));
    EXPECT_EQ(RunWords(plan.get(), &source, &target, 0), "OK");
    EXPECT_EQ(RunWords(PlanOf(SpecOf(0, 2, 8, 8)).get(), &source, &target, 7), "OK");
    EXPECT_EQ(RunWords(PlanOf(SpecOf(2, 0, 8, 8)).get(), &source, &target, 7), "OK");
    EXPECT_EQ(RunWords(nullptr, &source, &target, 0), Words(PLK_INVALID, "plan", 0, 0));
    // A map without a channel reads no plane.
    NaiveJoin spec = {{2, 2, 8, true}, {2, 2, 8, false}, true, {-7, -1}};
    target = TargetOf(inks, {0, 4, 0});
    EXPECT_EQ(RunWords(PlanOf(SpecOf(spec)).get(), &source, &target, 1), "OK");
    EXPECT_TRUE((inks == Bytes{5, 0, 5, 0}));
    spec.source.planar = false;
    EXPECT_EQ(RunWords(PlanOf(SpecOf(spec)).get(), &source, &target, 1),
              Words(PLK_INVALID, "source.base", 0, 0));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
