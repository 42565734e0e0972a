#include "tests/c_interface/plan_records.h"

namespace zvk::Pelkraft::TestSupport {
namespace {

plk_format FormatOf(const NaiveGeometry& geometry)
{
    return {geometry.width, geometry.channels, geometry.bits, geometry.planar ? 1 : 0, 0};
}

} // namespace

plk_spec SpecOf(std::int64_t width, std::int32_t channels, std::int32_t bits,
                std::int32_t targetBits)
{
    plk_spec spec = Sized<plk_spec>();
    spec.source = {width, channels, bits, 0, 0};
    spec.target = {width, channels, targetBits, 0, 0};
    return spec;
}

plk_spec SpecOf(const NaiveJoin& naive)
{
    static constexpr std::int32_t none = 0;
    plk_spec spec = Sized<plk_spec>();
    spec.source = FormatOf(naive.source);
    spec.target = FormatOf(naive.target);
    if (naive.maps) {
        spec.map = naive.map.empty() ? &none : naive.map.data();
        spec.map_count = naive.map.size();
    }
    spec.repeat = naive.repeat;
    spec.mirror = naive.mirrored ? 1 : 0;
    spec.samples = static_cast<std::int32_t>(naive.samples);
    spec.invert = naive.inverted ? 1 : 0;
    spec.clip = naive.source.width * naive.repeat != naive.target.width ? 1 : 0;
    return spec;
}

plk_source SourceOf(const Bytes& bytes, const NaivePlacement& view)
{
    return {sizeof(plk_source), 0, bytes.data(), bytes.size(), view.offset, view.rowStep,
            view.planeStep};
}

plk_target TargetOf(Bytes& bytes, const NaivePlacement& view)
{
    return {sizeof(plk_target), 0, bytes.data(), bytes.size(), view.offset, view.rowStep,
            view.planeStep};
}

std::string Words(plk_status status, const std::string& field, std::int64_t given,
                  std::int64_t needed)
{
    static constexpr const char* names[] = {"OK",        "INVALID",   "UNSUPPORTED",
                                            "TOO_NEW",   "TOO_SMALL", "OVERLAP",
                                            "NO_MEMORY", "BAD_TEXT",  "BAD_RECORD"};
    return std::string(names[status]) + " " + field + ": " + std::to_string(given) + ", needed " +
           std::to_string(needed);
}

} // namespace zvk::Pelkraft::TestSupport
