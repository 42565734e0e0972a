// SPDX-License-Identifier: Apache-2.0
#include "plan.h"

#include "arguments.h"
#include "binding.h"
#include "failure.h"
#include "formats.h"

#include <vector>

namespace py = pybind11;

namespace zvk::Pelkraft::Python {
namespace {

constexpr const char* planWords =
    R"(Plan(source, target, *, map=None, repeat=1, mirror=False, samples='fill', invert=False, clip=False, stream=False, road='automatic')
--

A conversion of rows, decided once and run on as many as there are.

source, target  the Format of the rows that come in and go out
map     for each channel of the target the number of a channel of the source, None for zeros, or a
        Constant; None in place of a list takes the channels as they are
repeat  how often each pixel stands in the target: 1, 2 or 4
mirror  True reads the source from its last pixel to its first
samples what happens where the depth changes:
        'fill'    as ImageRow::FillFrom does: 8 and 16 bits are tones, 1 and 2 bits are levels
        'tones'   full scale becomes full scale, and tones the nearest level
        'levels'  a number stays what it is, and keeps its low bits where it doesn't fit
invert  True turns each sample into the target's full scale less the sample, after all else, but
        not those of entries that name no channel
clip    True lets a row end where the shorter side ends; False refuses widths that don't meet
stream  True writes past the cache, for targets that are not read again soon
road    'portable' for plain code without vectors, with the same bytes

A plan never changes, and any number of threads may run it at once. Plans that convert alike are
equal, hash alike and have the same saved record, by which they are pickled too.

PelkraftError: an argument has a value that can't be, or nothing serves all of them together; its
.field names the argument, such as 'target.bits'. TypeError: an argument is of another type.)";

constexpr const char* callWords =
    R"(__call__(self, rows, out=None)
--

Convert rows and return them.

rows    an array of source rows, (rows, width, channels) or (rows, channels, width) as Format says.
        One row may come alone, as (width, channels) or (channels, width), and rows of a single
        channel as (rows, width)
out     the array to write to, of the target's shape, or None for a new one; new ones have as many
        axes as rows, where the target's channels allow

Arrays are read and written where they are: any strides between rows and planes are served, and
never is one copied. Source arrays may be read-only, and of any subclass but masked ones. out must
share no byte with rows, unless it is the same array and needs.in_place says so. The interpreter's
lock is given back during a run of 32 KiB or more, of both sides together.

PelkraftError: dtype, shape, strides or the number of rows is another than the plan's, out is
read-only, or the two overlap; nothing has been written then. TypeError: no array, or a masked
one.)";

std::vector<std::int32_t> ToMap(py::handle value)
{
    if (!PySequence_Check(value.ptr()) || py::isinstance<py::str>(value) ||
        py::isinstance<py::bytes>(value))
        ThrowTypeError("map must be a list of channels, None or Constant, not " + TypeName(value));
    std::vector<std::int32_t> map;
    for (const py::handle entry : py::reinterpret_borrow<py::sequence>(value)) {
        const std::string name = "map[" + std::to_string(map.size()) + "]";
        if (entry.is_none()) {
            map.push_back(PLK_EMPTY);
        } else if (py::isinstance<Constant>(entry)) {
            map.push_back(PLK_CONSTANT(entry.cast<const Constant&>().sample));
        } else {
            const std::int32_t channel = ToInt32(entry, name.c_str());
            // The library has other meanings for these.
            if (channel < 0)
                ThrowInvalid(name.c_str(),
                             name + " is " + std::to_string(channel) +
                                 "; channels count from 0, and None stands for zeros",
                             channel, 0);
            map.push_back(channel);
        }
    }
    return map;
}

const plk_format& ToFormat(py::handle value, const char* name)
{
    if (!py::isinstance<plk_format>(value))
        ThrowTypeError(std::string(name) + " must be a Format, not " + TypeName(value));
    return value.cast<const plk_format&>();
}

std::unique_ptr<Plan> MakePlan(const py::object& /*type*/, const py::object& source,
                               const py::object& target, const py::object& map,
                               const py::object& repeat, const py::object& mirror,
                               const py::object& samples, const py::object& invert,
                               const py::object& clip, const py::object& stream,
                               const py::object& road)
{
    plk_spec spec = {};
    spec.size = sizeof spec;
    spec.source = ToFormat(source, "source");
    spec.target = ToFormat(target, "target");
    std::vector<std::int32_t> entries;
    if (!map.is_none()) {
        entries = ToMap(map);
        // A map of no entries is one all the same, so it needs an address.
        entries.reserve(1);
        spec.map = entries.data();
        spec.map_count = entries.size();
    }
    spec.repeat = ToInt32(repeat, "repeat");
    if (spec.repeat == 0)
        ThrowInvalid("repeat", "repeat is 0; it must be 1, 2 or 4", 0, 1);
    spec.mirror = ToFlag(mirror, "mirror");
    spec.samples = ToChoice(samples, "samples", sampleChoices);
    spec.invert = ToFlag(invert, "invert");
    spec.clip = ToFlag(clip, "clip");
    spec.stream = ToFlag(stream, "stream");
    spec.road = ToChoice(road, "road", roadChoices);
    return std::make_unique<Plan>(spec);
}

