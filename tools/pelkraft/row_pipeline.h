#pragma once

#include "tools/pelkraft/row_plan.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace zvk::Pelkraft::Client {

// Bytes on a cache line's border, with room after them for reads of whole lines.
class RowBuffer
{
public:
    explicit RowBuffer(std::size_t size);
    unsigned char* Data() const { return bytes.get(); }

private:
    struct Free
    {
        void operator()(unsigned char* memory) const;
    };
    std::unique_ptr<unsigned char, Free> bytes;
};

// Takes rows through a plan. Each thread has one of its own.
class RowPipeline
{
public:
    explicit RowPipeline(const RowPlan& newPlan);

    void Run(const unsigned char* fileRow, unsigned char* newRow);

    // True if a sample so far exceeded the levels that it was cut to.
    bool CutSamples() const { return cutSamples; }

private:
    // The row as the library reads it.
    const unsigned char* Prepare(const unsigned char* fileRow);

    const RowPlan& plan;
    bool cutSamples = false;
    // The planes of woven rows; without a byte where the file has none.
    RowBuffer sourcePlanes;
    std::optional<SampleMap> lines;
    RowBuffer linesRow;
    RowBuffer targetPlanes;
};

} // namespace zvk::Pelkraft::Client
