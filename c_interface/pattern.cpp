#include "c_interface/border.h"
#include "c_interface/pattern_handle.h"
#include "c_interface/record_size.h"
#include "c_interface/row_views.h"
#include "c_interface/saved_record.h"
#include "pelkraft/plan.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace zvk::Pelkraft {

template <>
struct FieldEnds<plk_pattern_spec>
{
    static constexpr std::array ends = {
        PELKRAFT_FIELD_END(plk_pattern_spec, size),
        PELKRAFT_FIELD_END(plk_pattern_spec, engine),
    };
};

template <>
struct FieldEnds<plk_pattern_facts>
{
    static constexpr std::array ends = {
        PELKRAFT_FIELD_END(plk_pattern_facts, size),
        PELKRAFT_FIELD_END(plk_pattern_facts, in_colours),
        PELKRAFT_FIELD_END(plk_pattern_facts, out_inks),
        PELKRAFT_FIELD_END(plk_pattern_facts, version),
        PELKRAFT_FIELD_END(plk_pattern_facts, combinations),
        PELKRAFT_FIELD_END(plk_pattern_facts, field_size),
        PELKRAFT_FIELD_END(plk_pattern_facts, top_steps),
    };
};

namespace {

constexpr RecordKind patternRecord = {{'p', 'l', 'k', 'D'}, 1};
// No text has more, since no object in memory does.
constexpr std::uint64_t mostTextBytes = std::numeric_limits<std::ptrdiff_t>::max();
// So many pixels of 16 bytes still have a number of bytes; no memory holds them.
constexpr std::uint64_t mostPixels = std::uint64_t{1} << 59;

std::int32_t EngineOf(const plk_pattern_spec* spec)
{
    if (spec == nullptr)
        return PLK_ENGINE_AUTOMATIC;
    const std::int32_t engine = ReadRecord(spec, "spec").engine;
    if (engine == DotWeavePattern::Reference)
        throw Refusal(PLK_INVALID, FieldName("engine"), engine, PLK_ENGINE_AUTOMATIC, "engine is ",
                      engine, ", the reference, which runs on across rows; give 0, 2 or 3");
    if (!IsPatternEngine(engine))
        throw Refusal(PLK_INVALID, FieldName("engine"), engine, PLK_ENGINE_AUTOMATIC, "engine is ",
                      engine, "; it must be 0, 2 or 3");
    return engine;
}

std::string TextOf(const char* text, std::uint64_t bytes)
{
    if (text == nullptr)
        throw NullRefusal("text");
    if (bytes >= mostTextBytes)
        throw Refusal(PLK_INVALID, FieldName("bytes"), Limited(bytes), 0, "bytes is ", bytes,
                      "; no text has so many");
    auto length = static_cast<std::size_t>(bytes);
    if (length != 0 && text[length - 1] == '\0')
        --length;
    return std::string(text, length);
}

void RequirePattern(const plk_pattern* pattern)
{
    if (pattern == nullptr)
        throw NullRefusal("pattern");
}

std::unique_ptr<plk_pattern> LoadPattern(const void* record, std::uint64_t bytes)
{
    RecordReader reader(patternRecord, record, bytes);
    const std::int32_t engine = reader.GetSigned32();
    if (!IsPatternEngine(engine))
        throw Refusal(PLK_BAD_RECORD, FieldName("record"), engine, PLK_ENGINE_AUTOMATIC,
                      "record names the engine ", engine, "; it must be 0, 2 or 3");
    const auto length = static_cast<std::size_t>(reader.CountLeft());
    return MakePattern(std::string(reader.GetBytes(length), length), engine, "record");
}

std::string SavedBytes(const plk_pattern& pattern)
{
    RecordWriter writer(patternRecord);
    writer.Put(pattern.engine);
    writer.PutBytes(pattern.text.data(), pattern.text.size());
    return writer.Finish();
}

plk_pattern_facts FactsOf(const PatternNumbers& numbers)
{
    plk_pattern_facts facts = {};
    facts.in_colours = numbers.inColors;
    facts.out_inks = numbers.outInks;
    facts.version = numbers.version;
    facts.combinations = numbers.combinations;
    facts.field_size = numbers.fieldSize;
    std::copy(numbers.topSteps.begin(), numbers.topSteps.end(), facts.top_steps);
    return facts;
}

struct Band
{
    std::uint64_t firstRow;
    std::uint64_t rows;
    std::uint64_t pixels;
};

void Run(const PatternRows& pattern, const Band& band, const RowView& source, const RowView& target)
{
    if (band.rows == 0)
        return;
    if (band.pixels > mostPixels)
        throw Refusal(PLK_INVALID, FieldName("pixels"), Limited(band.pixels),
                      static_cast<std::int64_t>(mostPixels), "pixels is ", band.pixels,
                      "; no memory holds so many, and ", mostPixels, " is the most");
    const PatternNumbers& numbers = pattern.GetNumbers();
    RequireMemory(
        InterleavedSide(source, band.pixels, static_cast<std::uint64_t>(numbers.inColors)),
        InterleavedSide(target, band.pixels, static_cast<std::uint64_t>(numbers.outInks)),
        band.rows, false);
    // There may be more rows of no pixels than anyone could count.
    if (band.pixels == 0)
        return;
    for (std::uint64_t row = 0; row != band.rows; ++row)
        pattern.Apply({band.firstRow + row, RowAt(source, row),
                       const_cast<unsigned char*>(RowAt(target, row)), band.pixels});
}

} // namespace
} // namespace zvk::Pelkraft

