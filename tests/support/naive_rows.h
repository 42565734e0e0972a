#pragma once

#include "tests/support/naive_conversion.h"

// Conversions that join several operations, on rows that stand anywhere in memory, in plain loops
// that include nothing of the library.
namespace zvk::Pelkraft::TestSupport {

enum class NaiveSamples
{
    AsFill,
    AsTones,
    AsLevels,
};

// A map's entry is a channel, -1 for zeros, or -2 less a constant.
struct NaiveJoin
{
    NaiveGeometry source;
    NaiveGeometry target;
    bool maps = false;
    std::vector<int> map = {};
    int repeat = 1;
    bool mirrored = false;
    NaiveSamples samples = NaiveSamples::AsFill;
    bool inverted = false;
};

std::string Describe(const NaiveJoin& join);

// The target's bytes after the conversion of one row, given those before it.
Bytes NaiveJoined(const NaiveJoin& join, const Bytes& sourceRow, const Bytes& before);

// Byte 0 of row r and plane c stands at offset + r * rowStep + c * planeStep.
struct NaivePlacement
{
    std::ptrdiff_t offset;
    std::ptrdiff_t rowStep;
    std::ptrdiff_t planeStep;
};

// The bytes of one row, its planes one directly after the other.
Bytes TakeRow(const NaiveGeometry& form, const NaivePlacement& at, const Bytes& memory, int row);
void PutRow(const NaiveGeometry& form, const NaivePlacement& at, Bytes& memory, int row,
            const Bytes& content);

} // namespace zvk::Pelkraft::TestSupport