py::object MapOf(const Plan& plan)
{
    const plk_spec& spec = plan.Spec();
    if (!spec.map)
        return py::none();
    py::tuple entries(spec.map_count);
    for (std::uint64_t i = 0; i != spec.map_count; ++i) {
        const std::int32_t entry = spec.map[i];
        if (entry == PLK_EMPTY)
            entries[i] = py::none();
        else if (entry < 0)
            entries[i] = py::cast(Constant{PLK_CONSTANT(entry)});
        else
            entries[i] = py::int_(entry);
    }
    return entries;
}

// Shows what differs from the arguments' defaults.
std::string Show(const Plan& plan)
{
    const plk_spec& spec = plan.Spec();
    std::string text = "Plan(" + Repr(py::cast(spec.source)) + ", " + Repr(py::cast(spec.target));
    if (spec.map)
        text += ", map=" + Repr(MapOf(plan));
    if (spec.repeat > 1)
        text += ", repeat=" + std::to_string(spec.repeat);
    if (spec.mirror)
        text += ", mirror=True";
    if (spec.samples != PLK_SAMPLES_AS_FILL)
        text += std::string(", samples='") + sampleChoices.NameOf(spec.samples) + "'";
    if (spec.invert)
        text += ", invert=True";
    if (spec.clip)
        text += ", clip=True";
    if (spec.stream)
        text += ", stream=True";
    if (spec.road != PLK_ROAD_AUTOMATIC)
        text += std::string(", road='") + roadChoices.NameOf(spec.road) + "'";
    return text + ")";
}

template <std::int32_t plk_spec::*field>
bool FlagOf(const Plan& plan)
{
    return plan.Spec().*field != 0;
}

void AddFields(py::class_<Plan>& type)
{
    const auto add = [&](const char* name, const auto& get, const char* words) {
        type.def_property_readonly(name, get, words);
    };
    add(
        "source", [](const Plan& plan) { return plan.Spec().source; }, "The Format of rows.");
    add(
        "target", [](const Plan& plan) { return plan.Spec().target; }, "The Format of out.");
    add("map", &MapOf, "The map as a tuple, or None; None too if it changes nothing.");
    add(
        "repeat", [](const Plan& plan) { return plan.Spec().repeat; },
        "How often each pixel stands in the target.");
    add("mirror", &FlagOf<&plk_spec::mirror>, "Whether the source is read from its end.");
    add(
        "samples", [](const Plan& plan) { return sampleChoices.NameOf(plan.Spec().samples); },
        "What happens where the depth changes; 'fill' too where it makes no difference.");
    add("invert", &FlagOf<&plk_spec::invert>, "Whether samples are inverted.");
    add("clip", &FlagOf<&plk_spec::clip>, "Whether the shorter side ends a row of unequal widths.");
    add("stream", &FlagOf<&plk_spec::stream>, "Whether the target is written past the cache.");
    add(
        "road", [](const Plan& plan) { return roadChoices.NameOf(plan.Spec().road); },
        "The road that was asked for.");
    add(
        "needs", [](const Plan& plan) { return plan.Needs(); },
        "Needs of the rows: their bytes, and whether in place is allowed.");
}

} // namespace

void AddPlan(py::module_& module)
{
    py::class_<Plan> type(module, "Plan", py::is_final(), PlainMetaclass(), planWords);
    ShowInPackage(type);
    MakeByNew(type, &MakePlan, py::arg("source"), py::arg("target"), py::kw_only(),
              py::arg("map") = py::none(), py::arg("repeat") = 1, py::arg("mirror") = false,
              py::arg("samples") = "fill", py::arg("invert") = false, py::arg("clip") = false,
              py::arg("stream") = false, py::arg("road") = "automatic");
    AddFields(type);
    type.def("__call__", &Plan::Run, py::arg("rows"), py::arg("out") = py::none(), callWords);
    type.def(
        "explain",
        [](const Plan& plan, const py::object& json) { return plan.Explain(ToFlag(json, "json")); },
        py::arg("json") = false,
        R"(explain(self, json=False)
--

Describe how the plan runs on this machine: steps, road, level, bytes read and written for each row.
json=True gives a text of JSON.)");
    KnowByRecord(type, "pelkraft.Plan");
    type.def("__repr__", &Show);
}

} // namespace zvk::Pelkraft::Python
