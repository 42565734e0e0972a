#pragma once

#include "pelkraft/dot_weave_pattern.h"
#include "tools/pelkraft/pattern_text.h"

#include <memory>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// A pattern text with what the client must know of it beside the library's counts.
struct LoadedPattern
{
    // Refuses a text that the engine refuses, and an engine that the processor doesn't run.
    LoadedPattern(const PatternText& newText, DotWeavePattern::Engine newEngine);

    // One more object of it, at its first row.
    std::unique_ptr<DotWeavePattern> Make() const;
    // The reference engine goes on from row to row, so that no thread can start at its own.
    bool RunsOnOneThread() const { return engine == DotWeavePattern::Reference; }

    const PatternText& text;
    DotWeavePattern::Engine engine;
    std::vector<std::string> inColours;
    std::vector<std::string> outInks;
    // The top step of each in-colour; 0 for one without steps.
    std::vector<int> topSteps;
    // The highest value that the pattern gives to an ink, which stands for full ink; 255 where it
    // gives none.
    int fullInk = 255;
};

} // namespace zvk::Pelkraft::Client
