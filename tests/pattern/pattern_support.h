#pragma once

#include "pattern/dot_weave_pattern_converter.h"

#include <functional>
#include <string>

namespace zvk::Pelkraft::TestSupport {

// "narrow: ..." or "wide: ...", the thrown text whole; "nothing" if the action returns.
std::string WhatIsThrown(const std::function<void()>& action);

// " C3" of " C" and 3.
std::string Numbered(const char* prefix, int number);

// " C0 C1 C2" of " C" and 3.
std::string Names(const char* prefix, int count);

// Two in-colours, Cyan with four steps and Black with two, and three out-inks.
extern const char* const exampleText;

// Writes the lines before the first in-colour.
std::string Head(const std::string& version, const std::string& inColors,
                 const std::string& outInks);

// Writes one in-colour block: its inks and its value lines.
std::string InColor(const std::string& name, const std::string& inks, const std::string& values);

// The model has no engine's own form here.
class PlainConverter final : public DotWeavePatternConverter
{};

} // namespace zvk::Pelkraft::TestSupport
