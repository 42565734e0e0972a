#include "tests/plan/rows_case.h"

#include "tests/support/conversion_choices.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr Form forms[] = {{1, true},  {2, true},  {8, true},   {16, true}, {1, false},
                          {2, false}, {8, false}, {10, false}, {16, false}};

int Below(int limit, std::mt19937& engine)
{
    return static_cast<int>(engine() % static_cast<unsigned>(limit));
}

template <typename List>
auto PickFrom(const List& list, std::mt19937& engine)
{
    return list[engine() % std::size(list)];
}

int PickWidth(int channels, std::mt19937& engine)
{
    if (channels > 100)
        return Below(40, engine);
    constexpr int blocks[] = {16, 64, 128, 512, 1024, 2048, 3000};
    constexpr int offs[] = {-1, 0, 1, 9};
    return Below(3, engine) != 0 ? Below(70, engine)
                                 : PickFrom(blocks, engine) + PickFrom(offs, engine);
}

int PickChannels(std::mt19937& engine)
{
    constexpr int many[] = {33, 63, 64, 65, 129, 130, 200, 1000};
    return Below(6, engine) == 0 ? PickFrom(many, engine) : 1 + Below(20, engine);
}

unsigned LargestSample(const Form& form)
{
    return (1U << (form.planar ? form.bits : (form.bits + 7) / 8 * 8)) - 1;
}

std::vector<int> PickMap(int sourceChannels, int channels, unsigned largest, std::mt19937& engine)
{
    const int odds = 2 + Below(8, engine);
    std::vector<int> map;
    for (int c = 0; c != channels; ++c) {
        const int kind = Below(odds, engine);
        if (kind == 0)
            map.push_back(-1);
        else if (kind == 1 || sourceChannels == 0)
            map.push_back(-2 - static_cast<int>(engine() % (largest + 1)));
        else
            map.push_back(Below(sourceChannels, engine));
    }
    return map;
}

// A sample that stands in bytes of more bits than its own has no full scale.
bool HasFullScale(const Form& form)
{
    return form.planar || form.bits == 8 || form.bits == 16;
}

void PickSamples(NaiveJoin& join, const Form& from, const Form& to, std::mt19937& engine)
{
    const bool scaled = HasFullScale(from) && HasFullScale(to);
    join.samples = static_cast<NaiveSamples>(Below(3, engine));
    if (join.samples == NaiveSamples::AsTones && !scaled)
        join.samples = NaiveSamples::AsLevels;
    join.inverted = scaled && Below(3, engine) == 0;
}

std::ptrdiff_t PlaneBytes(const NaiveGeometry& form)
{
    const int planes = form.planar ? form.channels : 1;
    return planes == 0 ? 0 : static_cast<std::ptrdiff_t>(NaiveRowBytes(form)) / planes;
}

// Turns the order of so many parts around.
void Reverse(std::ptrdiff_t& step, int parts, std::ptrdiff_t& offset)
{
    offset += step * std::max(parts - 1, 0);
    step = -step;
}

} // namespace

RowsRequest RequestOf(const NaiveJoin& join, int level)
{
    const auto formOf = [](const NaiveGeometry& form) {
        return RowForm{form.width, form.channels, form.bits, form.planar};
    };
    RowsRequest request{formOf(join.source), formOf(join.target)};
    request.maps = join.maps;
    request.entries = {join.map.data(), join.map.size()};
    request.repeat = join.repeat;
    request.mirrored = join.mirrored;
    request.samples = static_cast<Samples>(join.samples);
    request.inverted = join.inverted;
    request.level = level;
    return request;
}

PlacedRows PlaceTightly(const NaiveGeometry& form, int rows)
{
    const auto rowBytes = static_cast<std::ptrdiff_t>(NaiveRowBytes(form));
    return {{0, rowBytes, PlaneBytes(form)}, NaiveRowBytes(form) * static_cast<std::size_t>(rows)};
}

PlacedRows PlaceRows(const NaiveGeometry& form, int rows, std::mt19937& engine)
{
    const int planes = form.planar ? form.channels : 1;
    const std::ptrdiff_t bytes = PlaneBytes(form);
    const std::ptrdiff_t inner = bytes + Below(4, engine);
    const bool rowsOutside = Below(2, engine) == 0;
    const int parts = rowsOutside ? planes : rows;
    const std::ptrdiff_t outer =
        inner * std::max(parts, 1) + std::ptrdiff_t{Below(2, engine)} * Below(70, engine);
    NaivePlacement at{0, rowsOutside ? outer : inner, rowsOutside ? inner : outer};
    if (rows == 0 || planes == 0)
        return {at, 0};
    const std::ptrdiff_t end = at.rowStep * (rows - 1) + at.planeStep * (planes - 1) + bytes;
    if (Below(3, engine) == 0)
        Reverse(at.rowStep, rows, at.offset);
    if (Below(3, engine) == 0)
        Reverse(at.planeStep, planes, at.offset);
    return {at, static_cast<std::size_t>(end)};
}

