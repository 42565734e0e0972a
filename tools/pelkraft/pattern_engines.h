#pragma once

#include "pelkraft/dot_weave_pattern.h"
#include "tools/pelkraft/pattern_text.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// Builds a pattern on an engine. Where the library refuses the text there is none, and refusal
// takes its words.
std::unique_ptr<DotWeavePattern> TryPattern(const PatternText& text, DotWeavePattern::Engine engine,
                                            std::string& refusal);

// Builds a pattern on an engine that draws as printing does, to look at what it gives.
std::unique_ptr<DotWeavePattern> TryDrawingPattern(const PatternText& text, std::string& refusal);

// True if this processor runs the sse engine; without it a pattern loads there, and that is all.
bool SseEngineRuns();

// auto, reference, x86 or sse.
std::string EngineName(DotWeavePattern::Engine engine);
DotWeavePattern::Engine EngineOf(const std::string& name);

// The answer of an engine to a text.
struct EngineVerdict
{
    DotWeavePattern::Engine engine = DotWeavePattern::Automatic;
    // The library's words; nothing if the text loads.
    std::optional<std::string> refusal;
};

// Reference, x86 and sse, in this order.
std::vector<EngineVerdict> TryEngines(const PatternText& text);

} // namespace zvk::Pelkraft::Client
