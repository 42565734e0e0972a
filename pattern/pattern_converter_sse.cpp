#include "pattern/pattern_converter_sse.h"

#include <algorithm>
#include <cstddef>

namespace zvk::Pelkraft {
namespace {

constexpr const char* capacityExceeded = "capacity exceeded in mComonTrans";

// Its low byte has the top bit set, also with a step added.
constexpr std::int32_t offsetWithoutRow = -127;

// The entries between the lowest and the highest that is set are those that count.
struct Span
{
    std::int32_t first = 0;
    std::int32_t last = -1;

    std::int32_t Length() const { return last - first + 1; }
};

using Rows = std::array<const StepRow*, outInkLanes>;

Span FindSpan(const StepRow& row)
{
    const auto isSet = [](std::int32_t value) { return value != unsetValue; };
    const auto first = std::find_if(row.begin(), row.end(), isSet);
    if (first == row.end())
        return {};
    const auto last = std::find_if(row.rbegin(), row.rend(), isSet);
    return {static_cast<std::int32_t>(first - row.begin()),
            static_cast<std::int32_t>(row.rend() - last) - 1};
}

// Finds the lowest shift at which the values of one row stand within those of the other, -1 if
// there is none. Whole values are compared, unset ones between them too.
std::int32_t FindShift(const StepRow& inner, const StepRow& outer)
{
    const Span innerSpan = FindSpan(inner);
    const Span outerSpan = FindSpan(outer);
    const std::int32_t room = outerSpan.Length() - innerSpan.Length();
    for (std::int32_t shift = 0; shift <= room; ++shift)
        if (std::equal(inner.begin() + innerSpan.first, inner.begin() + innerSpan.last + 1,
                       outer.begin() + outerSpan.first + shift))
            return shift;
    return -1;
}

// Lets every lane that shares the row of lane a share that of lane b.
void MergeInto(std::size_t a, std::size_t b, std::int32_t shift, Rows& rows,
               SseTransformationBuilder& tables)
{
    const StepRow* inner = rows[a];
    const StepRow* outer = rows[b];
    const std::int32_t moved = shift + FindSpan(*outer).first - FindSpan(*inner).first;
    for (std::size_t lane = 0; lane < rows.size(); ++lane)
        if (rows[lane] == inner) {
            rows[lane] = outer;
            tables.mOffset[lane] += moved;
        }
}

void MergeLane(std::size_t a, Rows& rows, SseTransformationBuilder& tables)
{
    for (std::size_t b = 0; b < rows.size(); ++b) {
        if (rows[b] == nullptr || rows[b] == rows[a])
            continue;
        if (const std::int32_t shift = FindShift(*rows[a], *rows[b]); shift >= 0) {
            MergeInto(a, b, shift, rows, tables);
            return;
        }
    }
}

// Both loops ascend over the lanes: in another order other rows would find room.
void Merge(Rows& rows, SseTransformationBuilder& tables)
{
    for (std::size_t a = 0; a < rows.size(); ++a)
        if (rows[a] != nullptr)
            MergeLane(a, rows, tables);
}

Rows Scan(PatternCombination& combination, SseTransformationBuilder& tables)
{
    Rows rows{};
    for (std::size_t lane = 0; lane < rows.size(); ++lane) {
        tables.mOffset[lane] = offsetWithoutRow;
        tables.mUpper[lane] = 0;
        tables.mLower[lane] = 0;
        if (combination.inkSteps[lane] == nullptr)
            continue;
        const Span span = FindSpan(*combination.inkSteps[lane]);
        if (span.Length() == 0) {
            combination.inkSteps[lane] = nullptr;
            continue;
        }
        rows[lane] = combination.inkSteps[lane];
        tables.mOffset[lane] = 0;
        tables.mUpper[lane] = span.last;
        tables.mLower[lane] = span.first;
    }
    return rows;
}

void Place(const Rows& rows, SseTransformationBuilder& tables)
{
    std::size_t position = 0;
    std::array<std::int32_t, outInkLanes> bases{};
    for (std::size_t lane = 0; lane < rows.size(); ++lane) {
        if (rows[lane] == nullptr)
            continue;
        const auto sameRow = static_cast<std::size_t>(
            std::find(rows.begin(), rows.end(), rows[lane]) - rows.begin());
        if (sameRow == lane) {
            const Span span = FindSpan(*rows[lane]);
            bases[lane] = static_cast<std::int32_t>(position) - span.first;
            for (std::int32_t step = span.first; step <= span.last; ++step) {
                if (position == tables.mComonTrans.size())
                    throw capacityExceeded;
                const std::int32_t value = (*rows[lane])[static_cast<std::size_t>(step)];
                tables.mComonTrans[position++] = value == unsetValue ? 0 : value;
            }
        }
        tables.mOffset[lane] += bases[sameRow];
    }
}

std::array<std::uint8_t, outInkLanes> LowBytes(const std::array<std::int32_t, outInkLanes>& lanes)
{
    std::array<std::uint8_t, outInkLanes> bytes{};
    std::transform(lanes.begin(), lanes.end(), bytes.begin(),
                   [](std::int32_t lane) { return static_cast<std::uint8_t>(lane); });
    return bytes;
}

} // namespace

void SseTransformation::FillInkValues()
{
    std::size_t place = 0;
    for (std::uint8_t& value : mInkValues) {
        value = GetInkValue(*this, place / stepsOfInkValues,
                            static_cast<std::uint8_t>(place % stepsOfInkValues));
        ++place;
    }
}

void SseTransformationBuilder::Build(PatternCombination& combination)
{
    Rows rows = Scan(combination, *this);
    Merge(rows, *this);
    Place(rows, *this);
}

std::size_t CountStoredValues(PatternCombination combination)
{
    SseTransformationBuilder tables;
    Rows rows = Scan(combination, tables);
    Merge(rows, tables);
    std::int32_t count = 0;
    for (auto row = rows.begin(); row != rows.end(); ++row)
        if (*row != nullptr && std::find(rows.begin(), row, *row) == row)
            count += FindSpan(**row).Length();
    return static_cast<std::size_t>(count);
}

SseTransformation SseTransformationBuilder::Pack() const
{
    SseTransformation tables{
        LowBytes(mUpper), LowBytes(mLower), LowBytes(mOffset), LowBytes(mComonTrans), {}};
    tables.FillInkValues();
    return tables;
}

DotWeavePatternConverterSse::DotWeavePatternConverterSse()
    : mSseTables(std::make_unique<SseTransformationBuilder[]>(MAXS_TOTAL_RANDOM))
{}

bool DotWeavePatternConverterSse::Parse(const std::string& text, int flag)
{
    if (!DotWeavePatternConverter::Parse(text, flag))
        return false;
    for (std::uint32_t c = 0; c < mNumCombinations; ++c)
        mSseTables[c].Build(mCombinations[c]);
    return true;
}

} // namespace zvk::Pelkraft