using namespace zvk::Pelkraft;

plk_status plk_pattern_create(const char* text, uint64_t bytes, const plk_pattern_spec* spec,
                              plk_pattern** pattern, plk_failure* failure)
{
    return MakeAtBorder("pattern", pattern, failure, [&] {
        const std::int32_t engine = EngineOf(spec);
        return MakePattern(TextOf(text, bytes), engine, "text");
    });
}

plk_status plk_pattern_run(const plk_pattern* pattern, uint64_t first_row, uint64_t rows,
                           uint64_t pixels, const plk_source* source, const plk_target* target,
                           plk_failure* failure)
{
    return AtBorder(failure, [&] {
        RequirePattern(pattern);
        const RowView from = ViewOf(source);
        const RowView to = ViewOf(target);
        Run(*pattern->rows, {first_row, rows, pixels}, from, to);
    });
}

plk_status plk_pattern_needs(const plk_pattern* pattern, plk_pattern_facts* facts,
                             plk_failure* failure)
{
    return AtBorder(failure, [&] {
        RequirePattern(pattern);
        RequireKnown(facts, "facts");
        WriteRecord(facts, FactsOf(pattern->rows->GetNumbers()));
    });
}

const char* plk_pattern_name(const plk_pattern* pattern, int32_t list, int32_t index)
{
    if (pattern == nullptr || (list != PLK_IN_COLOURS && list != PLK_OUT_INKS) || index < 0)
        return nullptr;
    const auto& names = pattern->names[static_cast<std::size_t>(list)];
    const auto at = static_cast<std::size_t>(index);
    return at < names.size() ? names[at].c_str() : nullptr;
}

plk_status plk_pattern_text(const plk_pattern* pattern, const char** text, uint64_t* bytes,
                            plk_pattern_spec* spec, plk_failure* failure)
{
    return AtBorder(failure, [=] {
        RequirePattern(pattern);
        if (text == nullptr)
            throw NullRefusal("text");
        if (bytes == nullptr)
            throw NullRefusal("bytes");
        RequireKnown(spec, "spec");
        WriteRecord(spec, {0, pattern->engine});
        *text = pattern->text.c_str();
        *bytes = pattern->text.size();
    });
}

plk_status plk_pattern_save(const plk_pattern* pattern, void* buffer, uint64_t bytes,
                            uint64_t* needed, plk_failure* failure)
{
    return AtBorder(failure, [&] {
        RequirePattern(pattern);
        const std::string record = SavedBytes(*pattern);
        GiveBytes(record.data(), record.size(), buffer, bytes, needed);
    });
}

plk_status plk_pattern_load(const void* record, uint64_t bytes, plk_pattern** pattern,
                            plk_failure* failure)
{
    return MakeAtBorder("pattern", pattern, failure, [&] { return LoadPattern(record, bytes); });
}

void plk_pattern_free(plk_pattern* pattern)
{
    delete pattern;
}
