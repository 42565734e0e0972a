#pragma once

#include "chunks/units_vector.h"
#include "common/inlining.h"

// Only for files built with vector flags; like all of theirs it has internal linkage.
namespace zvk::Pelkraft {
namespace {

template <int count>
struct Units
{
    __m128i at[count];
};

constexpr int CountParts(int elements, int elementsPerPart)
{
    return (elements + elementsPerPart - 1) / elementsPerPart;
}

// One stage of a transposition. Each group of registers holds some inputs interleaved, its parts
// one after the other: elements of elementBytes, one for each output. Merging a group with its
// neighbour doubles the element and halves what a register holds.
//
// first   a0 a1 a2 a3   low   a0 b0 a1 b1
// second  b0 b1 b2 b3   high  a2 b2 a3 b3
//
// A group without a neighbour is merged with itself. Parts that hold no output are left out.
template <int elementBytes, int groups, int outputs, int parts>
PELKRAFT_ALWAYS_INLINE inline auto MergeGroups(const Units<groups * parts>& from)
{
    constexpr int mergedGroups = (groups + 1) / 2;
    constexpr int mergedParts = CountParts(outputs, unitBytes / elementBytes / 2);
    Units<mergedGroups * mergedParts> merged;
    Unroll<mergedGroups>([&](auto group) PELKRAFT_ALWAYS_INLINE {
        constexpr int first = 2 * group;
        constexpr int second = first + 1 < groups ? first + 1 : first;
        Unroll<mergedParts>([&](auto part) PELKRAFT_ALWAYS_INLINE {
            const __m128i low = from.at[first * parts + part / 2];
            const __m128i high = from.at[second * parts + part / 2];
            __m128i& result = merged.at[group * mergedParts + part];
            if constexpr (part % 2 == 0)
                result = UnpackLow<elementBytes>(low, high);
            else
                result = UnpackHigh<elementBytes>(low, high);
        });
    });
    return merged;
}

// Turns inputs of many outputs each into outputs of all inputs each. With 8 inputs or less of
// a byte, or 4 or less of two, a register of the result holds several outputs side by side, each
// in as many bytes as TransposedBytes says.
template <int elementBytes, int inputs, int outputs, int parts = 1>
PELKRAFT_ALWAYS_INLINE inline auto Transpose(const Units<inputs * parts>& from)
{
    if constexpr (inputs == 1) {
        return from;
    } else {
        const auto merged = MergeGroups<elementBytes, inputs, outputs, parts>(from);
        constexpr int mergedParts = CountParts(outputs, unitBytes / elementBytes / 2);
        return Transpose<2 * elementBytes, (inputs + 1) / 2, outputs, mergedParts>(merged);
    }
}

constexpr int TransposedBytes(int elementBytes, int inputs)
{
    return inputs == 1 ? elementBytes : TransposedBytes(2 * elementBytes, (inputs + 1) / 2);
}

} // namespace
} // namespace zvk::Pelkraft
