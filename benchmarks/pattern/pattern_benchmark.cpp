#include "benchmarks/pattern/bare_loops.h"
#include "pelkraft/dot_weave_pattern.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

// Each engine is measured in pixels a second, beside the loop that one would write by hand and the
// least that a pixel can cost. The pattern has four in-colours and 64 combinations.
namespace zvk::Pelkraft::Benchmarks {
namespace {

constexpr std::size_t inColors = 4;
constexpr std::size_t combinations = 64;
constexpr std::size_t fieldSize = 65536;
// A whole vector may reach this far past the end of a row.
constexpr std::size_t spareBytes = 16;

std::string NameOfInk(std::size_t inColor, std::size_t position)
{
    return std::string(" ink") + static_cast<char>('a' + inColor) +
           static_cast<char>('a' + position);
}

// All in-colours but the first have four alternatives on one of their steps.
std::string BlockOf(std::size_t inColor, const std::string& inks, bool hasFiveSteps)
{
    const std::string weights = inColor == 0 ? "1 1-128" : "1:2:3:4 1-128 0-40 0-60 1-90";
    return std::string("BEGIN_IN_COLOR ") + static_cast<char>('A' + inColor) + " BEGIN_INKS" +
           inks + " END_INKS BEGIN_VALUES 1 1 1-64 2 " + weights + " 3 1 0-255" +
           (hasFiveSteps ? " 4 1 2-200 5 1 3-220" : "") + " END_VALUES END_IN_COLOR\n";
}

std::string PatternText(int version, std::size_t outInks)
{
    std::string inks;
    std::string blocks;
    for (std::size_t c = 0; c < inColors; ++c) {
        std::string own;
        for (std::size_t p = 0; p < outInks / inColors; ++p)
            own += NameOfInk(c, p);
        inks += own;
        blocks += BlockOf(c, own, outInks > 8);
    }
    return "DotWeavePattern VERSION " + std::to_string(version) + " BEGIN_OUT_INKS" + inks +
           " END_OUT_INKS BEGIN_IN_COLORS A B C D END_IN_COLORS\n" + blocks;
}

std::vector<unsigned char> RandomBytes(std::size_t size, unsigned limit)
{
    std::mt19937 random(1);
    std::vector<unsigned char> bytes(size);
    for (unsigned char& byte : bytes)
        byte = static_cast<unsigned char>(random() % limit);
    return bytes;
}

// Rows of the first and second range of a benchmark: out-inks and pixels.
struct Rows
{
    explicit Rows(const benchmark::State& state)
        : outInks(static_cast<std::size_t>(state.range(0))),
          pixels(static_cast<std::size_t>(state.range(1))),
          source(RandomBytes(pixels * inColors + spareBytes, 6)),
          destination(pixels * outInks + spareBytes)
    {}

    void Report(benchmark::State& state) const
    {
        const auto all = static_cast<double>(state.iterations()) * static_cast<double>(pixels);
        state.counters["Mpixel/s"] = benchmark::Counter(all / 1e6, benchmark::Counter::kIsRate);
        state.counters["perPixel"] =
            benchmark::Counter(all, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    }

    const std::size_t outInks;
    const std::size_t pixels;
    std::vector<unsigned char> source;
    std::vector<unsigned char> destination;
};

void Apply(benchmark::State& state, DotWeavePattern::Engine engine, int version)
{
    Rows rows(state);
    std::string text = PatternText(version, rows.outInks);
    DotWeavePattern pattern(text.data(), engine);
    for ([[maybe_unused]] auto _ : state) {
        pattern.ApplyPattern(rows.source.data(), rows.destination.data(), rows.pixels);
        benchmark::DoNotOptimize(rows.destination.data());
        benchmark::ClobberMemory();
    }
    rows.Report(state);
}

Row RowOf(Rows& rows)
{
    return {rows.source.data(), rows.destination.data(), rows.pixels, inColors, rows.outInks};
}

void PlainLoop(benchmark::State& state)
{
    Rows rows(state);
    const auto values = RandomBytes(combinations * rows.outInks * 8, 256);
    std::mt19937 random(42);
    for ([[maybe_unused]] auto _ : state) {
        ApplyPlain(RowOf(rows), values, combinations, random);
        benchmark::ClobberMemory();
    }
    rows.Report(state);
}

void BareLoop(benchmark::State& state)
{
    Rows rows(state);
    std::vector<BareTable> tables(combinations);
    std::mt19937 random(42);
    // A row that starts late in the field walks into the entries past its end.
    std::vector<const BareTable*> field(fieldSize + rows.pixels);
    for (const BareTable*& entry : field)
        entry = &tables[random() % combinations];
    std::vector<std::size_t> starts(1024);
    for (std::size_t& start : starts)
        start = random() % fieldSize;
    unsigned char lanes[16];
    for (std::size_t i = 0; i < sizeof lanes; ++i)
        lanes[i] = static_cast<unsigned char>(i % inColors);
    std::size_t row = 0;
    for ([[maybe_unused]] auto _ : state) {
        ApplyBare(RowOf(rows), field.data() + starts[row++ % starts.size()], lanes);
        benchmark::ClobberMemory();
    }
    rows.Report(state);
}

void LoadText(benchmark::State& state, DotWeavePattern::Engine engine, int version)
{
    std::string text = PatternText(version, 16);
    for ([[maybe_unused]] auto _ : state) {
        DotWeavePattern pattern(text.data(), engine);
        benchmark::DoNotOptimize(&pattern);
    }
}

void Sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"inks", "pixels"})->ArgsProduct({{8, 16}, {1000, 10000}});
}

BENCHMARK(PlainLoop)->Apply(Sizes);
BENCHMARK_CAPTURE(Apply, reference, DotWeavePattern::Reference, 2)
    ->ArgNames({"inks", "pixels"})
    ->ArgsProduct({{8}, {1000, 10000}});
BENCHMARK_CAPTURE(Apply, x86_v2, DotWeavePattern::X86, 2)->Apply(Sizes);
BENCHMARK_CAPTURE(Apply, x86_v3, DotWeavePattern::X86, 3)->Apply(Sizes);
BENCHMARK_CAPTURE(Apply, sse_v2, DotWeavePattern::Sse, 2)->Apply(Sizes);
BENCHMARK_CAPTURE(Apply, sse_v3, DotWeavePattern::Sse, 3)->Apply(Sizes);
BENCHMARK(BareLoop)->Apply(Sizes);
BENCHMARK_CAPTURE(LoadText, x86_v2, DotWeavePattern::X86, 2)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LoadText, x86_v3, DotWeavePattern::X86, 3)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LoadText, sse_v2, DotWeavePattern::Sse, 2)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LoadText, sse_v3, DotWeavePattern::Sse, 3)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace zvk::Pelkraft::Benchmarks

BENCHMARK_MAIN();
