#pragma once

#include <functional>

namespace zvk::Pelkraft::TestSupport {

// Does the jobs 0 to count - 1 on so many threads; whichever is free takes the next.
void ShareOut(int threads, int count, const std::function<void(int job)>& doJob);

} // namespace zvk::Pelkraft::TestSupport
