// SPDX-License-Identifier: Apache-2.0
#include "plan.h"

#include "arguments.h"
#include "failure.h"
#include "library_calls.h"

namespace py = pybind11;

namespace zvk::Pelkraft::Python {
Plan::Plan(const plk_spec& asked)
    : handle(MakeHandle<plk_plan>([&](plk_plan** plan, plk_failure* failure) {
          return plk_plan_create(&asked, plan, failure);
      }))
{
    Learn();
}

Plan::Plan(const std::string& newRecord)
    : handle(MakeHandle<plk_plan>([&](plk_plan** plan, plk_failure* failure) {
          return plk_plan_load(newRecord.data(), newRecord.size(), plan, failure);
      }))
{
    Learn();
}

void Plan::Learn()
{
    plk_failure failure = EmptyFailure();
    needs.size = sizeof needs;
    spec.size = sizeof spec;
    if (plk_plan_needs(handle.get(), &needs, &failure) != PLK_OK ||
        plk_plan_spec(handle.get(), &spec, &failure) != PLK_OK)
        ThrowFailure(failure);
    record =
        Fetch([&](char* buffer, std::uint64_t bytes, std::uint64_t* needed, plk_failure* problem) {
            return plk_plan_save(handle.get(), buffer, bytes, needed, problem);
        });
    source = ArrayRows(spec.source, needs.source_plane_bytes);
    target = ArrayRows(spec.target, needs.target_plane_bytes);
}

py::object Plan::Run(py::handle rows, py::handle out) const
{
    const SourceView from = source.ReadSource(rows, "rows");
    py::object result = out.is_none() ? target.Make(from.count, from.form)
                                      : py::reinterpret_borrow<py::object>(out);
    const TargetView to = target.ReadTarget(result, "out", from);
    RunUnlocked(from, to, [&](plk_failure* failure) {
        return plk_plan_run(handle.get(), &from.rows, &to.rows,
                            static_cast<std::uint64_t>(from.count), failure);
    });
    return result;
}

std::string Plan::Explain(bool json) const
{
    std::string text =
        Fetch([&](char* buffer, std::uint64_t bytes, std::uint64_t* needed, plk_failure* failure) {
            return plk_plan_describe(handle.get(), json ? PLK_JSON : PLK_TEXT, buffer, bytes,
                                     needed, failure);
        });
    // The zero byte, and the end of the last line.
    text.resize(text.size() - 2);
    return text;
}

} // namespace zvk::Pelkraft::Python
