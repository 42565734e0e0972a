// SPDX-License-Identifier: Apache-2.0
#include "pattern.h"

#include "arguments.h"
#include "failure.h"
#include "library_calls.h"

namespace py = pybind11;

namespace zvk::Pelkraft::Python {
namespace {

// Texts of any encoding become a str that ToText turns into the same bytes again.
py::str Decode(const char* bytes, std::size_t count)
{
    auto text = py::reinterpret_steal<py::str>(
        PyUnicode_DecodeUTF8(bytes, static_cast<Py_ssize_t>(count), "surrogateescape"));
    if (!text)
        throw py::error_already_set();
    return text;
}

std::uint64_t ToRowNumber(py::handle value)
{
    const std::int64_t number = ToInt64(value, "first_row");
    if (number < 0)
        ThrowInvalid("first_row", "first_row is " + std::to_string(number) + "; rows count from 0",
                     number, 0);
    return static_cast<std::uint64_t>(number);
}

} // namespace

Pattern::Pattern(const std::string& newText, std::int32_t newEngine)
    : handle(MakeHandle<plk_pattern>([&](plk_pattern** pattern, plk_failure* failure) {
          const plk_pattern_spec spec = {sizeof spec, newEngine};
          return plk_pattern_create(newText.data(), newText.size(), &spec, pattern, failure);
      }))
{
    Learn();
}

Pattern::Pattern(const std::string& newRecord)
    : handle(MakeHandle<plk_pattern>([&](plk_pattern** pattern, plk_failure* failure) {
          return plk_pattern_load(newRecord.data(), newRecord.size(), pattern, failure);
      }))
{
    Learn();
}

void Pattern::Learn()
{
    plk_failure failure = EmptyFailure();
    facts.size = sizeof facts;
    plk_pattern_spec spec = {sizeof spec, PLK_ENGINE_AUTOMATIC};
    if (plk_pattern_needs(handle.get(), &facts, &failure) != PLK_OK ||
        plk_pattern_text(handle.get(), &text, &textBytes, &spec, &failure) != PLK_OK)
        ThrowFailure(failure);
    engine = spec.engine;
    record =
        Fetch([&](char* buffer, std::uint64_t bytes, std::uint64_t* needed, plk_failure* problem) {
            return plk_pattern_save(handle.get(), buffer, bytes, needed, problem);
        });
    source = ArrayRows::OfSamples(facts.in_colours);
    target = ArrayRows::OfSamples(facts.out_inks);
}

py::object Pattern::Run(py::handle rows, py::handle firstRow, py::handle out) const
{
    const std::uint64_t first = ToRowNumber(firstRow);
    const SourceView from = source.ReadSource(rows, "rows");
    const ArrayRows inked = target.WithPixels(from.pixels);
    py::object result =
        out.is_none() ? inked.Make(from.count, from.form) : py::reinterpret_borrow<py::object>(out);
    const TargetView to = inked.ReadTarget(result, "out", from);
    RunUnlocked(from, to, [&](plk_failure* failure) {
        return plk_pattern_run(handle.get(), first, static_cast<std::uint64_t>(from.count),
                               static_cast<std::uint64_t>(from.pixels), &from.rows, &to.rows,
                               failure);
    });
    return result;
}

py::tuple Pattern::Names(std::int32_t list) const
{
    py::list names;
    for (std::int32_t i = 0; const char* name = plk_pattern_name(handle.get(), list, i); ++i)
        names.append(Decode(name, std::char_traits<char>::length(name)));
    return py::tuple(names);
}

py::str Pattern::Text() const
{
    return Decode(text, textBytes);
}

} // namespace zvk::Pelkraft::Python
