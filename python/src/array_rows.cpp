// SPDX-License-Identifier: Apache-2.0
#define PELKRAFT_IMPORTS_NUMPY
#include "array_rows.h"

#include "arguments.h"
#include "failure.h"

#include <type_traits>

namespace py = pybind11;

namespace zvk::Pelkraft::Python {
namespace {

// Kept for as long as the process runs.
PyTypeObject* maskedArray = nullptr;

PyArrayObject* ToArray(py::handle object, const char* name)
{
    if (PyArray_CheckExact(object.ptr()))
        return reinterpret_cast<PyArrayObject*>(object.ptr());
    if (!PyArray_Check(object.ptr()))
        ThrowTypeError(std::string(name) + " must be a numpy.ndarray, not " + TypeName(object));
    if (PyType_IsSubtype(Py_TYPE(object.ptr()), maskedArray))
        ThrowTypeError(std::string(name) + " is a masked array, whose mask would be lost; give " +
                       "its .data, or .filled()");
    return reinterpret_cast<PyArrayObject*>(object.ptr());
}

std::string AttributeOf(PyArrayObject* array, const char* attribute)
{
    return Repr(py::handle(reinterpret_cast<PyObject*>(array)).attr(attribute));
}

std::string DtypeOf(PyArrayObject* array)
{
    return py::str(py::handle(reinterpret_cast<PyObject*>(PyArray_DESCR(array))));
}

// The first and the last byte of an axis, seen from its first entry. Computed unsigned: strides of
// arrays that NumPy has not checked may be anything.
struct Reach
{
    std::uint64_t below = 0;
    std::uint64_t above = 0;

