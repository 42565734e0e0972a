#pragma once

#include "direct/row_run.h"
#include "plan/plan_words.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace zvk::Pelkraft {

struct RowForm
{
    std::int64_t width;
    std::int32_t channels;
    // 1, 2, 8, 10 or 16.
    std::int32_t bits;
    bool planar;
};

// The bits that a sample takes in memory.
constexpr unsigned StorageBitsOf(const RowForm& form)
{
    const auto bits = static_cast<unsigned>(form.bits);
    return form.planar ? bits : (bits + 7) / 8 * 8;
}

// Bytes of a plane, or of an interleaved row, whose samples take whole bytes.
constexpr std::uint64_t PlaneBytesOf(const RowForm& form)
{
    const auto width = static_cast<std::uint64_t>(form.width);
    const std::uint64_t samples =
        form.planar ? width : width * static_cast<std::uint64_t>(form.channels);
    return (samples * StorageBitsOf(form) + 7) / 8;
}

// Bytes of all planes, one directly after the other.
constexpr std::uint64_t RowBytesOf(const RowForm& form)
{
    return form.planar ? static_cast<std::uint64_t>(form.channels) * PlaneBytesOf(form)
                       : PlaneBytesOf(form);
}

constexpr std::int32_t emptyEntry = -1;
// Entries from here downwards stand for the constant samples 0, 1 and so on.
constexpr std::int32_t firstConstantEntry = -2;

// A conversion of many rows as it is asked for. All that plan.h refuses has been refused.
struct RowsRequest
{
    RowForm source;
    RowForm target;
    // There is an entry for each channel of the target.
    bool maps = false;
    std::span<const std::int32_t> entries = {};
    // 1, 2 or 4.
    std::int32_t repeat = 1;
    bool mirrored = false;
    Samples samples = Samples::AsFill;
    bool inverted = false;
    // Writes past the cache.
    bool streamed = false;
    // The processor's level, or 0 for plain code.
    std::int32_t level = 0;
};

// A conversion of many rows, decided. It owns what it needs and does not change, so that any number
// of threads may run it.
class RowsPlan
{
public:
    // Throws std::bad_alloc.
    explicit RowsPlan(const RowsRequest& request);
    RowsPlan(RowsPlan&& other) noexcept;
    RowsPlan& operator=(RowsPlan&& other) noexcept;
    ~RowsPlan();

    // True if source and target may be the same rows at the same steps.
    bool AllowsInPlace() const noexcept;

    // The rows must not overlap, but for rows in place where that is allowed. It allocates nothing.
    void Run(const ReadRows& source, const WrittenRows& target, std::uint64_t rows) const noexcept;

private:
    friend PlanWords Describe(const RowsPlan& plan);

    struct State;
    std::unique_ptr<const State> state;
};

PlanWords Describe(const RowsPlan& plan);

} // namespace zvk::Pelkraft
