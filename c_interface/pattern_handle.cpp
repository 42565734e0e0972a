#include "c_interface/pattern_handle.h"

#include "c_interface/failure.h"
#include "pattern/pattern_places.h"
#include "pattern/text_fault.h"
#include "pattern/tokenizer.h"

#include <utility>

namespace zvk::Pelkraft {
namespace {

using Engine = DotWeavePattern::Engine;

// A text that is refused, with the argument that it came in.
struct RefusedText
{
    const std::string& text;
    const char* argument;
};

Refusal RefusalAt(const RefusedText& refused, std::size_t offset, const char* before,
                  const std::string& words, const char* after)
{
    const TextPlace place = TextLines(refused.text).PlaceOf(offset, refused.text);
    Refusal refusal(PLK_BAD_TEXT, FieldName(refused.argument), 0, 0, refused.argument, before,
                    words, after, place.line, ", column ", place.column);
    refusal.line = static_cast<std::uint32_t>(place.line);
    refusal.column = static_cast<std::uint32_t>(place.column);
    return refusal;
}

Refusal RefusalOf(const RefusedText& refused, Engine engine, const std::string& words)
{
    if (const auto fault = FindTextFault(refused.text, engine))
        return RefusalAt(refused, fault->offset, " is refused with \"", words,
                         "\"; correct what stands at line ");
    return {
        PLK_BAD_TEXT,     FieldName(refused.argument), 0,     0,
        refused.argument, " is refused with \"",       words, "\"; correct the text as a whole"};
}

std::unique_ptr<const PatternRows> LoadRows(std::string& text, Engine engine, const char* argument)
{
    try {
        return LoadPatternRows(text.data(), engine);
    } catch (const char* words) {
        throw RefusalOf({text, argument}, engine, words);
    } catch (const wchar_t* words) {
        // All of the library's words are of ASCII.
        std::string narrow;
        for (; *words != 0; ++words)
            narrow.push_back(static_cast<char>(*words));
        throw RefusalOf({text, argument}, engine, narrow);
    }
}

} // namespace

bool IsPatternEngine(std::int32_t engine)
{
    return engine == PLK_ENGINE_AUTOMATIC || engine == PLK_ENGINE_X86 || engine == PLK_ENGINE_SSE;
}

std::unique_ptr<plk_pattern> MakePattern(std::string text, std::int32_t engine,
                                         const char* argument)
{
    if (const std::size_t zero = text.find('\0'); zero != std::string::npos)
        throw RefusalAt({text, argument}, zero, " has ", "a zero byte",
                        " before its end; take it away at line ");
    auto pattern = std::make_unique<plk_pattern>();
    pattern->text = std::move(text);
    pattern->engine = engine;
    pattern->rows = LoadRows(pattern->text, static_cast<Engine>(engine), argument);
    const PatternPlaces places = ReadPlaces(pattern->text);
    pattern->names = {places.inColors.GetSpellings(), places.outInks.GetSpellings()};
    return pattern;
}

} // namespace zvk::Pelkraft
