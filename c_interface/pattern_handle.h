#pragma once

#include "pattern/pattern_rows.h"
#include "pelkraft/plan.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct plk_pattern
{
    std::string text;
    std::int32_t engine;
    std::unique_ptr<const zvk::Pelkraft::PatternRows> rows;
    // By list.
    std::array<std::vector<std::string>, 2> names;
};

namespace zvk::Pelkraft {

bool IsPatternEngine(std::int32_t engine);

// The text has no zero byte at its end. The refusal of one names the argument that it came in.
std::unique_ptr<plk_pattern> MakePattern(std::string text, std::int32_t engine,
                                         const char* argument);

} // namespace zvk::Pelkraft
