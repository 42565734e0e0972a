#include "tools/pelkraft/pattern_engines.h"

#include "tools/pelkraft/vector_level.h"
#include "zvk/system_tools.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {
namespace {

using Engine = DotWeavePattern::Engine;

struct EngineEntry
{
    Engine engine;
    const char* name;
};

constexpr EngineEntry engines[] = {{DotWeavePattern::Automatic, "auto"},
                                   {DotWeavePattern::Reference, "reference"},
                                   {DotWeavePattern::X86, "x86"},
                                   {DotWeavePattern::Sse, "sse"}};

// The library's wide texts are constants of ASCII letters.
std::string Narrow(const wchar_t* text)
{
    std::string narrow;
    for (; *text != L'\0'; ++text)
        narrow += *text < 0x80 ? static_cast<char>(*text) : '?';
    return narrow;
}

} // namespace

std::unique_ptr<DotWeavePattern> TryPattern(const PatternText& text, Engine engine,
                                            std::string& refusal)
{
    // The library takes a text that it may not keep, and that it doesn't change.
    std::string copy = text.Bytes();
    try {
        return std::make_unique<DotWeavePattern>(copy.data(), engine);
    } catch (const char* words) {
        refusal = words;
    } catch (const wchar_t* words) {
        refusal = Narrow(words);
    }
    return nullptr;
}

std::unique_ptr<DotWeavePattern> TryDrawingPattern(const PatternText& text, std::string& refusal)
{
    auto pattern = TryPattern(text, DotWeavePattern::X86, refusal);
    if (pattern == nullptr && SseEngineRuns())
        pattern = TryPattern(text, DotWeavePattern::Sse, refusal);
    return pattern;
}

bool SseEngineRuns()
{
    return SystemTools::GetSseVersion() >= vectorLevel;
}

std::string EngineName(Engine engine)
{
    const auto* const found =
        std::find_if(std::begin(engines), std::end(engines),
                     [engine](const EngineEntry& entry) { return entry.engine == engine; });
    return found == std::end(engines) ? std::string() : found->name;
}

Engine EngineOf(const std::string& name)
{
    const auto* const found =
        std::find_if(std::begin(engines), std::end(engines),
                     [&name](const EngineEntry& entry) { return name == entry.name; });
    return found == std::end(engines) ? DotWeavePattern::Automatic : found->engine;
}

std::vector<EngineVerdict> TryEngines(const PatternText& text)
{
    std::vector<EngineVerdict> verdicts;
    for (const Engine engine :
         {DotWeavePattern::Reference, DotWeavePattern::X86, DotWeavePattern::Sse}) {
        EngineVerdict& verdict = verdicts.emplace_back();
        verdict.engine = engine;
        std::string refusal;
        if (TryPattern(text, engine, refusal) == nullptr)
            verdict.refusal = refusal;
    }
    return verdicts;
}

} // namespace zvk::Pelkraft::Client
