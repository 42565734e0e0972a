#pragma once

#include <cstdint>
#include <functional>

namespace zvk::Pelkraft::Client {

// A command line may ask for so many; without a number it gets all processors.
constexpr int mostThreads = 256;
int DefaultThreads();

// Cuts 0 to count - 1 into as many even pieces as there are threads and calls
// work(worker, first, end) for each piece, the calling thread taking one of them. Returns when
// all have ended; the first failure, by the order of the pieces, is thrown again here.
void ShareOut(int threads, std::int64_t count,
              const std::function<void(int worker, std::int64_t first, std::int64_t end)>& work);

} // namespace zvk::Pelkraft::Client
