#include "tests/reproducibility/share_out.h"

#include <atomic>
#include <thread>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

void ShareOut(int threads, int count, const std::function<void(int job)>& doJob)
{
    std::atomic<int> next{0};
    std::vector<std::jthread> running;
    running.reserve(static_cast<std::size_t>(threads));
    for (int thread = 0; thread < threads; ++thread)
        running.emplace_back([&] {
            for (int job = next++; job < count; job = next++)
                doJob(job);
        });
}

} // namespace zvk::Pelkraft::TestSupport
