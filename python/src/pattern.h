// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "array_rows.h"

#include "pelkraft/plan.h"

#include <memory>
#include <string>

namespace zvk::Pelkraft::Python {

// A dot pattern of the library, and what it asks of arrays. Never changes.
class Pattern
{
public:
    Pattern(const std::string& newText, std::int32_t engine);
    explicit Pattern(const std::string& newRecord);

    pybind11::object Run(pybind11::handle rows, pybind11::handle firstRow,
                         pybind11::handle out) const;

    // The names of a list, those of the library decoded.
    pybind11::tuple Names(std::int32_t list) const;
    // The text and the engine that the pattern was made of.
    pybind11::str Text() const;
    std::string TextBytes() const { return {text, static_cast<std::size_t>(textBytes)}; }
    std::int32_t Engine() const { return engine; }

    const plk_pattern_facts& Facts() const { return facts; }
    // Equal patterns have equal records.
    const std::string& Record() const { return record; }

private:
    struct Deleter
    {
        void operator()(plk_pattern* pattern) const { plk_pattern_free(pattern); }
    };

    void Learn();

    std::unique_ptr<plk_pattern, Deleter> handle;
    plk_pattern_facts facts = {};
    std::int32_t engine = PLK_ENGINE_AUTOMATIC;
    // The pattern's own.
    const char* text = nullptr;
    std::uint64_t textBytes = 0;
    std::string record;
    ArrayRows source;
    ArrayRows target;
};

void AddPattern(pybind11::module_& module);

} // namespace zvk::Pelkraft::Python
