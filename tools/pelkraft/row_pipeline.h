#pragma once

#include "tools/pelkraft/plan.h"

#include <cstddef>
#include <memory>
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

// Takes rows through the steps of a plan. Each thread has one of its own.
class RowPipeline
{
public:
    RowPipeline(const std::vector<RowStep>& newSteps, bool forcePortable);

    // fileRow is room to work in as well: steps in place change it.
    void Run(unsigned char* fileRow, unsigned char* newRow);

    // True if a sample so far exceeded the levels that it was cut to.
    bool CutSamples() const { return cutSamples; }

private:
    void Move(const RowStep& step, const unsigned char* from, unsigned char* to) const;
    void ChangeInPlace(const RowStep& step, unsigned char* row);

    const std::vector<RowStep>& steps;
    bool portable;
    bool cutSamples = false;
    std::size_t lastMove = 0;
    // Each step that moves leaves its row in one; the last leaves it in the new row.
    std::vector<RowBuffer> buffers;
};

} // namespace zvk::Pelkraft::Client
