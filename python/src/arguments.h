// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Python {

// The names that stand for 0, 1 and so on; an empty one is passed over.
struct Choices
{
    const char* names[4];

    const char* NameOf(std::int32_t value) const { return names[value]; }
};

constexpr Choices sampleChoices = {{"fill", "tones", "levels"}};
constexpr Choices roadChoices = {{"automatic", "portable"}};
constexpr Choices engineChoices = {{"automatic", "", "x86", "sse"}};

// Each names the argument in a TypeError where it is of another type, and in a PelkraftError where
// it has a value that can't be said to the library.
std::int64_t ToInt64(pybind11::handle value, const char* name);
std::int32_t ToInt32(pybind11::handle value, const char* name);
bool ToFlag(pybind11::handle value, const char* name);
std::int32_t ToChoice(pybind11::handle value, const char* name, const Choices& choices);

// The bytes of a bytes object, or of a text in UTF-8.
std::string ToBytes(pybind11::handle value, const char* name);
std::string ToText(pybind11::handle value, const char* name);

// What Python's repr says of a value.
std::string Repr(pybind11::handle value);
std::string TypeName(pybind11::handle value);

} // namespace zvk::Pelkraft::Python
