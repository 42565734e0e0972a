#include "tests/portal/fake_chain.h"
#include "tests/portal/portal_run.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::size_t channels = 3;
constexpr std::size_t mostChunks = 64;

constexpr FakeStep stepKinds[] = {{1, 1},        {1, 1, true, 17}, {1, 2}, {2, 1},
                                  {1, 4, false}, {4, 1},           {1, 8}, {8, 1, false, 16}};

// One row of whole pixels through one step: it keeps each m-th pixel or says each m times.
std::vector<Bytes> NaiveStep(const FakeStep& step, const std::vector<Bytes>& pixels)
{
    std::vector<Bytes> result;
    const auto inputs = static_cast<std::size_t>(step.inputChunks);
    const auto outputs = static_cast<std::size_t>(step.outputChunks);
    const std::size_t count = (pixels.size() * outputs + inputs - 1) / inputs;
    for (std::size_t i = 0; i != count; ++i)
        result.push_back(pixels[i * inputs / outputs]);
    return result;
}

std::vector<Bytes> PixelsOfRow(const Bytes& row)
{
    std::vector<Bytes> pixels;
    for (std::size_t i = 0; i != row.size(); i += channels)
        pixels.emplace_back(row.begin() + static_cast<std::ptrdiff_t>(i),
                            row.begin() + static_cast<std::ptrdiff_t>(i + channels));
    return pixels;
}

bool IsSmall(const std::vector<FakeStep>& steps)
{
    std::uint64_t most = 1;
    for (const FakeStep& step : steps)
        most *= std::max(step.inputChunks, step.outputChunks);
    return most <= mostChunks;
}

std::vector<std::vector<FakeStep>> AllChains(std::size_t length)
{
    if (length == 0)
        return {{}};
    std::vector<std::vector<FakeStep>> chains;
    for (const std::vector<FakeStep>& shorter : AllChains(length - 1)) {
        for (const FakeStep& step : stepKinds) {
            chains.push_back(shorter);
            chains.back().push_back(step);
            if (!IsSmall(chains.back()))
                chains.pop_back();
        }
    }
    return chains;
}

void ExpectSameAsStepByStep(const std::vector<FakeStep>& steps, std::size_t width,
                            std::int32_t sseVersion)
{
    const Bytes source = RandomBytes(channels * width, static_cast<std::uint32_t>(width));
    std::vector<Bytes> pixels = PixelsOfRow(source);
    for (const FakeStep& step : steps)
        pixels = NaiveStep(step, pixels);

    const FakeChain chain(steps);
    const auto format = [](std::size_t pixelCount) {
        return MakeFormat(8, LayoutInterleaved, channels, static_cast<std::int64_t>(pixelCount));
    };
    const Bytes row =
        RunPortal({sseVersion, format(width), format(pixels.size())}, source, chain.MakeRecords());
    if (pixels == PixelsOfRow(row))
        return;
    std::string text;
    for (const FakeStep& step : steps)
        text += std::to_string(step.inputChunks) + ":" + std::to_string(step.outputChunks) +
                (step.ownRegion ? " own " : " ");
    ADD_FAILURE() << text << "on " << width << " pixels";
}

class StepsInAChain : public testing::TestWithParam<std::size_t>
{};

TEST_P(StepsInAChain, DoAsTheyDoOneByOne)
{
    std::size_t number = 0;
    for (const std::vector<FakeStep>& steps : AllChains(GetParam())) {
        const std::size_t odd = ++number * 37 % 120 + 1;
        for (const std::size_t width : {std::size_t{5}, std::size_t{16}, odd, std::size_t{300}})
            ExpectSameAsStepByStep(steps, width, number % 2 == 0 ? 0 : 3);
        if (HasFailure())
            break;
    }
}

INSTANTIATE_TEST_SUITE_P(OfEachLength, StepsInAChain, testing::Values(1, 2, 3, 4));

} // namespace
} // namespace zvk::Pelkraft::TestSupport
