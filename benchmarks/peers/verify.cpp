#include "benchmarks/peers/verify.h"

#include "benchmarks/peers/pattern_job.h"
#include "benchmarks/peers/reference.h"

#include <algorithm>
#include <random>

namespace zvk::Pelkraft::Benchmarks {
namespace {

constexpr std::size_t sentinelBytes = 64;
constexpr unsigned char sentinel = 0xA5;

Bytes MakeSource(const Job& job, const Entry& entry, int width)
{
    std::mt19937 random(7);
    Bytes source(CalcSourceBytes(job, width));
    for (unsigned char& byte : source) {
        const auto drawn = random();
        if (job.operation == Operation::Pattern)
            byte = static_cast<unsigned char>(drawn % (patternTopStep + 1));
        else if (entry.rule.comparedOnTwoLevels)
            byte = static_cast<unsigned char>(drawn % 2 * 255);
        else
            byte = static_cast<unsigned char>(drawn);
    }
    return source;
}

} // namespace

bool IsRight(const Job& job, const Entry& entry, int width)
{
    const RowCall call = entry.prepare(width);
    if (call == nullptr)
        return false;
    const Bytes source = MakeSource(job, entry, width);
    const std::size_t rowBytes = CalcDestinationBytes(job, width);
    Bytes memory(rowBytes + 2 * sentinelBytes, sentinel);
    call(source.data(), memory.data() + sentinelBytes);

    const auto row = memory.cbegin() + sentinelBytes;
    const auto end = row + static_cast<std::ptrdiff_t>(rowBytes);
    const auto isSentinel = [](unsigned char byte) { return byte == sentinel; };
    if (!std::all_of(memory.cbegin(), row, isSentinel) ||
        !std::all_of(end, memory.cend(), isSentinel))
        return false;
    const Bytes destination(row, end);
    if (job.operation == Operation::Pattern)
        return IsPatternRow(width, source, destination);
    return FindLargestDifference(job, width, destination, CalcReference(job, width, source)) <=
           entry.rule.largestDifference;
}

} // namespace zvk::Pelkraft::Benchmarks
