#include "tests/direct/levels.h"
#include "tests/plan/rows_case.h"
#include "tests/support/conversion_choices.h"
#include "tests/support/conversion_run.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

// A plan of many rows against the fills that do the same in one call, or in two. Portable fills are
// left out where they unpack: they leave samples packed, which a plan does not.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr unsigned seed = 20261124;

template <typename List>
auto PickFrom(const List& list, std::mt19937& engine)
{
    return list[engine() % std::size(list)];
}

Bytes Filled(const ConversionCase& tested, const Bytes& source, const Bytes& before)
{
    Bytes from = source;
    Bytes to = before;
    RunConversion(tested, from.data(), to.data());
    return to;
}

Bytes Planned(const NaiveJoin& join, int level, const Bytes& source, const Bytes& before)
{
    const GuardedBuffer from(source);
    const GuardedBuffer to(before);
    RowsPlan(RequestOf(join, level))
        .Run(RowsAt<const unsigned char>(from.data(), PlaceTightly(join.source, 1).at),
             RowsAt(to.data(), PlaceTightly(join.target, 1).at), 1);
    return to.bytes();
}

// Fills take every negative entry for an empty one.
void TakeOperation(NaiveJoin& join, const NaiveOperation& operation)
{
    join.maps = operation.hasMap;
    join.map = operation.map;
    for (int& entry : join.map)
        entry = std::max(entry, -1);
    join.repeat = std::abs(operation.factor);
    join.mirrored = operation.factor < 0;
}

bool LeavesPacked(const NaiveGeometry& source, int level)
{
    return level < 3 && IsNaivePacked(source);
}

int TargetChannels(const NaiveOperation& operation, int channels)
{
    return operation.hasMap ? static_cast<int>(operation.map.size()) : channels;
}

void CheckFill(std::mt19937& engine, int level)
{
    const int channels = PickFrom(ChannelCounts(), engine);
    const NaiveOperation operation = PickFrom(Operations(channels), engine);
    const auto [from, to] = PickFrom(ServedForms(operation), engine);
    const int width = PickFrom(Widths(), engine);
    // Planes of 10 bits are no plan's.
    if ((from.bits == 10 && from.planar) || (to.bits == 10 && to.planar))
        return;
    NaiveJoin join{{width, channels, from.bits, from.planar},
                   {DestinationWidth(width, operation.factor, static_cast<unsigned>(engine() % 3)),
                    TargetChannels(operation, channels), to.bits, to.planar}};
    TakeOperation(join, operation);
    if (LeavesPacked(join.source, level))
        return;
    SCOPED_TRACE(Describe(join) + ", level " + std::to_string(level));
    const Bytes source = RandomBytes(NaiveRowBytes(join.source), seed);
    const Bytes before = RandomBytes(NaiveRowBytes(join.target), seed + 1);
    EXPECT_TRUE(Filled({join.source, join.target, operation, false}, source, before) ==
                Planned(join, level, source, before));
}

TEST(RowsPlan, GivesWhatAFillGives)
{
    for (const int level : LevelsOfThisProcessor()) {
        const LimitedLevel limited(level);
        std::mt19937 engine(seed);
        for (int i = 0; i != 2000 && !HasFailure(); ++i)
            CheckFill(engine, level);
    }
}

// A map to a row between, then all else to the target.
void CheckTwoFills(std::mt19937& engine, int level)
{
    const int channels = PickFrom(ChannelCounts(), engine);
    constexpr int factors[] = {1, 2, 4, -1, -2, -4};
    const NaiveOperation map = Operations(channels).back();
    const NaiveOperation turn = RepeatBy(PickFrom(factors, engine));
    const auto [from, to] = PickFrom(ServedForms(turn), engine);
    const int width = PickFrom(Widths(), engine);
    if ((from.bits == 10 && from.planar) || (to.bits == 10 && to.planar))
        return;
    const NaiveGeometry between{width, TargetChannels(map, channels), from.bits, from.planar};
    NaiveJoin join{{width, channels, from.bits, from.planar},
                   {DestinationWidth(width, turn.factor, 0), between.channels, to.bits, to.planar}};
    TakeOperation(join, map);
    join.repeat = std::abs(turn.factor);
    join.mirrored = turn.factor < 0;
    if (LeavesPacked(join.source, level))
        return;
    SCOPED_TRACE(Describe(join) + ", level " + std::to_string(level));
    const Bytes source = RandomBytes(NaiveRowBytes(join.source), seed);
    const Bytes mapped = Filled({join.source, between, map, false}, source,
                                RandomBytes(NaiveRowBytes(between), seed + 1));
    const Bytes before = RandomBytes(NaiveRowBytes(join.target), seed + 2);
    EXPECT_TRUE(Filled({between, join.target, turn, false}, mapped, before) ==
                Planned(join, level, source, before));
}

TEST(RowsPlan, JoinsWhatTwoFillsGive)
{
    for (const int level : LevelsOfThisProcessor()) {
        const LimitedLevel limited(level);
        std::mt19937 engine(seed);
        for (int i = 0; i != 2000 && !HasFailure(); ++i)
            CheckTwoFills(engine, level);
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
