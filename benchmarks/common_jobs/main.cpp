#include "benchmarks/peers/jobs.h"
#include "pelkraft/image_row.h"
#include "zvk/system_tools.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

// Times the common jobs on rows of 10,000 pixels and prints the nanoseconds for a row, the lowest
// and the median of many batches. It needs no library but ours, so that the same loop runs on every
// platform: two builds are compared by their lines.
//   common_jobs [LEVEL]   at this level of the processor at most
namespace zvk::Pelkraft::Benchmarks {
namespace {

constexpr int width = 10000;
constexpr int rowsOfBatch = 200;
constexpr int batches = 201;

void Convert(const Job& job, const ImageRow& source, ImageRow& destination)
{
    if (job.operation == Operation::Remap)
        destination.FillFromWithRemap(source, job.map, nullptr);
    else if (job.operation == Operation::Repeat)
        destination.FillFromWithPixelRepeat(source, job.factor, nullptr);
    else
        destination.FillFrom(source, nullptr);
}

double TimeBatch(const Job& job, const ImageRow& source, ImageRow& destination)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    for (int row = 0; row != rowsOfBatch; ++row)
        Convert(job, source, destination);
    const std::chrono::duration<double, std::nano> taken = Clock::now() - begin;
    return taken.count() / rowsOfBatch;
}

void Time(const Job& job)
{
    const Geometry& from = job.source;
    const Geometry& to = job.destination;
    ImageRow source(width, from.channels, from.bits, from.planar, nullptr);
    ImageRow destination(CalcDestinationWidth(job, width), to.channels, to.bits, to.planar,
                         nullptr);
    for (int i = 0; i != source.GetDataSize(); ++i)
        source.GetData()[i] = static_cast<unsigned char>(i * 37 + i / 251);

    std::vector<double> times;
    for (int batch = 0; batch != batches; ++batch)
        times.push_back(TimeBatch(job, source, destination));
    std::sort(times.begin(), times.end());
    std::printf("%-32s %8.0f %8.0f\n", job.title, times.front(), times[batches / 2]);
}

} // namespace
} // namespace zvk::Pelkraft::Benchmarks

int main(int count, char** words)
{
    using namespace zvk;
    if (count > 1)
        SystemTools::LimitSseVersion(std::atoi(words[1]));
    std::printf("level %d                            lowest   median\n",
                SystemTools::GetSseVersion());
    for (const Pelkraft::Benchmarks::Job& job : Pelkraft::Benchmarks::GetJobs()) {
        if (job.common)
            Pelkraft::Benchmarks::Time(job);
    }
}
