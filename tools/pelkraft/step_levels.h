#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::Client {

// Turns samples into the steps of a pattern.
enum class Levels
{
    // 0 to 255 is divided evenly over the steps of each in-colour.
    Quantize,
    // A sample is a step.
    Raw,
};

class StepLevels
{
public:
    // The top step of each in-colour.
    StepLevels(Levels newLevels, const std::vector<int>& newTopSteps);

    // Works in place on a row of packed pixels. Answers whether a raw sample was above its top
    // step.
    bool Apply(unsigned char* pixels, std::size_t count) const;

private:
    Levels levels;
    std::vector<int> topSteps;
    std::vector<std::array<unsigned char, 256>> tables;
};

} // namespace zvk::Pelkraft::Client
