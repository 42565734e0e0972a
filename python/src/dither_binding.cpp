// SPDX-License-Identifier: Apache-2.0
#include "dither.h"

#include "arguments.h"
#include "binding.h"
#include "failure.h"

#include <string>

namespace py = pybind11;

namespace zvk::Pelkraft::Python {
namespace {

constexpr const char* ditherWords =
    R"(Dither(tones, bits=8, *, mask=None, road='automatic')
--

A dither of tones, which turns samples into the steps of a pattern.

tones  the Tones of each channel
bits   of a sample, 8 or 16
mask   an array of 256 x 256 ranks, uint16, of which a sample takes those below its own share of
       65536; None for the library's own, dither_mask()
road   'portable' for plain code without vectors, with the same bytes

A sample between the inks of two steps becomes the upper one in as large a share of the mask's
places, and the lower one in all others, so that an even area has the ink that was asked for. The
mask is a blue-noise one, made by void and cluster (R. Ulichney, 1993); it repeats after 256 pixels
in both directions, and each channel has it at another place.

A dither never changes, and any number of threads may run it at once. Dithers of equal arguments are
equal and hash alike; they are pickled by their arguments.

PelkraftError: an argument has a value that can't be; its .field names it, such as
'tones[0].inks[2]'. TypeError: an argument is of another type.)";

constexpr const char* callWords =
    R"(__call__(self, rows, x=0, y=0, out=None)
--

Dither rows of pixels and return their steps.

rows  an array of the samples, uint8 or uint16 by bits, (rows, pixels, channels), or (pixels,
      channels) for one row
x, y  the place of the first pixel on its page, any integers; pages are alike where these agree
      modulo 256
out   the array to write to, of the same shape in uint8, or None for a new one

A step depends on the sample, its channel and its place alone, so a page may be cut into parts in
any way. Any stride between rows is served, and nothing is copied. Source arrays may be read-only,
and of any subclass but masked ones. out must share no byte with rows, unless it begins at the same
byte and has the same strides. The interpreter's lock is given back during a run of 32 KiB or more,
of both sides together.

PelkraftError: dtype, shape, strides or the number of rows don't fit, out is read-only, or the two
overlap; nothing has been written then. TypeError: no array, or a masked one.)";

std::vector<Tones> ToTones(py::handle value)
{
    if (!PySequence_Check(value.ptr()) || py::isinstance<py::str>(value) ||
        py::isinstance<py::bytes>(value))
        ThrowTypeError("tones must be a sequence of Tones, not " + TypeName(value));
    std::vector<Tones> tones;
    for (const py::handle entry : py::reinterpret_borrow<py::sequence>(value)) {
        if (!py::isinstance<Tones>(entry))
            ThrowTypeError("tones[" + std::to_string(tones.size()) + "] must be Tones, not " +
                           TypeName(entry));
        tones.push_back(entry.cast<const Tones&>());
    }
    return tones;
}

std::unique_ptr<Dither> MakeDither(const py::object& /*type*/, const py::object& tones,
                                   const py::object& bits, const py::object& mask,
                                   const py::object& road)
{
    return std::make_unique<Dither>(DitherRequest{
        ToTones(tones), ToInt32(bits, "bits"), ToMask(mask), ToChoice(road, "road", roadChoices)});
}

py::tuple TonesOf(const Dither& dither)
{
    const std::vector<Tones>& tones = dither.Request().tones;
    py::tuple all(tones.size());
    for (std::size_t channel = 0; channel != tones.size(); ++channel)
        all[channel] = py::cast(tones[channel]);
    return all;
}

py::object MaskOf(const Dither& dither)
{
    const std::vector<std::uint16_t>& mask = dither.Request().mask;
    return mask.empty() ? py::object(py::none()) : MaskArray(mask.data());
}

py::bytes MaskBytes(const Dither& dither)
{
    const std::vector<std::uint16_t>& mask = dither.Request().mask;
    return {reinterpret_cast<const char*>(mask.data()), mask.size() * sizeof(std::uint16_t)};
}

const char* RoadOf(const Dither& dither)
{
    return roadChoices.NameOf(dither.Request().road);
}

// A value that is hashed, and known to dask, in place of the object.
py::tuple KeyOf(const Dither& dither)
{
    return py::make_tuple(TonesOf(dither), dither.Request().bits, MaskBytes(dither),
                          RoadOf(dither));
}

std::string Show(const Dither& dither)
{
    std::string text = "Dither(" + Repr(py::list(TonesOf(dither)));
    if (dither.Request().bits != 8)
        text += ", " + std::to_string(dither.Request().bits);
    if (!dither.Request().mask.empty())
        text += ", mask=<256 x 256 ranks>";
    if (dither.Request().road != PLK_ROAD_AUTOMATIC)
        text += std::string(", road='") + RoadOf(dither) + "'";
    return text + ")";
}

// Mask and road are keywords, which a class alone could not be given.
py::tuple Reduce(const py::object& self)
{
    const auto& dither = self.cast<const Dither&>();
    const py::object make =
        py::module_::import("functools")
            .attr("partial")(py::type::of(self), py::arg("mask") = MaskOf(dither),
                             py::arg("road") = RoadOf(dither));
    return py::make_tuple(make, py::make_tuple(TonesOf(dither), dither.Request().bits));
}

py::object OwnMask()
{
    const std::uint16_t* const ranks = plk_dither_mask();
    return ranks == nullptr ? py::object(py::none()) : MaskArray(ranks);
}

void AddFields(py::class_<Dither>& type)
{
    type.def_property_readonly("tones", &TonesOf, "The Tones of each channel, as a tuple.");
    type.def_property_readonly(
        "bits", [](const Dither& dither) { return dither.Request().bits; }, "Bits of a sample.");
    type.def_property_readonly("mask", &MaskOf,
                               "The mask as a read-only array, or None for the library's own.");
    type.def_property_readonly("road", &RoadOf, "The road that was asked for.");
}

} // namespace

void AddDither(py::module_& module)
{
    py::class_<Dither> type(module, "Dither", py::is_final(), PlainMetaclass(), ditherWords);
    ShowInPackage(type);
    MakeByNew(type, &MakeDither, py::arg("tones"), py::arg("bits") = 8, py::kw_only(),
              py::arg("mask") = py::none(), py::arg("road") = "automatic");
    AddFields(type);
    type.def("__call__", &Dither::Run, py::arg("rows"), py::arg("x") = 0, py::arg("y") = 0,
             py::arg("out") = py::none(), callWords);
    type.def("__repr__", &Show);
    type.def(
        "__eq__",
        [](const Dither& one, const Dither& other) { return one.Request() == other.Request(); },
        py::is_operator());
    type.def("__hash__", [](const Dither& dither) { return py::hash(KeyOf(dither)); });
    CopyAsItself(type);
    type.def("__reduce__", &Reduce);
    type.def("__dask_tokenize__",
             [](const Dither& dither) { return py::make_tuple("pelkraft.Dither", KeyOf(dither)); });
    module.def("dither_mask", &OwnMask,
               R"(dither_mask()
--

The library's own mask as a new read-only array: 256 x 256 ranks in uint16, each once, or None where
the library was built without it.)");
}

} // namespace zvk::Pelkraft::Python
