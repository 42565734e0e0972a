#include "benchmarks/rows/plain_loops.h"
#include "pelkraft/image_row.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

// Each kind of conversion of a CMYK row is timed on the two roads of the library, in the loop that
// a caller would write by hand, and as memcpy over as many bytes as the conversion moves.
namespace zvk::Pelkraft::Benchmarks {
namespace {

struct Form
{
    int bits;
    bool planar;
};

struct Kind
{
    const char* name;
    Form from;
    Form to;
    int factor;
    bool swapsChannels;
    PlainLoop loop;
};

constexpr int swapMap[] = {3, 2, 1, 0};

const Kind kinds[] = {
    {"interleaved_to_planar_8", {8, false}, {8, true}, 1, false, InterleavedToPlanar},
    {"planar_to_interleaved_8", {8, true}, {8, false}, 1, false, PlanarToInterleaved},
    {"interleaved_copy_8", {8, false}, {8, false}, 1, false, CopyInterleaved},
    {"interleaved_8_to_16", {8, false}, {16, false}, 1, false, EightToSixteen},
    {"interleaved_16_to_8", {16, false}, {8, false}, 1, false, SixteenToEight},
    {"interleaved_8_to_packed_1", {8, false}, {1, true}, 1, false, PackBits},
    {"packed_1_to_interleaved_8", {1, true}, {8, false}, 1, false, UnpackBits},
    {"swap_channels_8", {8, false}, {8, false}, 1, true, SwapChannels},
    {"repeat_by_2_8", {8, false}, {8, false}, 2, false, RepeatTwice},
    {"mirror_8", {8, false}, {8, false}, -1, false, Mirror},
};

// Rows of one kind of conversion, with pixels that are no constant.
class RowPair
{
public:
    RowPair(const Kind& newKind, int pixels)
        : kind(newKind), source(pixels, inks, kind.from.bits, kind.from.planar, nullptr),
          destination(pixels * std::abs(kind.factor), inks, kind.to.bits, kind.to.planar, nullptr)
    {
        for (int i = 0; i != source.GetDataSize(); ++i)
            source.GetData()[i] = static_cast<unsigned char>(i * 37 + i / 251);
        std::memset(destination.GetData(), 0, Bytes(destination));
    }

    void Convert(bool forcePortable)
    {
        if (kind.swapsChannels)
            destination.FillFromWithRemap(source, swapMap, false, forcePortable);
        else if (kind.factor != 1)
            destination.FillFromWithPixelRepeat(source, kind.factor, false, forcePortable);
        else
            destination.FillFrom(source, false, forcePortable);
    }

    static std::size_t Bytes(const ImageRow& row)
    {
        return static_cast<std::size_t>(row.GetDataSize());
    }

    const Kind& kind;
    ImageRow source;
    ImageRow destination;
};

template <typename Work>
void Measure(benchmark::State& state, RowPair& rows, Work work)
{
    for (auto step : state) {
        work();
        benchmark::DoNotOptimize(rows.destination.GetData());
        benchmark::ClobberMemory();
    }
    const auto pixels = state.iterations() * rows.source.GetWidth();
    const auto bytes = RowPair::Bytes(rows.source) + RowPair::Bytes(rows.destination);
    state.SetItemsProcessed(pixels);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

void MeasureRoad(benchmark::State& state, const Kind& kind, bool forcePortable)
{
    RowPair rows(kind, static_cast<int>(state.range(0)));
    Measure(state, rows, [&] { rows.Convert(forcePortable); });
}

void MeasureLoop(benchmark::State& state, const Kind& kind)
{
    RowPair rows(kind, static_cast<int>(state.range(0)));
    const auto pixels = static_cast<std::size_t>(rows.source.GetWidth());
    Measure(state, rows,
            [&] { kind.loop(rows.source.GetData(), rows.destination.GetData(), pixels); });
}

// Half of all bytes are read, half written, which is what memcpy does.
void MeasureMemcpy(benchmark::State& state, const Kind& kind)
{
    RowPair rows(kind, static_cast<int>(state.range(0)));
    const auto bytes = RowPair::Bytes(rows.source) + RowPair::Bytes(rows.destination);
    const std::vector<unsigned char> from(bytes / 2, 1);
    std::vector<unsigned char> to(bytes / 2);
    Measure(state, rows, [&] {
        std::memcpy(to.data(), from.data(), to.size());
        benchmark::DoNotOptimize(to.data());
    });
}

void Register(const Kind& kind)
{
    const std::string name = kind.name;
    const auto add = [](const std::string& fullName, auto measure) {
        benchmark::RegisterBenchmark(fullName.c_str(), measure)->Arg(100)->Arg(1000)->Arg(10000);
    };
    add(name + "/vector", [&kind](benchmark::State& state) { MeasureRoad(state, kind, false); });
    add(name + "/portable", [&kind](benchmark::State& state) { MeasureRoad(state, kind, true); });
    add(name + "/plain_loop", [&kind](benchmark::State& state) { MeasureLoop(state, kind); });
    add(name + "/memcpy", [&kind](benchmark::State& state) { MeasureMemcpy(state, kind); });
}

} // namespace
} // namespace zvk::Pelkraft::Benchmarks

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    for (const auto& kind : zvk::Pelkraft::Benchmarks::kinds)
        zvk::Pelkraft::Benchmarks::Register(kind);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
