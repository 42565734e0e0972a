#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace zvk::Pelkraft::Client {

// The ways from a sample to a step of a pattern, as the command line names them.
enum class Levels
{
    // By dither where there are more tones than steps, else by quantizing.
    Automatic,
    // By dither.
    Dither,
    // Tones are divided evenly over the steps of each in-colour.
    Quantize,
    // A sample is a step.
    Raw,
};

// The way of one in-colour.
enum class StepWay
{
    Dither,
    Quantize,
    Raw,
};

// Warns of raw samples that are no steps.
inline constexpr const char* highStepWords =
    "samples are above the top step of their in-colour; --levels quantize divides tones over the "
    "steps";

// Turns samples of 8 bits into steps, for in-colours that are not dithered.
class StepLevels
{
public:
    // By in-colour.
    StepLevels(const std::vector<StepWay>& newWays, const std::vector<int>& newTopSteps);

    // Works in place on a row of packed pixels. Answers whether a raw sample was above its top
    // step.
    bool Apply(unsigned char* pixels, std::size_t count) const;

private:
    std::vector<StepWay> ways;
    std::vector<int> topSteps;
    std::vector<std::array<unsigned char, 256>> tables;
};

} // namespace zvk::Pelkraft::Client
