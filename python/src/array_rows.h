// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "numpy_api.h"

#include "pelkraft/plan.h"

#include <string>

namespace zvk::Pelkraft::Python {

// To be called once, before anything else here. False, with a Python error, without NumPy.
bool ImportNumPy();

// The axes that an array has.
enum class ArrayForm
{
    // Rows of pixels of samples, or of planes.
    Rows,
    // One of them, without the first axis.
    OneRow,
    // Rows of a single channel, without the axis of channels.
    OneChannel
};

// The rows of an array, as a run takes them.
template <typename Rows>
struct RowsView
{
    Rows rows;
    npy_intp count;
    npy_intp pixels;
    ArrayForm form;
};

using SourceView = RowsView<plk_source>;
using TargetView = RowsView<plk_target>;

// An array must be this to hold rows. For a row of pixels the outer axis counts pixels and the
// inner one samples; for planes they count planes, and samples or bytes of a plane.
class ArrayRows
{
public:
    // Rows of bytes without samples.
    ArrayRows() = default;

    // Rows of a format whose planes, or whose row if it is interleaved, have so many bytes.
    ArrayRows(const plk_format& format, std::uint64_t planeBytes);

    // Interleaved rows of samples of 8 or 16 bits, of any number of pixels.
    static ArrayRows OfSamples(npy_intp channels, int bits = 8);

    // The same with as many pixels as are given.
    ArrayRows WithPixels(npy_intp pixels) const;

    // `name` is the argument's. A refusal throws.
    SourceView ReadSource(pybind11::handle array, const char* name) const;
    TargetView ReadTarget(pybind11::handle array, const char* name, const SourceView& source) const;

    // A new array of as many rows as the source has, and of its form where this format has it.
    pybind11::object Make(npy_intp count, ArrayForm form) const;

private:
    struct Axes;

    std::int64_t OneChannelItems() const;
    Axes FindAxes(PyArrayObject* array, const char* name) const;
    void CheckNeighbours(PyArrayObject* array, const Axes& axes, const char* name) const;
    template <typename Rows>
    RowsView<Rows> Read(PyArrayObject* array, const char* name) const;
    [[noreturn]] void RefuseType(PyArrayObject* array, const char* name) const;
    [[noreturn]] void RefuseShape(PyArrayObject* array, const char* name) const;
    std::string Shapes() const;

    int type = NPY_UINT8;
    npy_intp itemBytes = 1;
    bool planar = false;
    bool oneChannel = false;
    // The outer axis is -1 where any length will do.
    std::int64_t outer = -1;
    std::int64_t inner = 0;
};

} // namespace zvk::Pelkraft::Python