    void Add(npy_intp count, std::int64_t stride)
    {
        const auto size = static_cast<std::uint64_t>(stride);
        const auto steps = static_cast<std::uint64_t>(count - 1);
        if (stride < 0)
            below += steps * (0 - size);
        else
            above += steps * size;
    }
};

} // namespace

bool ImportNumPy()
{
    if (_import_array() < 0)
        return false;
    const py::object type = py::module_::import("numpy.ma").attr("MaskedArray");
    maskedArray = reinterpret_cast<PyTypeObject*>(type.inc_ref().ptr());
    return true;
}

struct ArrayRows::Axes
{
    ArrayForm form;
    npy_intp count;
    npy_intp outer;
    npy_intp inner;
    std::int64_t rowStride;
    std::int64_t outerStride;
    std::int64_t innerStride;
};

ArrayRows::ArrayRows(const plk_format& format, std::uint64_t planeBytes)
    : type(format.bits > 8 ? NPY_UINT16 : NPY_UINT8), itemBytes(format.bits > 8 ? 2 : 1),
      planar(format.planar != 0), oneChannel(format.channels == 1),
      outer(planar ? format.channels : format.width),
      inner(planar ? static_cast<std::int64_t>(planeBytes) / itemBytes : format.channels)
{}

ArrayRows ArrayRows::OfSamples(npy_intp channels, int bits)
{
    ArrayRows rows;
    rows.type = bits > 8 ? NPY_UINT16 : NPY_UINT8;
    rows.itemBytes = bits > 8 ? 2 : 1;
    rows.inner = channels;
    return rows;
}

ArrayRows ArrayRows::WithPixels(npy_intp pixels) const
{
    ArrayRows rows = *this;
    rows.outer = pixels;
    return rows;
}

// The length of the second axis of rows of a single channel, or -1 where there are more channels.
std::int64_t ArrayRows::OneChannelItems() const
{
    if (!oneChannel)
        return -1;
    return planar ? inner : outer;
}

ArrayRows::Axes ArrayRows::FindAxes(PyArrayObject* array, const char* name) const
{
    const npy_intp* shape = PyArray_DIMS(array);
    const npy_intp* strides = PyArray_STRIDES(array);
    const auto fits = [&](const npy_intp* pair) {
        return (outer == -1 || pair[0] == outer) && pair[1] == inner;
    };
    switch (PyArray_NDIM(array)) {
    case 3:
        if (fits(shape + 1))
            return {ArrayForm::Rows, shape[0],   shape[1],  shape[2],
                    strides[0],      strides[1], strides[2]};
        break;
    case 2:
        // Asked first: a plane of one channel could be read as one row too, with the same bytes.
        if (shape[1] == OneChannelItems())
            return planar ? Axes{ArrayForm::OneChannel,
                                 shape[0],
                                 1,
                                 shape[1],
                                 strides[0],
                                 0,
                                 strides[1]}
                          : Axes{ArrayForm::OneChannel,
                                 shape[0],
                                 shape[1],
                                 1,
                                 strides[0],
                                 strides[1],
                                 itemBytes};
        if (fits(shape))
            return {ArrayForm::OneRow, 1, shape[0], shape[1], 0, strides[0], strides[1]};
        break;
    default:
        break;
    }
    RefuseShape(array, name);
}

void ArrayRows::CheckNeighbours(PyArrayObject* array, const Axes& axes, const char* name) const
{
    const npy_intp pixelBytes = axes.inner * itemBytes;
    if ((axes.inner <= 1 || axes.innerStride == itemBytes) &&
        (planar || axes.outer <= 1 || axes.outerStride == pixelBytes))
        return;
    const std::string pixels = planar ? "any" : std::to_string(pixelBytes);
    ThrowInvalid(name, std::string(name) + " has strides " + AttributeOf(array, "strides") +
                           "; the last two must be " + pixels + " and " +
                           std::to_string(itemBytes) + ", as in a C-contiguous array");
}

template <typename Rows>
RowsView<Rows> ArrayRows::Read(PyArrayObject* array, const char* name) const
{
    if (PyArray_TYPE(array) != type || !PyArray_ISNOTSWAPPED(array))
        RefuseType(array, name);
    const Axes axes = FindAxes(array, name);

    RowsView<Rows> view = {};
    view.rows.size = sizeof view.rows;
    view.count = axes.count;
    view.pixels = axes.outer;
    view.form = axes.form;
    auto* data = static_cast<char*>(PyArray_DATA(array));
    view.rows.base = data;
    // Strides of an array without entries mean nothing.
    if (axes.count == 0 || axes.outer == 0 || axes.inner == 0)
        return view;
    CheckNeighbours(array, axes, name);

    // Nor does the stride of an axis with one entry. It gets the value of dense rows, so that the
    // same rows come out the same however they were cut.
    const npy_intp lineBytes =
        planar ? axes.inner * itemBytes : axes.outer * axes.inner * itemBytes;
    const npy_intp rowBytes = planar ? axes.outer * lineBytes : lineBytes;
    view.rows.row_stride = axes.count == 1 ? rowBytes : axes.rowStride;
    view.rows.plane_stride = planar && axes.outer != 1 ? axes.outerStride : lineBytes;

    Reach reach;
    reach.Add(axes.count, view.rows.row_stride);
    if (planar)
        reach.Add(axes.outer, view.rows.plane_stride);
    view.rows.base = data - reach.below;
    view.rows.offset = static_cast<std::int64_t>(reach.below);
    view.rows.bytes = reach.below + reach.above + static_cast<std::uint64_t>(lineBytes);
    return view;
}

SourceView ArrayRows::ReadSource(py::handle array, const char* name) const
{
    return Read<plk_source>(ToArray(array, name), name);
}

TargetView ArrayRows::ReadTarget(py::handle object, const char* name,
                                 const SourceView& source) const
{
    PyArrayObject* array = ToArray(object, name);
    if (!PyArray_ISWRITEABLE(array))
        ThrowInvalid(name, std::string(name) + " is read-only; give an array that can be written");
    const auto view = Read<plk_target>(array, name);
    if (view.count != source.count)
        ThrowInvalid(name,
                     std::string(name) + " has " + std::to_string(view.count) + " rows, but " +
                         std::to_string(source.count) + " are converted",
                     view.count, source.count);
    return view;
}

py::object ArrayRows::Make(npy_intp count, ArrayForm form) const
{
    const auto outerItems = static_cast<npy_intp>(outer);
    const auto innerItems = static_cast<npy_intp>(inner);
    npy_intp shape[] = {count, outerItems, innerItems};
    PyObject* array = nullptr;
    if (form == ArrayForm::OneRow) {
        array = PyArray_SimpleNew(2, shape + 1, type);
    } else if (form == ArrayForm::OneChannel && oneChannel) {
        shape[1] = static_cast<npy_intp>(OneChannelItems());
        array = PyArray_SimpleNew(2, shape, type);
    } else {
        array = PyArray_SimpleNew(3, shape, type);
    }
    if (!array)
        throw py::error_already_set();
    return py::reinterpret_steal<py::object>(array);
}

void ArrayRows::RefuseType(PyArrayObject* array, const char* name) const
{
    const bool swapped = PyArray_TYPE(array) == type;
    ThrowInvalid(name, std::string(name) + " has dtype " + DtypeOf(array) + "; it must be " +
                           (itemBytes == 2 ? "uint16" : "uint8") +
                           (swapped ? " in the byte order of this machine" : ""));
}

std::string ArrayRows::Shapes() const
{
    const std::string first = outer == -1 ? "pixels" : std::to_string(outer);
    const std::string pair = first + ", " + std::to_string(inner) + ")";
    std::string shapes = "(rows, " + pair + ", or (" + pair + " for one row";
    if (oneChannel)
        shapes += ", or (rows, " + std::to_string(OneChannelItems()) + ")";
    return shapes;
}

void ArrayRows::RefuseShape(PyArrayObject* array, const char* name) const
{
    ThrowInvalid(name, std::string(name) + " has shape " + AttributeOf(array, "shape") +
                           "; it must be " + Shapes());
}

} // namespace zvk::Pelkraft::Python
