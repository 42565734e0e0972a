// SPDX-License-Identifier: Apache-2.0
#include "tones.h"

#include "arguments.h"
#include "binding.h"
#include "failure.h"

#include "pelkraft/dither.h"

#include <string>

namespace py = pybind11;

namespace zvk::Pelkraft::Python {
namespace {

constexpr const char* tonesWords =
    R"(Tones(inks, no_ink=0, full_ink=255)
--

The tones of a channel, for a Dither.

inks      the expected ink of each step, 1 to 256 integers in any unit: 0, then rising, to 2**30 at
          most; Pattern.step_inks has those of a pattern
no_ink    the sample of no ink
full_ink  the sample of the last step's ink, any other number; 65535 for whole samples of 16 bits.
          Samples between the two are tones in equal distances, those beyond either are taken for it

Tones never change, and compare and hash by their fields. A Dither refuses what it can't serve.

PelkraftError: there are no inks or too many, or one is beyond the most; 32 bits don't hold a
sample. TypeError: inks is no sequence, or an argument is no integer.)";

std::uint32_t ToInk(py::handle value, std::size_t step)
{
    const std::string name = "inks[" + std::to_string(step) + "]";
    const std::int64_t number = ToInt64(value, name.c_str());
    if (number < 0 || number > PLK_MOST_INK)
        ThrowInvalid(name.c_str(),
                     name + " is " + std::to_string(number) + "; it must be from 0 to " +
                         std::to_string(PLK_MOST_INK),
                     number, number < 0 ? 0 : PLK_MOST_INK);
    return static_cast<std::uint32_t>(number);
}

std::vector<std::uint32_t> ToInks(py::handle value)
{
    if (!PySequence_Check(value.ptr()) || py::isinstance<py::str>(value) ||
        py::isinstance<py::bytes>(value))
        ThrowTypeError("inks must be a sequence of integers, not " + TypeName(value));
    constexpr std::size_t mostSteps = 256;
    const auto entries = py::reinterpret_borrow<py::sequence>(value);
    const std::size_t count = entries.size();
    if (count == 0 || count > mostSteps)
        ThrowInvalid("inks",
                     "inks has " + std::to_string(count) +
                         " entries; it must have one for each step, 1 to 256",
                     static_cast<std::int64_t>(count), count == 0 ? 1 : mostSteps);
    std::vector<std::uint32_t> inks;
    for (const py::handle entry : entries)
        inks.push_back(ToInk(entry, inks.size()));
    return inks;
}

Tones MakeTones(const py::object& /*type*/, const py::object& inks, const py::object& noInk,
                const py::object& fullInk)
{
    return {ToInks(inks), ToInt32(noInk, "no_ink"), ToInt32(fullInk, "full_ink")};
}

} // namespace

py::tuple InksOf(const Tones& tones)
{
    py::tuple inks(tones.inks.size());
    for (std::size_t step = 0; step != tones.inks.size(); ++step)
        inks[step] = py::int_(tones.inks[step]);
    return inks;
}

py::tuple FieldsOf(const Tones& tones)
{
    return py::make_tuple(InksOf(tones), tones.noInk, tones.fullInk);
}

void AddTones(py::module_& module)
{
    py::class_<Tones> type(module, "Tones", py::is_final(), PlainMetaclass(), tonesWords);
    ShowInPackage(type);
    type.attr("__match_args__") = py::make_tuple("inks", "no_ink", "full_ink");
    MakeByNew(type, &MakeTones, py::arg("inks"), py::arg("no_ink") = 0, py::arg("full_ink") = 255);
    type.def_property_readonly("inks", &InksOf, "The expected ink of each step, as a tuple.");
    type.def_readonly("no_ink", &Tones::noInk, "The sample of no ink.");
    type.def_readonly("full_ink", &Tones::fullInk, "The sample of the last step's ink.");
    type.def("__repr__", [](const Tones& tones) { return "Tones" + Repr(FieldsOf(tones)); });
    type.def(
        "__eq__", [](const Tones& one, const Tones& other) { return one == other; },
        py::is_operator());
    type.def("__hash__", [](const Tones& tones) { return py::hash(FieldsOf(tones)); });
    CopyAsItself(type);
    type.def("__reduce__", [](const py::object& self) {
        return py::make_tuple(py::type::of(self), FieldsOf(self.cast<const Tones&>()));
    });
}

} // namespace zvk::Pelkraft::Python
