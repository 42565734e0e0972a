#include "tools/pelkraft/step_levels.h"

namespace zvk::Pelkraft::Client {

StepLevels::StepLevels(const std::vector<StepWay>& newWays, const std::vector<int>& newTopSteps)
    : ways(newWays), topSteps(newTopSteps), tables(newTopSteps.size())
{
    for (std::size_t i = 0; i < tables.size(); ++i) {
        for (std::size_t sample = 0; sample < tables[i].size(); ++sample)
            tables[i][sample] = static_cast<unsigned char>(
                sample * static_cast<std::size_t>(topSteps[i] + 1) / tables[i].size());
    }
}

bool StepLevels::Apply(unsigned char* pixels, std::size_t count) const
{
    bool above = false;
    for (std::size_t pixel = 0; pixel < count; ++pixel) {
        for (std::size_t i = 0; i < tables.size(); ++i) {
            unsigned char& sample = pixels[pixel * tables.size() + i];
            if (ways[i] == StepWay::Quantize)
                sample = tables[i][sample];
            else if (ways[i] == StepWay::Raw)
                above = above || sample > topSteps[i];
        }
    }
    return above;
}

} // namespace zvk::Pelkraft::Client
