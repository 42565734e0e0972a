#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {

// It tells how far the work has come.
struct ProgressState
{
    // The verb and its file.
    std::string label;
    // Counted from 1, in the order of the work.
    int page = 1;
    int pages = 1;
    std::uint64_t rows = 0;
    std::uint64_t allRows = 0;
    double seconds = 0;
};

// A line of at most so many columns: the label, cut at its front where there is no room for it,
// and as much of page, share, rate and time left as fits.
std::string ProgressLine(const ProgressState& state, std::size_t columns);

// The same for programs, an object on a line.
std::string ProgressJson(const ProgressState& state);

} // namespace zvk::Pelkraft::Client
