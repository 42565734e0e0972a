#include "c_interface/border.h"
#include "c_interface/plan_handle.h"
#include "c_interface/record_size.h"
#include "c_interface/saved_record.h"
#include "common/inlining.h"

namespace zvk::Pelkraft {

template <>
struct FieldEnds<plk_needs>
{
    static constexpr std::array ends = {
        PELKRAFT_FIELD_END(plk_needs, size),
        PELKRAFT_FIELD_END(plk_needs, in_place),
        PELKRAFT_FIELD_END(plk_needs, source_row_bytes),
        PELKRAFT_FIELD_END(plk_needs, source_plane_bytes),
        PELKRAFT_FIELD_END(plk_needs, target_row_bytes),
        PELKRAFT_FIELD_END(plk_needs, target_plane_bytes),
    };
};

namespace {

const plk_plan& Required(const plk_plan* plan)
{
    if (plan == nullptr)
        throw NullRefusal("plan");
    return *plan;
}

std::uint64_t PlaneBytes(const plk_format& format)
{
    return BytesUpTo(format, static_cast<std::uint64_t>(format.width));
}

std::uint64_t RowBytes(const plk_format& format)
{
    const std::uint64_t bytes = PlaneBytes(format);
    return format.planar != 0 ? bytes * static_cast<std::uint64_t>(format.channels) : bytes;
}

// An address for the rows of a source that is not read: steps along a row begin somewhere.
constexpr unsigned char nowhere = 0;

// A stride that no row or plane takes may be any number.
template <typename Byte>
StridedRows<Byte> RowsOf(Byte* base, const RowSide& side, std::uint64_t rows)
{
    const RowView& view = side.view;
    const bool hasPlanes = side.covered.firstPlane + side.covered.planes > 1;
    return {base + view.offset, rows > 1 ? static_cast<std::ptrdiff_t>(view.rowStride) : 0,
            hasPlanes ? static_cast<std::ptrdiff_t>(view.planeStride) : 0};
}

bool IsPlain(const plk_plan* plan, const plk_source* source, const plk_target* target)
{
    return plan != nullptr && source != nullptr && target != nullptr && plan->plainRead.isServed &&
           plan->plainWritten.isServed &&
           ArePlain(*source, plan->plainRead, *target, plan->plainWritten);
}

void Run(const plk_plan& plan, const plk_source* source, const plk_target* target,
         std::uint64_t rows)
{
    const RowSide from = {ViewOf(source), plan.read};
    const RowSide to = {ViewOf(target), plan.written};
    if (rows == 0 || !plan.written.HasBytes())
        return;
    RequireMemory(from, to, rows, plan.allowsInPlace);
    // The base of a target's record is not const.
    auto* const written = static_cast<unsigned char*>(const_cast<void*>(to.view.base));
    const StridedRows<const unsigned char> unread = {&nowhere, 0, 0};
    plan.rows.Run(plan.read.HasBytes()
                      ? RowsOf(static_cast<const unsigned char*>(from.view.base), from, rows)
                      : unread,
                  RowsOf(written, to, rows), rows);
}

// A plain row does not carry the frame of the checks.
PELKRAFT_NEVER_INLINE plk_status RunChecked(const plk_plan* plan, const plk_source* source,
                                            const plk_target* target, std::uint64_t rows,
                                            plk_failure* failure)
{
    return AtBorder(failure, [=] { Run(Required(plan), source, target, rows); });
}

} // namespace
} // namespace zvk::Pelkraft

using namespace zvk::Pelkraft;

plk_status plk_plan_create(const plk_spec* spec, plk_plan** plan, plk_failure* failure)
{
    return MakeAtBorder("plan", plan, failure,
                        [=] { return std::make_unique<plk_plan>(CheckSpec(spec)); });
}

plk_status plk_plan_run(const plk_plan* plan, const plk_source* source, const plk_target* target,
                        uint64_t rows, plk_failure* failure)
{
    if (rows != 1 || !IsPlain(plan, source, target))
        return RunChecked(plan, source, target, rows, failure);
    const auto* from = static_cast<const unsigned char*>(source->base) + source->offset;
    auto* to = static_cast<unsigned char*>(target->base) + target->offset;
    plan->rows.Run({from, 0, static_cast<std::ptrdiff_t>(source->plane_stride)},
                   {to, 0, static_cast<std::ptrdiff_t>(target->plane_stride)}, 1);
    return PLK_OK;
}

plk_status plk_plan_needs(const plk_plan* plan, plk_needs* needs, plk_failure* failure)
{
    return AtBorder(failure, [=] {
        const plk_plan& handle = Required(plan);
        RequireKnown(needs, "needs");
        plk_needs record = {};
        record.in_place = handle.allowsInPlace ? 1 : 0;
        record.source_row_bytes = RowBytes(handle.spec.source);
        record.source_plane_bytes = PlaneBytes(handle.spec.source);
        record.target_row_bytes = RowBytes(handle.spec.target);
        record.target_plane_bytes = PlaneBytes(handle.spec.target);
        WriteRecord(needs, record);
    });
}

plk_status plk_plan_spec(const plk_plan* plan, plk_spec* spec, plk_failure* failure)
{
    return AtBorder(failure, [=] { GiveSpec(Required(plan).spec, spec); });
}

plk_status plk_plan_describe(const plk_plan* plan, int32_t form, char* buffer, uint64_t bytes,
                             uint64_t* needed, plk_failure* failure)
{
    return AtBorder(failure, [=] {
        const plk_plan& handle = Required(plan);
        if (form != PLK_TEXT && form != PLK_JSON)
            throw Refusal(PLK_INVALID, FieldName("form"), form, PLK_TEXT, "form is ", form,
                          "; it must be 0 (text) or 1 (JSON)");
        const std::string text = form == PLK_TEXT ? TextOf(handle) : JsonOf(handle);
        GiveBytes(text.c_str(), text.size() + 1, buffer, bytes, needed);
    });
}

plk_status plk_plan_save(const plk_plan* plan, void* buffer, uint64_t bytes, uint64_t* needed,
                         plk_failure* failure)
{
    return AtBorder(failure, [=] {
        const std::string record = SaveSpec(Required(plan).spec);
        GiveBytes(record.data(), record.size(), buffer, bytes, needed);
    });
}

plk_status plk_plan_load(const void* record, uint64_t bytes, plk_plan** plan, plk_failure* failure)
{
    return MakeAtBorder("plan", plan, failure, [=] { return LoadPlan(record, bytes); });
}

void plk_plan_free(plk_plan* plan)
{
    delete plan;
}
