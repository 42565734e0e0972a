#include "benchmarks/peers/entry.h"
#include "benchmarks/peers/pattern_job.h"
#include "benchmarks/peers/verify.h"
#include "zvk/system_tools.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <functional>
#include <random>

// Times row conversions beside public libraries, the plain loop and memcpy, all in one process.
// Each entry is compared with a plain reference before any is timed.
//   bench_peers --verify_only           compares, and times nothing
//   bench_peers --common_only [FLAG...] the common jobs, ours and memcpy alone
//   bench_peers [FLAG...]               takes the flags of Google Benchmark
// A benchmark's name is job/width/entry; its label says by which rule its values differ.
namespace zvk::Pelkraft::Benchmarks {
namespace {

struct Options
{
    bool verifyOnly = false;
    bool commonOnly = false;
};

struct JobEntries
{
    const Job& job;
    Entries entries;
};

struct Measurement
{
    const Job& job;
    Entry entry;
    int width;
};

Options TakeOptions(int& count, char** arguments)
{
    Options options;
    const auto isOurs = [&](const char* argument) {
        bool* option = std::strcmp(argument, "--verify_only") == 0   ? &options.verifyOnly
                       : std::strcmp(argument, "--common_only") == 0 ? &options.commonOnly
                                                                     : nullptr;
        if (option != nullptr)
            *option = true;
        return option != nullptr;
    };
    count = static_cast<int>(std::remove_if(arguments + 1, arguments + count, isOurs) - arguments);
    return options;
}

// A peer that this build has but that doesn't start is left out, as one that it hasn't.
std::vector<Peer> StartPeers()
{
    const std::vector<Peer (*)()> starts = {
#ifdef PELKRAFT_PEER_OPENCV
        StartOpenCv,
#endif
#ifdef PELKRAFT_PEER_LIBYUV
        StartLibyuv,
#endif
#ifdef PELKRAFT_PEER_SWSCALE
        StartSwscale,
#endif
#ifdef PELKRAFT_PEER_NUMPY
        StartNumpy,
#endif
    };
    std::vector<Peer> peers;
    for (const auto start : starts)
        try {
            peers.push_back(start());
        } catch (const std::exception& failure) {
            std::fprintf(stderr, "bench_peers: %s\n", failure.what());
        }
    return peers;
}

std::vector<JobEntries> GatherEntries(const std::vector<Peer>& peers, bool commonOnly)
{
    std::vector<JobEntries> all;
    for (const Job& job : GetJobs()) {
        if (commonOnly && !job.common)
            continue;
        JobEntries& added = all.emplace_back(JobEntries{job, {}});
        AddOurs(added.entries, job);
        if (commonOnly)
            continue;
        AddPlainLoop(added.entries, job);
        for (const Peer& peer : peers)
            peer.add(added.entries, job);
    }
    return all;
}

bool VerifyAll(const std::vector<JobEntries>& all)
{
    int right = 0;
    int wrong = 0;
    for (const auto& [job, entries] : all)
        for (const Entry& entry : entries)
            for (const int width : timedWidths) {
                const bool isRight = IsRight(job, entry, width);
                ++(isRight ? right : wrong);
                if (!isRight)
                    std::fprintf(stderr, "wrong: %s/%d/%s\n", job.name, width, entry.name.c_str());
            }
    std::fprintf(stderr, "%d rows agree with the reference, %d don't\n", right, wrong);
    return wrong == 0;
}

constexpr std::size_t arenaBytes = std::size_t{1} << 18;

// Large enough for the widest rows. The destination starts elsewhere in its page than the
// source, as two rows of a program would.
struct alignas(4096) Arena
{
    unsigned char source[arenaBytes];
    unsigned char steps[arenaBytes];
    unsigned char padding[1344];
    unsigned char destination[arenaBytes];
};

Arena& GetArena()
{
    static Arena arena;
    return arena;
}

void FillArena()
{
    std::mt19937 random(1);
    for (unsigned char& byte : GetArena().source)
        byte = static_cast<unsigned char>(random());
    for (unsigned char& byte : GetArena().steps)
        byte = static_cast<unsigned char>(random() % (patternTopStep + 1));
}

void Measure(benchmark::State& state, const Measurement& measurement)
{
    const auto& [job, entry, width] = measurement;
    Arena& arena = GetArena();
    const unsigned char* source = job.operation == Operation::Pattern ? arena.steps : arena.source;
    const RowCall call = entry.prepare(width);
    for ([[maybe_unused]] auto step : state) {
        call(source, arena.destination);
        benchmark::ClobberMemory();
    }
    state.counters["row_bytes"] =
        static_cast<double>(CalcSourceBytes(job, width) + CalcDestinationBytes(job, width));
    state.SetLabel(entry.rule.words);
}

// Half of all bytes that the job moves are read, half written.
Entry MakeMemcpy(const Job& job)
{
    return {"memcpy", [&job](int width) -> RowCall {
                const std::size_t bytes =
                    (CalcSourceBytes(job, width) + CalcDestinationBytes(job, width)) / 2;
                return [=](const unsigned char* source, unsigned char* destination) {
                    std::memcpy(destination, source, bytes);
                };
            }};
}

std::vector<Measurement> GatherMeasurements(const std::vector<JobEntries>& all)
{
    std::vector<Measurement> measurements;
    for (const auto& [job, entries] : all)
        for (const int width : timedWidths) {
            measurements.push_back({job, MakeMemcpy(job), width});
            for (const Entry& entry : entries)
                measurements.push_back({job, entry, width});
        }
    return measurements;
}

void Register(const Measurement& measurement)
{
    const std::string name = std::string(measurement.job.name) + "/" +
                             std::to_string(measurement.width) + "/" + measurement.entry.name;
    benchmark::RegisterBenchmark(name.c_str(), Measure, std::cref(measurement));
}

std::string FindProcessor()
{
    std::ifstream information("/proc/cpuinfo");
    for (std::string line; std::getline(information, line);)
        if (line.starts_with("model name"))
            return line.substr(line.find(':') + 2);
    return "unknown";
}

// The report says what machine, peers and jobs it speaks of.
void AddContext(const std::vector<Peer>& peers)
{
    benchmark::AddCustomContext("processor", FindProcessor() + ", level " +
                                                 std::to_string(SystemTools::GetSseVersion()));
    benchmark::AddCustomContext("compiler", PELKRAFT_COMPILER);
    std::string names;
    for (const Peer& peer : peers)
        names.append(names.empty() ? "" : ", ").append(peer.nameAndVersion);
    benchmark::AddCustomContext("peers", names);
    std::string all;
    std::string common;
    for (const Job& job : GetJobs()) {
        all.append(all.empty() ? "" : " ").append(job.name);
        benchmark::AddCustomContext(std::string("title of ") + job.name, job.title);
        if (job.common)
            common.append(common.empty() ? "" : " ").append(job.name);
    }
    benchmark::AddCustomContext("jobs", all);
    benchmark::AddCustomContext("common jobs", common);
}

int Run(int count, char** arguments)
{
    const Options options = TakeOptions(count, arguments);
    const std::vector<Peer> peers = options.commonOnly ? std::vector<Peer>() : StartPeers();
    const std::vector<JobEntries> all = GatherEntries(peers, options.commonOnly);
    if (!VerifyAll(all))
        return 1;
    if (options.verifyOnly)
        return 0;

    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments))
        return 2;
    AddContext(peers);
    FillArena();
    const std::vector<Measurement> measurements = GatherMeasurements(all);
    for (const Measurement& measurement : measurements)
        Register(measurement);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

} // namespace
} // namespace zvk::Pelkraft::Benchmarks

int main(int count, char** arguments)
{
    return zvk::Pelkraft::Benchmarks::Run(count, arguments);
}
