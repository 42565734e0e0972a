#include "pelkraft/dither.hpp"
#include "zvk/system_tools.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

// Pixels of four inks a second on one core: a page of many rows, of 8 and of 16 bits, at every
// level of the processor, and channels of so many steps that they are looked up.
namespace zvk::Pelkraft::Benchmarks {
namespace {

constexpr std::uint64_t width = 10000;
constexpr std::uint64_t height = 100;
constexpr std::uint64_t channels = 4;

DitherPlan PlanOf(int bits, std::uint32_t steps)
{
    ChannelTones tones;
    for (std::uint32_t step = 0; step != steps; ++step)
        tones.inks.push_back(step * 1000);
    tones.fullInk = (1 << bits) - 1;
    return DitherPlan({bits, std::vector<ChannelTones>(channels, tones)});
}

// The level, the bits and the steps are the benchmark's arguments.
void DitherPage(benchmark::State& state)
{
    SystemTools::LimitSseVersion(static_cast<int>(state.range(0)));
    const auto bits = static_cast<int>(state.range(1));
    const DitherPlan plan = PlanOf(bits, static_cast<std::uint32_t>(state.range(2)));
    const std::uint64_t pixelBytes = channels * static_cast<std::uint64_t>(bits) / 8;
    std::mt19937 random(1);
    std::vector<unsigned char> page(width * height * pixelBytes);
    for (unsigned char& byte : page)
        byte = static_cast<unsigned char>(random());
    std::vector<unsigned char> inks(width * height * channels);
    for (auto iteration : state) {
        static_cast<void>(iteration);
        plan.Run(0, 0, height, width,
                 SourceRows(page, static_cast<std::int64_t>(width * pixelBytes)),
                 TargetRows(inks, static_cast<std::int64_t>(width * channels)));
        benchmark::ClobberMemory();
    }
    state.counters["pixels"] = benchmark::Counter(static_cast<double>(width * height),
                                                  benchmark::Counter::kIsIterationInvariantRate);
}

void RegisterAll()
{
    std::vector<std::int64_t> levels = {7, 6, 3, 0};
    std::erase_if(levels, [](auto level) { return level > SystemTools::GetSseVersion(); });
    benchmark::RegisterBenchmark("dither", DitherPage)
        ->ArgNames({"level", "bits", "steps"})
        ->ArgsProduct({levels, {8, 16}, {2, 4, 8, 256}});
}

} // namespace
} // namespace zvk::Pelkraft::Benchmarks

int main(int argc, char** argv)
{
    zvk::Pelkraft::Benchmarks::RegisterAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
