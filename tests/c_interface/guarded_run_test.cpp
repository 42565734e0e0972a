#include "tests/c_interface/plan_support.h"
#include "tests/direct/levels.h"
#include "tests/support/guarded_arena.h"
#include "tests/support/random_bytes.h"

#include <cstring>

// Rows of exactly their bytes between forbidden pages, on every level.
namespace zvk::Pelkraft::TestSupport {
namespace {

struct Arenas
{
    GuardedArena source = GuardedArena(1U << 16);
    GuardedArena target = GuardedArena(1U << 16);
};

// The view of rows one directly after the other, or from the last one back to the first.
NaivePlacement DenseView(const NaiveGeometry& geometry, int rows, bool backwards)
{
    const auto plane = static_cast<std::ptrdiff_t>(NaiveRowBytes(
        geometry.planar ? NaiveGeometry{geometry.width, 1, geometry.bits, true} : geometry));
    const auto row = static_cast<std::ptrdiff_t>(NaiveRowBytes(geometry));
    if (!backwards)
        return {0, row, plane};
    return {rows * row - plane, -row, -plane};
}

void RunGuarded(const Arenas& arenas, const NaiveJoin& spec, int rows, Flush flush, bool backwards)
{
    const Bytes pixels =
        RandomBytes(NaiveRowBytes(spec.source) * static_cast<std::size_t>(rows), 1);
    const Bytes before(NaiveRowBytes(spec.target) * static_cast<std::size_t>(rows), 0xD7);
    const NaivePlacement from = DenseView(spec.source, rows, backwards && spec.source.planar);
    const NaivePlacement to = DenseView(spec.target, rows, backwards && spec.target.planar);
    unsigned char* const source = arenas.source.Place(pixels.size(), flush);
    unsigned char* const target = arenas.target.Place(before.size(), flush);
    std::copy(pixels.begin(), pixels.end(), source);
    std::copy(before.begin(), before.end(), target);
    plk_source sourceRows = SourceOf(pixels, from);
    sourceRows.base = source;
    Bytes unused(before.size());
    plk_target targetRows = TargetOf(unused, to);
    targetRows.base = target;
    ASSERT_EQ(RunWords(PlanOf(SpecOf(spec)).get(), &sourceRows, &targetRows,
                       static_cast<std::uint64_t>(rows)),
              "OK")
        << Describe(spec);
    const Bytes after(target, target + before.size());
    ASSERT_TRUE(after == NaiveRun(spec, pixels, from, before, to, rows))
        << Describe(spec) << (backwards ? " backwards" : "");
}

std::vector<NaiveGeometry> AllForms(int width, int channels)
{
    return {{width, channels, 8, false}, {width, channels, 16, false}, {width, channels, 1, true},
            {width, channels, 2, true},  {width, channels, 8, true},   {width, channels, 16, true}};
}

TEST(GuardedRuns, TouchNothingOutsideTheirRows)
{
    const Arenas arenas;
    for (const int level : LevelsOfThisProcessor()) {
        const LimitedLevel limited(level);
        for (const int width : {1, 3, 8, 17, 33, 67, 130, 257})
            for (const NaiveGeometry& source : AllForms(width, 4))
                for (const NaiveGeometry& target : AllForms(width, 4))
                    for (const Flush flush : {Flush::AtEnd, Flush::AtStart}) {
                        RunGuarded(arenas, {source, target}, 3, flush, flush == Flush::AtStart);
                        if (HasFatalFailure())
                            return;
                    }
    }
}

TEST(GuardedRuns, DoWhatThePlanJoins)
{
    const Arenas arenas;
    for (const int level : LevelsOfThisProcessor()) {
        const LimitedLevel limited(level);
        for (std::uint32_t number = 0; number != 3000; ++number) {
            const Bytes random = RandomBytes(32, number);
            const auto pick = [&](std::size_t index, int count) { return random[index] % count; };
            const int width = pick(0, 5) == 0 ? pick(1, 200) : pick(1, 40);
            const int channels = 1 + pick(2, 6);
            const auto forms = AllForms(width, channels);
            NaiveJoin spec = {forms[static_cast<std::size_t>(pick(3, 6))],
                              forms[static_cast<std::size_t>(pick(4, 6))]};
            spec.repeat = 1 << pick(5, 3);
            spec.mirrored = pick(6, 2) != 0;
            spec.samples = static_cast<NaiveSamples>(pick(7, 3));
            spec.inverted = pick(8, 2) != 0;
            spec.target.width =
                std::max(0, width * spec.repeat + (pick(9, 3) == 0 ? pick(10, 9) - 4 : 0));
            if (pick(11, 2) != 0) {
                spec.maps = true;
                spec.target.channels = 1 + pick(12, 6);
                const int largest = (1 << spec.target.bits) - 1;
                for (int i = 0; i != spec.target.channels; ++i) {
                    const int entry = pick(13 + static_cast<std::size_t>(i), channels + 2);
                    spec.map.push_back(entry < channels    ? entry
                                       : entry == channels ? -1
                                                           : -2 - (random[20] * 257 & largest));
                }
            }
            RunGuarded(arenas, spec, 1 + pick(21, 4),
                       pick(22, 2) != 0 ? Flush::AtEnd : Flush::AtStart, pick(23, 2) != 0);
            if (HasFatalFailure()) {
                ADD_FAILURE() << "level " << level << ", number " << number;
                return;
            }
        }
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
