#include "tools/pelkraft/workers.h"

#include <algorithm>
#include <exception>
#include <system_error>
#include <thread>
#include <vector>

namespace zvk::Pelkraft::Client {

int DefaultThreads()
{
    return std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, mostThreads);
}

void ShareOut(int threads, std::int64_t count,
              const std::function<void(int worker, std::int64_t first, std::int64_t end)>& work)
{
    // Fewer rows than threads leave the rest of them without work.
    const auto pieces = static_cast<int>(std::min<std::int64_t>(threads, count));
    std::vector<std::exception_ptr> failures(static_cast<std::size_t>(std::max(pieces, 0)));
    const auto runPiece = [&](int worker) {
        try {
            work(worker, count * worker / pieces, count * (worker + 1) / pieces);
        } catch (...) {
            failures[static_cast<std::size_t>(worker)] = std::current_exception();
        }
    };

    {
        std::vector<std::jthread> helpers;
        helpers.reserve(failures.size());
        for (int worker = 1; worker < pieces; ++worker) {
            try {
                helpers.emplace_back(runPiece, worker);
            } catch (const std::system_error&) {
                // No thread to be had: its piece is done here.
                runPiece(worker);
            }
        }
        if (pieces > 0)
            runPiece(0);
    }
    for (const std::exception_ptr& failure : failures) {
        if (failure)
            std::rethrow_exception(failure);
    }
}

} // namespace zvk::Pelkraft::Client
