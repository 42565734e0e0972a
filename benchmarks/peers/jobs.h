#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace zvk::Pelkraft::Benchmarks {

// The shape of a row, whatever its width.
struct Geometry
{
    int channels;
    int bits;
    bool planar;
};

enum class Operation
{
    Fill,
    Remap,
    Repeat,
    Pattern
};

// One thing that is done to a row. The factor belongs to Repeat, the map to Remap. The common jobs
// are those of the chart and of the check for losses.
struct Job
{
    const char* name;
    const char* title;
    Geometry source;
    Geometry destination;
    Operation operation = Operation::Fill;
    int factor = 1;
    const int* map = nullptr;
    bool common = false;
};

inline constexpr int timedWidths[] = {100, 1000, 10000};

std::span<const Job> GetJobs();

bool IsCalled(const Job& job, std::string_view name);
// Fills between the layouts in one depth of whole bytes.
bool IsSplit(const Job& job);
bool IsMerge(const Job& job);
bool IsCopy(const Job& job);

std::size_t CalcPlaneBytes(const Geometry& geometry, int width);
std::size_t CalcRowBytes(const Geometry& geometry, int width);
int CalcDestinationWidth(const Job& job, int width);
std::size_t CalcSourceBytes(const Job& job, int width);
std::size_t CalcDestinationBytes(const Job& job, int width);

} // namespace zvk::Pelkraft::Benchmarks
