#pragma once

#include "tools/pelkraft/row_pipeline.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <future>
#include <system_error>
#include <vector>

namespace zvk::Pelkraft::Client {

// Bytes for bands of rows: while those of one are written, the next are made in others.
class BandBuffers
{
public:
    BandBuffers(std::size_t bytes, int threads)
    {
        buffers.emplace_back(bytes);
        if (threads > 1)
            buffers.emplace_back(bytes);
    }

    unsigned char* For(std::uint32_t band) const { return buffers[band % buffers.size()].Data(); }

private:
    std::vector<RowBuffer> buffers;
};

// Runs one task after the other beside its caller, who prepares the next one meanwhile. What a task
// works with must be there until the next call has returned.
class OneBehind
{
public:
    // A command of one thread takes no other: every task has ended when Run returns.
    explicit OneBehind(int threads) : beside(threads > 1) {}

    void Run(const std::function<void()>& task)
    {
        Finish();
        if (beside) {
            try {
                pending = std::async(std::launch::async, task);
                return;
            } catch (const std::system_error&) {
                // No thread to be had: it is done here.
                beside = false;
            }
        }
        task();
    }

    // Waits for the last task, and throws what it threw.
    void Finish()
    {
        if (pending.valid())
            pending.get();
    }

private:
    bool beside;
    std::future<void> pending;
};

} // namespace zvk::Pelkraft::Client
