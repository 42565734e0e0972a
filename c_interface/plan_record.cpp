#include "c_interface/failure.h"
#include "c_interface/plan_handle.h"
#include "c_interface/saved_record.h"

namespace zvk::Pelkraft {
namespace {

constexpr RecordKind planKind = {{'p', 'l', 'k', 'P'}, 1};

void PutFormat(RecordWriter& writer, const plk_format& format)
{
    writer.Put(format.width);
    writer.Put(format.channels);
    writer.Put(format.bits);
    writer.Put(format.planar);
}

plk_format GetFormat(RecordReader& reader)
{
    plk_format format = {};
    format.width = reader.GetSigned64();
    format.channels = reader.GetSigned32();
    format.bits = reader.GetSigned32();
    format.planar = reader.GetSigned32();
    return format;
}

std::vector<std::int32_t> GetMap(RecordReader& reader)
{
    const std::uint64_t count = reader.Get64();
    // Before memory is asked for: the number may be anything.
    if (count > reader.CountLeft() / 4)
        throw Refusal(PLK_BAD_RECORD, FieldName("map_count"), Limited(count),
                      Limited(reader.CountLeft() / 4), "map_count is ", count,
                      "; the record has room for ", reader.CountLeft() / 4, " entries at most");
    std::vector<std::int32_t> map(static_cast<std::size_t>(count));
    for (std::int32_t& entry : map)
        entry = reader.GetSigned32();
    return map;
}

} // namespace

std::string SaveSpec(const PlanSpec& spec)
{
    RecordWriter writer(planKind);
    PutFormat(writer, spec.source);
    PutFormat(writer, spec.target);
    for (const std::int32_t field : {spec.repeat, spec.mirror, spec.samples, spec.invert, spec.clip,
                                     spec.stream, spec.road, spec.maps ? 1 : 0})
        writer.Put(field);
    writer.Put(std::uint64_t{spec.map.size()});
    for (const std::int32_t entry : spec.map)
        writer.Put(entry);
    return writer.Finish();
}

std::unique_ptr<plk_plan> LoadPlan(const void* record, std::uint64_t bytes)
{
    RecordReader reader(planKind, record, bytes);
    plk_spec spec = {};
    spec.size = sizeof spec;
    spec.source = GetFormat(reader);
    spec.target = GetFormat(reader);
    for (std::int32_t* field : {&spec.repeat, &spec.mirror, &spec.samples, &spec.invert, &spec.clip,
                                &spec.stream, &spec.road})
        *field = reader.GetSigned32();
    const std::int32_t maps = reader.GetSigned32();
    const std::vector<std::int32_t> map = GetMap(reader);
    reader.RequireEnd();
    // A record of any other number would not be the one that its plan is saved in.
    if (maps != 1 && (maps != 0 || !map.empty()))
        throw Refusal(PLK_BAD_RECORD, FieldName("map"), maps, map.empty() ? 0 : 1, "map is marked ",
                      maps, " and has ", std::uint64_t{map.size()},
                      " entries; the mark must be 1 where there is a map, else 0");
    // A map of no entries needs an address too.
    constexpr std::int32_t none = 0;
    if (maps != 0)
        spec.map = map.empty() ? &none : map.data();
    spec.map_count = map.size();
    return std::make_unique<plk_plan>(CheckSpec(&spec));
}

} // namespace zvk::Pelkraft
