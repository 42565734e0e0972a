#pragma once

#include "common/chunk_header.h"
#include "portal/chain_metrics.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// A step of a test's chain says this of itself.
struct FakeStep
{
    std::uint64_t inputChunks;
    std::uint64_t outputChunks;
    bool ownRegion = false;
    std::uint64_t parameterBytes = 0;
    // The format that it hands on has these; 0 keeps those of its input.
    std::int32_t outputBits = 0;
    std::int32_t outputChannels = 0;
};

// One call of a step's method.
struct StepRun
{
    std::size_t step;
    ChunkHeader* chunk;
    const void* parameters;
};

// A chain of up to five steps that write down what they are asked. One chain lives at a time.
//
// A step's pixels are those of its chunks one after the other. A step of m chunks to 1 keeps each
// m-th pixel, one of 1 chunk to m says each pixel m times.
class FakeChain
{
public:
    explicit FakeChain(const std::vector<FakeStep>& newSteps);
    ~FakeChain();
    FakeChain(const FakeChain&) = delete;
    FakeChain& operator=(const FakeChain&) = delete;

    // The records of the chain, with an empty one before each step if asked for.
    std::vector<ChunkConvertFacility> MakeRecords(bool withGaps = false) const;

    // "select 0", "metrics 0", "format 0", "method 0" and "run 0", as they came.
    const std::vector<std::string>& GetCalls() const { return calls; }
    const std::vector<StepRun>& GetRuns() const { return runs; }
    // GetConvertMethod was handed these, by step.
    const ChunkStepGeometry& GetGeometry(std::size_t step) const { return geometries[step]; }
    void* GetParameters(std::size_t step) const { return blocks[step]; }
    // The selection was handed these, by step.
    const ImageRowFormat& GetInput(std::size_t step) const { return inputs[step]; }

    // Called at each run, before the step does its work.
    std::function<void(const StepRun&)> onRun;
    // This step throws `failure` when asked for its method.
    std::size_t failingStep = maxActiveSteps + 1;
    static constexpr const char* failure = "this step has no method";

    // For the descriptor and the methods.
    void Note(const char* call, std::size_t step);
    void NoteInput(std::size_t step, const ImageRowFormat& input) { inputs[step] = input; }
    const FakeStep& GetStep(std::size_t step) const { return steps[step]; }
    ConvertMethod Prepare(std::size_t step, const ChunkStepGeometry& geometry, void* block);
    void Run(std::size_t step, ChunkHeader* chunk, const void* parameters);

private:
    void MovePixels(std::size_t step, ChunkHeader* chunk) const;

    std::vector<FakeStep> steps;
    std::vector<std::string> calls;
    std::vector<StepRun> runs;
    std::vector<ChunkStepGeometry> geometries;
    std::vector<void*> blocks;
    std::vector<ImageRowFormat> inputs;
};

ActiveSteps ActiveOf(const std::vector<ChunkConvertFacility>& records);
// The metrics of a chain on an interleaved source of 8 bits.
ChainMetrics MeasureChain(const std::vector<FakeStep>& steps, std::int32_t channels);

// The pixels of a chunk without the pad of the slots.
std::vector<unsigned char> PixelsOf(const ChunkHeader* chunk);

} // namespace zvk::Pelkraft::TestSupport
