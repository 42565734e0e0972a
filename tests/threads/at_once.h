#pragma once

#include <functional>
#include <latch>
#include <thread>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

constexpr int threadCount = 16;

// Does the work on as many threads, none of which begins before all are there.
inline void AtOnce(const std::function<void(int thread)>& work)
{
    std::latch gate(threadCount);
    std::vector<std::jthread> threads;
    threads.reserve(threadCount);
    for (int thread = 0; thread < threadCount; ++thread)
        threads.emplace_back([&, thread] {
            gate.arrive_and_wait();
            work(thread);
        });
}

} // namespace zvk::Pelkraft::TestSupport
