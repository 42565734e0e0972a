#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {

// A line that shows how far the work has come, on a terminal alone; the destructor wipes it.
class Progress
{
public:
    Progress(std::string newLabel, std::uint64_t newTotal);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Advance(std::uint64_t amount);

private:
    std::string label;
    std::uint64_t total;
    std::uint64_t done = 0;
    bool shown = false;
    bool terminal;
    std::chrono::steady_clock::time_point lastTime;
};

} // namespace zvk::Pelkraft::Client
