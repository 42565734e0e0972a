#include "tools/pelkraft/pattern_outline.h"

#include "pattern/early_check.h"
#include "pattern/pattern_words.h"
#include "zvk/split.h"

namespace zvk::Pelkraft::Client {
namespace {

std::vector<std::string> ListOf(const std::map<std::string, NamedIndex>& names,
                                const std::string& kind)
{
    std::vector<std::string> list(names.size());
    for (const auto& [upper, entry] : names) {
        const auto index = static_cast<std::size_t>(entry.index);
        if (index < list.size())
            list[index] = entry.spelling;
    }
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i].empty())
            list[i] = kind + " " + std::to_string(i + 1);
    }
    return list;
}

} // namespace

const InColorRecord& PatternOutline::Record(std::size_t inColour) const
{
    static const InColorRecord empty{};
    const InColorRecord* record = records.Find(static_cast<std::int32_t>(inColour));
    return record != nullptr ? *record : empty;
}

std::vector<std::string> PatternOutline::InColourList() const
{
    return ListOf(inColourNames, "Colour");
}

std::vector<std::string> PatternOutline::OutInkList() const
{
    return ListOf(outInkNames, "Ink");
}

void OutlineHandler::TakeVersion(std::int32_t version, const PatternToken& keyword)
{
    outline.version = version;
    outline.versionPlace = keyword.place;
}

void OutlineHandler::AllocateInColors(std::int32_t count)
{
    outline.records.Allocate(count);
    outline.inColours.clear();
    outline.inColours.resize(static_cast<std::size_t>(count));
    if (count == 0)
        return;
    for (const auto& [upper, entry] : outline.inColourNames) {
        Places(entry.index).name = entry.spelling;
        Places(entry.index).listed = entry.place;
    }
}

void OutlineHandler::SelectInColor(std::int32_t inColor, const PatternToken& name)
{
    outline.records.Select(inColor).steps[0].numRandoms = 1;
    Places(inColor).described = name.place;
}

void OutlineHandler::TakeInk(std::int32_t inColor, std::int32_t position, std::int32_t outInk,
                             const PatternToken& name)
{
    outline.records.Select(inColor).inks[static_cast<std::size_t>(position)] = outInk;
    Places(inColor).inks[static_cast<std::size_t>(position)] = name.place;
    outline.feeders[outInk] = inColor;
}

void OutlineHandler::TakeInkCount(std::int32_t inColor, std::int32_t count)
{
    outline.records.Select(inColor).numInks = count;
}

void OutlineHandler::TakeValueLine(std::int32_t inColor, const ValueLine& line)
{
    outline.records.Select(inColor).Store(line);
    StepPlaces& places = Places(inColor).steps[static_cast<std::size_t>(line.step)];
    places = {true, false, line.stepToken->place, line.ratioToken->place, {}};
    for (std::size_t i = 0; i < static_cast<std::size_t>(line.count); ++i)
        places.entries.push_back(line.entryTokens[i] != nullptr ? line.entryTokens[i]->place
                                                                : places.ratio);
}

void OutlineHandler::Refuse(PatternRefusal refusal, const PatternToken& at)
{
    if (!outline.refused)
        outline.refused = {refusal, at.place};
}

void OutlineHandler::BeginNames(NameList list, const PatternToken& opening)
{
    (list == NameList::OutInks ? outline.outInksPlace : outline.inColoursPlace) = opening.place;
}

void OutlineHandler::TakeName(NameList list, std::int32_t index, const PatternToken& name)
{
    Names(list)[UpperCase(name.text)] = {name.text, index, name.place};
}

std::map<std::string, NamedIndex>& OutlineHandler::Names(NameList list) const
{
    return list == NameList::OutInks ? outline.outInkNames : outline.inColourNames;
}

InColourPlaces& OutlineHandler::Places(std::int32_t inColour) const
{
    return outline.inColours[static_cast<std::size_t>(inColour)];
}

PatternOutline ReadOutline(const std::string& text)
{
    PatternOutline outline;
    outline.earlyVersion = FindEarlyVersion(text, zvk::split, outline.earlyVersionPlace);
    OutlineHandler handler(outline);
    NameTable inColors;
    NameTable outInks;
    outline.hasHeader =
        PatternReader(mainRules, inColors, outInks, handler).Read(CutTokens(text, patternComment));
    return outline;
}

} // namespace zvk::Pelkraft::Client
