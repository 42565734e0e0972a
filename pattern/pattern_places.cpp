#include "pattern/pattern_places.h"

#include "pattern/pattern_words.h"

namespace zvk::Pelkraft {
namespace {

constexpr std::size_t mostNames = 16;

// The sink keeps places alone.
class PlaceSink final : public PatternHandler
{
public:
    explicit PlaceSink(PatternPlaces& newPlaces) : places(newPlaces) {}

    void TakeVersion(std::int32_t, const PatternToken&) override {}
    void TakeSeed(std::int32_t) override {}
    void AllocateInColors(std::int32_t) override { places.described.clear(); }
    void SelectInColor(std::int32_t inColor, const PatternToken& name) override
    {
        places.described[inColor] = name.place;
    }
    void TakeInk(std::int32_t, std::int32_t, std::int32_t, const PatternToken&) override {}
    void TakeInkCount(std::int32_t, std::int32_t) override {}
    void BeginValueLines(std::int32_t) override {}
    void TakeValueLine(std::int32_t, const ValueLine&) override {}

    void BeginNames(NameList list, const PatternToken& opening) override
    {
        NamesOf(list).opening = opening.place;
    }

    void TakeName(NameList list, std::int32_t index, const PatternToken& name) override
    {
        PlacedNames& names = NamesOf(list);
        const auto at = static_cast<std::size_t>(index);
        if (at >= names.listed.size())
            names.listed.resize(at + 1);
        names.listed[at] = {name.text, name.place};
        if (names.table.size() > mostNames && !places.surplusName)
            places.surplusName = name.place;
    }

    void Refuse(PatternRefusal refusal, const PatternToken& at) override
    {
        places.refused = at.place;
        PatternHandler::Refuse(refusal, at);
    }

private:
    PlacedNames& NamesOf(NameList list)
    {
        return list == NameList::InColors ? places.inColors : places.outInks;
    }

    PatternPlaces& places;
};

} // namespace

std::vector<std::string> PlacedNames::GetSpellings() const
{
    std::vector<std::string> spellings(table.size());
    for (std::size_t index = 0; index < spellings.size() && index < listed.size(); ++index) {
        const std::string& spelling = listed[index].spelling;
        const auto found = table.find(UpperCase(spelling));
        if (found != table.end() && found->second == static_cast<std::int32_t>(index))
            spellings[index] = spelling;
    }
    return spellings;
}

PatternPlaces ReadPlaces(const std::string& text)
{
    PatternPlaces places;
    PlaceSink sink(places);
    PatternReader reader(mainRules, places.inColors.table, places.outInks.table, sink);
    const std::vector<PatternToken> tokens = CutTokens(text, patternComment);
    try {
        places.hasHeader = true;
        places.hasHeader = reader.Read(tokens);
    } catch (const char*) {
        // The sink knows where.
    }
    if (!places.hasHeader && !tokens.empty())
        places.wrongHeader = tokens.front().place;
    return places;
}

} // namespace zvk::Pelkraft
