// SPDX-License-Identifier: Apache-2.0
#include "pattern_inks.h"

#include "arguments.h"
#include "failure.h"

#include "pattern/pattern_model.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/ink_values.h"
#include "tools/pelkraft/step_inks.h"

#include <pybind11/stl.h>

#include <vector>

namespace py = pybind11;

namespace zvk::Pelkraft::Python {
namespace {

constexpr Choices toneChoices = {{"coverage", "equal"}};

std::vector<Client::SteppedColour> ColoursOf(const Pattern& pattern,
                                             const Client::PatternOutline& outline)
{
    std::vector<std::string> names = outline.InColourList();
    names.resize(static_cast<std::size_t>(pattern.Facts().in_colours));
    std::vector<Client::SteppedColour> colours;
    for (const std::string& name : names) {
        const int top = pattern.Facts().top_steps[colours.size()];
        colours.push_back({name, (top < stepsOfInColor ? top : 0) + 1});
    }
    return colours;
}

py::tuple TuplesOf(const std::vector<Client::StepInks>& inks)
{
    py::tuple all(inks.size());
    for (std::size_t i = 0; i != inks.size(); ++i) {
        py::tuple steps(inks[i].size());
        for (std::size_t step = 0; step != inks[i].size(); ++step)
            steps[step] = py::int_(inks[i][step]);
        all[i] = steps;
    }
    return all;
}

} // namespace

py::tuple StepInksOf(const Pattern& pattern, py::handle tone)
{
    const bool equal = ToChoice(tone, "tone", toneChoices) == 1;
    const Client::PatternOutline outline = Client::ReadOutline(pattern.TextBytes());
    const auto colours = ColoursOf(pattern, outline);
    return TuplesOf(equal ? Client::EqualInks(colours)
                          : Client::CoverageInks(outline, colours, outline.OutInkList()));
}

py::tuple ReadStepInksOf(const Pattern& pattern, py::handle table)
{
    const std::string lines = ToText(table, "table");
    const Client::PatternOutline outline = Client::ReadOutline(pattern.TextBytes());
    try {
        return TuplesOf(Client::ReadStepInks("table", lines, ColoursOf(pattern, outline)));
    } catch (const Client::Failure& failure) {
        ThrowInvalid("table", std::string("table: ") + failure.what());
    }
}

std::string FlatStepOf(py::handle inks)
{
    const auto steps = inks.cast<Client::StepInks>();
    const auto step = Client::FindFlatStep(steps);
    return step ? Client::FlatStepWords(steps, *step) : std::string();
}

int FullInkOf(const Pattern& pattern)
{
    return Client::HighestInkValue(Client::ReadOutline(pattern.TextBytes()));
}

} // namespace zvk::Pelkraft::Python
