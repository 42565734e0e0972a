#pragma once

#include "direct/direct_plan.h"

namespace zvk::Pelkraft {

using ReadRows = StridedRows<const unsigned char>;
using WrittenRows = StridedRows<unsigned char>;

// The way of a plan's rows to their kernel, chosen once for many rows. Most plans of one pass go
// straight to it, the others through RunDirect.
class RowRun
{
public:
    // It runs no row yet.
    RowRun() = default;
    // The plan must outlive it.
    explicit RowRun(const DirectPlan& newPlan);

    // The rows must not overlap.
    void operator()(const ReadRows& source, const WrittenRows& target, std::uint64_t rows) const
    {
        method(*this, source, target, rows);
    }

private:
    friend struct RowMethods;

    using Method = void (*)(const RowRun& run, const ReadRows& source, const WrittenRows& target,
                            std::uint64_t rows);

    Method ChooseMethod();
    Method ChooseKernel();
    Method ChooseStep();
    void Prepare(PreparedStep& prepared, std::size_t pixels) const;

    const DirectPlan* plan = nullptr;
    Method method = nullptr;
    // Does what is to be done before the patch.
    Method unpatched = nullptr;
    // The kernel, if it is one of these.
    SplitKernel split = nullptr;
    MergeKernel merge = nullptr;
    SampleKernel samples = nullptr;
    BitMirrorKernel mirror = nullptr;
    // To kernels that work plane by plane, an interleaved row is one plane.
    std::size_t planes = 0;
    // The pixels of a plane of the target, or the samples of an interleaved row.
    std::size_t count = 0;
    // Planes are one row too where they stand at these steps.
    bool joins = false;
    std::ptrdiff_t joinedSourceStep = 0;
    std::ptrdiff_t joinedStep = 0;
    PreparedStep step = {};
    // The same for planes that are one row.
    PreparedStep joinedPlanes = {};
};

} // namespace zvk::Pelkraft
