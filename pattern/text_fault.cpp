#include "pattern/text_fault.h"

#include "pattern/dot_weave_pattern_converter.h"
#include "pattern/early_check.h"
#include "pattern/pattern_combinations.h"
#include "pattern/pattern_converter_sse.h"
#include "pattern/pattern_places.h"
#include "zvk/split.h"

#include <algorithm>
#include <cstddef>
#include <memory>

namespace zvk::Pelkraft {
namespace {

using Place = std::optional<TextSpan>;

// The model without any engine's form.
class ModelConverter final : public DotWeavePatternConverter
{};

template <typename Action>
bool IsRefused(const Action& action)
{
    try {
        action();
        return false;
    } catch (const char*) {
        return true;
    }
}

// Goes through the rules of whole in-colours and of all together, in the library's order.
class ModelFaults
{
public:
    ModelFaults(const std::string& text, const PatternPlaces& newPlaces)
        : places(newPlaces), model(std::make_unique<ModelConverter>()),
          combinations(std::make_unique<PatternCombinations>())
    {
        IsRefused([&] { model->Load(text.c_str()); });
    }

    // True if one was found, or if the one that there is has no place.
    bool Find(DotWeavePattern::Engine engine)
    {
        return FindInOne() || FindInAll() ||
               (engine == DotWeavePattern::X86 ? FindUnfedInk() : FindLackOfRoom());
    }

    Place GetPlace() const { return place; }

private:
    bool FindInOne()
    {
        for (std::int32_t i = 0; i < model->GetInColorCount(); ++i) {
            InColorRecord* const record = model->GetInColors().Find(i);
            if (record != nullptr && IsRefused([&] { BuildChannelCombinations(*record); }))
                return TakeInColor(i);
        }
        return false;
    }

    // A rule that the first in-colours break is broken by any more of them too.
    bool FindInAll()
    {
        std::int32_t sound = 0;
        std::int32_t refused = model->GetInColorCount() + 1;
        while (refused - sound > 1) {
            const std::int32_t tried = sound + (refused - sound) / 2;
            (IsRefused([&] { Combine(tried); }) ? refused : sound) = tried;
        }
        if (refused <= model->GetInColorCount())
            return TakeInColor(refused - 1);
        count = Combine(sound);
        return false;
    }

    // The portable engine looks at it where there are in-colours alone.
    bool FindUnfedInk()
    {
        if (model->GetInColorCount() == 0)
            return false;
        const auto& rows = (*combinations)[0].inkSteps;
        const auto inks = std::min<std::ptrdiff_t>(model->GetOutInkCount(), outInkLanes);
        const auto unfed = std::find(rows.begin(), rows.begin() + inks, nullptr) - rows.begin();
        if (unfed == inks)
            return false;
        // Repeated lists count names that stand at no place of their own.
        if (const auto& names = places.outInks.listed;
            static_cast<std::size_t>(unfed) < names.size())
            place = names[static_cast<std::size_t>(unfed)].place;
        return true;
    }

    bool FindLackOfRoom() const
    {
        return std::any_of(combinations->begin(), combinations->begin() + count,
                           [](const PatternCombination& combination) {
                               return CountStoredValues(combination) > outInkLanes;
                           });
    }

    std::uint32_t Combine(std::int32_t inColors) const
    {
        return BuildPatternCombinations(model->GetInColors(), inColors, *combinations);
    }

    bool TakeInColor(std::int32_t inColor)
    {
        if (const auto found = places.described.find(inColor); found != places.described.end())
            place = found->second;
        return true;
    }

    const PatternPlaces& places;
    const std::unique_ptr<ModelConverter> model;
    const std::unique_ptr<PatternCombinations> combinations;
    std::uint32_t count = 0;
    Place place;
};

} // namespace

std::optional<TextSpan> FindTextFault(const std::string& text, DotWeavePattern::Engine engine)
{
    TextSpan version;
    if (!FindEarlyVersion(text, zvk::split, version))
        return version.length != 0 ? Place(version) : std::nullopt;

    const PatternPlaces places = ReadPlaces(text);
    if (!places.hasHeader || places.refused)
        return places.hasHeader ? places.refused : places.wrongHeader;

    ModelFaults faults(text, places);
    if (faults.Find(engine))
        return faults.GetPlace();
    if (places.surplusName)
        return places.surplusName;
    if (places.inColors.table.empty())
        return places.inColors.opening;
    return places.outInks.table.empty() ? places.outInks.opening : std::nullopt;
}

} // namespace zvk::Pelkraft