Bytes ExpectedRows(const NaiveJoin& join, const NaivePlacement& source, const Bytes& sourceMemory,
                   const NaivePlacement& target, const Bytes& before, int rows)
{
    Bytes expected = before;
    for (int row = 0; row != rows; ++row)
        PutRow(join.target, target, expected, row,
               NaiveJoined(join, TakeRow(join.source, source, sourceMemory, row),
                           TakeRow(join.target, target, before, row)));
    return expected;
}

void CheckRows(const NaiveJoin& join, const RowsPlan& plan, int rows, std::uint32_t seed)
{
    std::mt19937 engine(seed);
    PlacedRows source = PlaceRows(join.source, rows, engine);
    const PlacedRows target = PlaceRows(join.target, rows, engine);
    // A source may give the same row again and again.
    if (Below(8, engine) == 0 && source.at.rowStep > 0)
        source.at.rowStep = 0;
    const Bytes content = RandomBytes(source.bytes, seed);
    const Bytes before = RandomBytes(target.bytes, seed + 1);
    const auto flush = [&] { return Below(2, engine) == 0 ? Flush::AtEnd : Flush::AtStart; };
    const GuardedBuffer from(content, flush(), engine() % 3);
    const GuardedBuffer to(before, flush(), engine() % 3);
    plan.Run(RowsAt<const unsigned char>(from.data(), source.at), RowsAt(to.data(), target.at),
             static_cast<std::uint64_t>(rows));
    EXPECT_TRUE(ExpectedRows(join, source.at, content, target.at, before, rows) == to.bytes());
    EXPECT_TRUE(content == from.bytes()) << "the source was changed";
}

void CheckInPlace(const NaiveJoin& join, const RowsPlan& plan, int rows, std::uint32_t seed)
{
    std::mt19937 engine(seed);
    const PlacedRows placed = PlaceRows(join.target, rows, engine);
    const Bytes before = RandomBytes(placed.bytes, seed);
    const GuardedBuffer memory(before, Below(2, engine) == 0 ? Flush::AtEnd : Flush::AtStart,
                               engine() % 3);
    plan.Run(RowsAt<const unsigned char>(memory.data(), placed.at),
             RowsAt(memory.data(), placed.at), static_cast<std::uint64_t>(rows));
    EXPECT_TRUE(ExpectedRows(join, placed.at, before, placed.at, before, rows) == memory.bytes());
}

NaiveJoin PickJoin(std::mt19937& engine)
{
    const Form from = PickFrom(forms, engine);
    const Form to = PickFrom(forms, engine);
    const int channels = PickChannels(engine);
    const int width = PickWidth(channels, engine);
    NaiveJoin join{{width, channels, from.bits, from.planar},
                   {width, channels, to.bits, to.planar}};
    join.maps = Below(2, engine) == 0;
    if (join.maps) {
        join.source.channels = Below(12, engine) == 0 ? 0 : PickChannels(engine);
        join.map = PickMap(join.source.channels, channels, LargestSample(to), engine);
    }
    constexpr int repeats[] = {1, 1, 1, 2, 4};
    join.repeat = PickFrom(repeats, engine);
    join.mirrored = Below(3, engine) == 0;
    const unsigned choice = Below(3, engine) != 0 ? 0 : 1 + engine() % 2;
    join.target.width = DestinationWidth(width, join.repeat, choice);
    PickSamples(join, from, to, engine);
    return join;
}

NaiveJoin PickJoinInPlace(std::mt19937& engine)
{
    NaiveJoin join = PickJoin(engine);
    join.source = join.target;
    join.source.channels = join.target.channels = std::min(join.target.channels, 64);
    join.repeat = 1;
    join.mirrored = false;
    if (join.maps)
        join.map = PickMap(join.source.channels, join.target.channels,
                           LargestSample({join.target.bits, join.target.planar}), engine);
    PickSamples(join, {join.source.bits, join.source.planar},
                {join.target.bits, join.target.planar}, engine);
    return join;
}

} // namespace zvk::Pelkraft::TestSupport
