#pragma once

#include "pelkraft/plan.hpp"
#include "tools/pelkraft/sample_map.h"

#include <cstdint>
#include <optional>
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
    // Takes samples to the new depth before all else, and in place of tones.
    std::optional<SampleLines> lines;
    // For each new channel an old one, or an entry of the library for none; empty takes all as they
    // are.
    std::vector<int> map;
    // 1, 2 or 4.
    int repeat = 1;
    bool mirror = false;
    Tones tones = Tones::Scale;
    // Turns each new sample that comes from an old one into the highest less the sample.
    bool invert = false;
    bool portableRoad = false;
};

// Throws what the library refuses as a failure without a file, and its lack of memory as one.
[[noreturn]] void ThrowRefusal(const PelkraftError& refusal);

// The work on every row of a page. The library does it all but for woven rows, which the client
// takes apart into planes before and puts together after, and for samples that follow lines.
class RowPlan
{
public:
    // Throws a Failure without a file where the rows are too long.
    explicit RowPlan(const RowRequest& newRequest);

    const RowRequest& Request() const { return request; }
    const ConversionPlan& Conversion() const { return conversion; }
    // The rows whose samples follow lines, before they do.
    RowShape LinesSource() const;
    // The rows that the library reads and writes.
    RowShape LibrarySource() const;
    RowShape LibraryTarget() const;
    // True if each new row is the old one.
    bool KeepsRows() const;
    // The depth of the levels to which samples are cut as they are, or 0 where none is.
    int CutBits() const;

private:
    RowRequest request;
    ConversionPlan conversion;
};

} // namespace zvk::Pelkraft::Client
