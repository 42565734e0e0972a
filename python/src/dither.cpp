// SPDX-License-Identifier: Apache-2.0
#include "dither.h"

#include "arguments.h"
#include "failure.h"
#include "library_calls.h"

#include <algorithm>
#include <utility>

namespace py = pybind11;

namespace zvk::Pelkraft::Python {
namespace {

plk_dither* MakeDither(const DitherRequest& request)
{
    std::vector<plk_tones> tones;
    for (const Tones& channel : request.tones)
        tones.push_back({channel.inks.data(), static_cast<std::int32_t>(channel.inks.size()),
                         channel.noInk, channel.fullInk, 0});
    plk_dither_spec spec = {};
    spec.size = sizeof spec;
    spec.bits = request.bits;
    spec.tones = tones.data();
    spec.channels = static_cast<std::int32_t>(tones.size());
    spec.road = request.road;
    spec.mask = request.mask.empty() ? nullptr : request.mask.data();
    return MakeHandle<plk_dither>([&](plk_dither** dither, plk_failure* failure) {
        return plk_dither_create(&spec, dither, failure);
    });
}

} // namespace

Dither::Dither(DitherRequest newRequest)
    : request(std::move(newRequest)), handle(MakeDither(request)),
      source(ArrayRows::OfSamples(static_cast<npy_intp>(request.tones.size()), request.bits)),
      target(ArrayRows::OfSamples(static_cast<npy_intp>(request.tones.size())))
{}

py::object Dither::Run(py::handle rows, py::handle x, py::handle y, py::handle out) const
{
    const std::int64_t column = ToInt64(x, "x");
    const std::int64_t row = ToInt64(y, "y");
    const SourceView from = source.ReadSource(rows, "rows");
    const ArrayRows steps = target.WithPixels(from.pixels);
    py::object result =
        out.is_none() ? steps.Make(from.count, from.form) : py::reinterpret_borrow<py::object>(out);
    const TargetView to = steps.ReadTarget(result, "out", from);
    RunUnlocked(from, to, [&](plk_failure* failure) {
        return plk_dither_run(handle.get(), column, row, static_cast<std::uint64_t>(from.count),
                              static_cast<std::uint64_t>(from.pixels), &from.rows, &to.rows,
                              failure);
    });
    return result;
}

std::vector<std::uint16_t> ToMask(py::handle value)
{
    if (value.is_none())
        return {};
    const ArrayRows form(plk_format{maskSide, 1, 16, 0, 0}, 0);
    const SourceView view = form.ReadSource(value, "mask");
    if (view.form != ArrayForm::OneChannel || view.count != maskSide)
        ThrowInvalid("mask",
                     "mask has shape " + Repr(value.attr("shape")) + "; it must be (256, 256)");
    std::vector<std::uint16_t> ranks(maskRanks);
    const auto* base = static_cast<const char*>(view.rows.base) + view.rows.offset;
    for (std::size_t y = 0; y != maskSide; ++y) {
        const char* line = base + static_cast<std::int64_t>(y) * view.rows.row_stride;
        std::copy_n(line, maskSide * sizeof(std::uint16_t),
                    reinterpret_cast<char*>(ranks.data() + y * maskSide));
    }
    const std::uint16_t* const own = plk_dither_mask();
    const bool same = own != nullptr && std::equal(ranks.begin(), ranks.end(), own);
    return same ? std::vector<std::uint16_t>() : ranks;
}

py::object MaskArray(const std::uint16_t* ranks)
{
    npy_intp shape[] = {maskSide, maskSide};
    auto array = py::reinterpret_steal<py::object>(PyArray_SimpleNew(2, shape, NPY_UINT16));
    if (!array)
        throw py::error_already_set();
    auto* const data = reinterpret_cast<PyArrayObject*>(array.ptr());
    std::copy_n(ranks, maskRanks, static_cast<std::uint16_t*>(PyArray_DATA(data)));
    PyArray_CLEARFLAGS(data, NPY_ARRAY_WRITEABLE);
    return array;
}

} // namespace zvk::Pelkraft::Python
