#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The shape of a row in memory. Woven rows, whose samples below 8 bits follow each other bit by
// bit, exist in contiguous files alone; all other shapes are rows of the library.
struct RowShape
{
    std::int64_t width = 0;
    int channels = 0;
    int bits = 0;
    bool planar = false;
    bool woven = false;

    bool operator==(const RowShape&) const = default;
    // In 64 bits, so that the sum can be compared with what the library takes.
    std::int64_t Bytes() const;
    std::string Words() const;
};

enum class Tones
{
    // Tones and levels are turned into each other where the depth passes below 8 bits.
    Scale,
    // Samples below 8 bits are taken as the numbers that they are.
    Raw,
};

// The work that is asked for on every row of a page.
struct RowRequest
{
    RowShape from;
    RowShape to;
    // For each new channel an old one, or -1; empty takes all as they are.
    std::vector<int> map;
    // 1, 2 or 4; negative mirrors the row.
    int factor = 1;
    Tones tones = Tones::Scale;
    bool portableRoad = false;
};

// One step of the work on a row. Fill is a pass through the library; the client does the others.
struct RowStep
{
    enum class Kind
    {
        // Takes woven samples apart into bit-packed planes, and back.
        Split,
        Weave,
        // Adds planes of zeros after the row's own, and takes them away.
        Pad,
        Crop,
        Fill,
        // In place: 8-bit tones to levels, levels to 8-bit tones.
        Quantize,
        Stretch,
        // Looks for samples that exceed the levels they are about to be cut to.
        CheckLevels,
    };

    Kind kind = Kind::Fill;
    RowShape from;
    RowShape to;
    // The map of a Fill, and for CheckLevels the channels that count.
    std::vector<int> map;
    int factor = 1;
    // The depth of the levels.
    int levelBits = 0;

    bool Moves() const;
    std::string Words() const;
};

// The steps in their order. Throws a Failure without a file where no way leads there.
std::vector<RowStep> PlanRow(const RowRequest& request);

} // namespace zvk::Pelkraft::Client
