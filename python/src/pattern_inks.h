// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pattern.h"

#include <string>

namespace zvk::Pelkraft::Python {

// Steps and their inks, as the program finds them in a pattern's text. Inks stand in a tuple for
// each in-colour, in thousandths.
pybind11::tuple StepInksOf(const Pattern& pattern, pybind11::handle tone);
pybind11::tuple ReadStepInksOf(const Pattern& pattern, pybind11::handle table);

// Says which step keeps these inks from being dithered; empty where none does.
std::string FlatStepOf(pybind11::handle inks);

// The highest value that the text gives to an ink.
int FullInkOf(const Pattern& pattern);

} // namespace zvk::Pelkraft::Python
