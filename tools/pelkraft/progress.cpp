#include "tools/pelkraft/progress.h"

#include "tools/pelkraft/system_calls.h"

#include <cstdio>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::chrono::milliseconds pause(100);

} // namespace

Progress::Progress(std::string newLabel, std::uint64_t newTotal)
    : label(std::move(newLabel)), total(newTotal), terminal(ErrorsAreSeen()),
      lastTime(std::chrono::steady_clock::now() - pause)
{}

Progress::~Progress()
{
    if (shown)
        WipeLine();
}

void Progress::Advance(std::uint64_t amount)
{
    done += amount;
    if (!terminal)
        return;
    const auto now = std::chrono::steady_clock::now();
    if (now - lastTime < pause)
        return;
    lastTime = now;
    shown = true;
    const double share = total == 0 ? 1 : static_cast<double>(done) / static_cast<double>(total);
    std::fprintf(stderr, "\rpelkraft: %s %3.0f %%", label.c_str(), 100 * share);
    std::fflush(stderr);
}

} // namespace zvk::Pelkraft::Client
