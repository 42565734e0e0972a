// SPDX-License-Identifier: Apache-2.0
#include "formats.h"

#include "arguments.h"
#include "binding.h"
#include "failure.h"

#include "pelkraft/plan.h"

namespace py = pybind11;

namespace zvk::Pelkraft::Python {
namespace {

constexpr const char* formatWords =
    R"(Format(width, channels, bits, planar=False)
--

The form of a row of pixels.

width     pixels, 0 or more
channels  samples of a pixel, 0 or more
bits      of a sample: 1, 2, 8, 10 or 16
planar    True for a plane of each channel, False for interleaved samples

Rows of a format stand in arrays of these shapes. A single row does without the first axis, and
rows of one channel may do without the axis of channels.

bits     interleaved                      planar
1, 2     (rows, width, channels) uint8    (rows, channels, bytes) uint8, packed from the top bit on
8        (rows, width, channels) uint8    (rows, channels, width) uint8
10       (rows, width, channels) uint16   not served
16       (rows, width, channels) uint16   (rows, channels, width) uint16

Any numbers are taken here; a Plan refuses those that it can't serve. Formats never change, and
compare and hash by their fields. TypeError: an argument is no integer, or planar no bool.)";

constexpr const char* constantWords =
    R"(Constant(sample)
--

An entry of a map: this sample for all pixels of a channel of the target, as it is to stand there,
neither converted nor inverted.

PelkraftError: the sample is not in 0 to 65535.)";

constexpr const char* needsWords =
    R"(What a plan needs of the rows that it is run on.

in_place            whether rows and out may be the same array
source_row_bytes    bytes of a row, of all planes together if it has planes
source_plane_bytes  bytes of one plane, or of the row if it is interleaved
target_row_bytes    the same for the target
target_plane_bytes  the same for the target)";

py::tuple FieldsOf(const plk_format& format)
{
    return py::make_tuple(format.width, format.channels, format.bits, format.planar != 0);
}

std::string Show(const plk_format& format)
{
    return "Format(" + std::to_string(format.width) + ", " + std::to_string(format.channels) +
           ", " + std::to_string(format.bits) + (format.planar ? ", planar=True)" : ")");
}

plk_format MakeFormat(const py::object& /*type*/, const py::object& width,
                      const py::object& channels, const py::object& bits, const py::object& planar)
{
    return {ToInt64(width, "width"), ToInt32(channels, "channels"), ToInt32(bits, "bits"),
            ToFlag(planar, "planar"), 0};
}

Constant MakeConstant(const py::object& /*type*/, const py::object& sample)
{
    constexpr std::int32_t largest = 65535;
    const std::int64_t number = ToInt64(sample, "sample");
    if (number < 0 || number > largest)
        ThrowInvalid("sample",
                     "sample is " + std::to_string(number) + "; it must be from 0 to 65535", number,
                     number < 0 ? 0 : largest);
    return {static_cast<std::int32_t>(number)};
}

void AddFormat(py::module_& module)
{
    py::class_<plk_format> type(module, "Format", py::is_final(), PlainMetaclass(), formatWords);
    ShowInPackage(type);
    type.attr("__match_args__") = py::make_tuple("width", "channels", "bits", "planar");
    MakeByNew(type, &MakeFormat, py::arg("width"), py::arg("channels"), py::arg("bits"),
              py::arg("planar") = false);
    type.def_property_readonly(
        "width", [](const plk_format& format) { return format.width; }, "Pixels of a row.");
    type.def_property_readonly(
        "channels", [](const plk_format& format) { return format.channels; },
        "Samples of a pixel.");
    type.def_property_readonly(
        "bits", [](const plk_format& format) { return format.bits; }, "Bits of a sample.");
    type.def_property_readonly(
        "planar", [](const plk_format& format) { return format.planar != 0; },
        "Whether each channel has a plane of its own.");
    type.def("__repr__", &Show);
    type.def(
        "__eq__",
        [](const plk_format& one, const plk_format& other) {
            return FieldsOf(one).equal(FieldsOf(other));
        },
        py::is_operator());
    type.def("__hash__", [](const plk_format& format) { return py::hash(FieldsOf(format)); });
    CopyAsItself(type);
    type.def("__reduce__", [](const py::object& self) {
        return py::make_tuple(py::type::of(self), FieldsOf(self.cast<const plk_format&>()));
    });
}

void AddConstant(py::module_& module)
{
    py::class_<Constant> type(module, "Constant", py::is_final(), PlainMetaclass(), constantWords);
    ShowInPackage(type);
    type.attr("__match_args__") = py::make_tuple("sample");
    MakeByNew(type, &MakeConstant, py::arg("sample"));
    type.def_property_readonly(
        "sample", [](const Constant& constant) { return constant.sample; },
        "The sample, as it is to stand in the target.");
    type.def("__repr__", [](const Constant& constant) {
        return "Constant(" + std::to_string(constant.sample) + ")";
    });
    type.def(
        "__eq__",
        [](const Constant& one, const Constant& other) { return one.sample == other.sample; },
        py::is_operator());
    type.def("__hash__",
             [](const Constant& constant) { return py::hash(py::int_(constant.sample)); });
    type.def("__reduce__", [](const py::object& self) {
        return py::make_tuple(py::type::of(self), py::make_tuple(self.attr("sample")));
    });
}

void AddNeeds(py::module_& module)
{
    py::class_<plk_needs> type(module, "Needs", py::is_final(), PlainMetaclass(), needsWords);
    ShowInPackage(type);
    MakeByNew(type, [](const py::object&) -> plk_needs {
        throw py::type_error("Needs are no one's to make; a plan has them as plan.needs");
    });
    type.def_property_readonly(
        "in_place", [](const plk_needs& needs) { return needs.in_place != 0; },
        "Whether rows and out may be the same array.");
    type.def_readonly("source_row_bytes", &plk_needs::source_row_bytes, "Bytes of a source row.");
    type.def_readonly("source_plane_bytes", &plk_needs::source_plane_bytes,
                      "Bytes of a source plane, or of the row if it is interleaved.");
    type.def_readonly("target_row_bytes", &plk_needs::target_row_bytes, "Bytes of a target row.");
    type.def_readonly("target_plane_bytes", &plk_needs::target_plane_bytes,
                      "Bytes of a target plane, or of the row if it is interleaved.");
    type.def("__repr__", [](const plk_needs& needs) {
        return "<Needs in_place=" + std::string(needs.in_place ? "True" : "False") +
               " source_row_bytes=" + std::to_string(needs.source_row_bytes) +
               " source_plane_bytes=" + std::to_string(needs.source_plane_bytes) +
               " target_row_bytes=" + std::to_string(needs.target_row_bytes) +
               " target_plane_bytes=" + std::to_string(needs.target_plane_bytes) + ">";
    });
}

} // namespace

void AddFormats(py::module_& module)
{
    AddFormat(module);
    AddConstant(module);
    AddNeeds(module);
}

} // namespace zvk::Pelkraft::Python
