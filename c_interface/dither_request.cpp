#include "c_interface/dither_request.h"

#include "c_interface/field_checks.h"
#include "c_interface/record_size.h"
#include "dither/mask.h"
#include "zvk/system_tools.h"

#include <cstddef>

#define DITHER_END(field) PELKRAFT_FIELD_END(plk_dither_spec, field)

namespace zvk::Pelkraft {

template <>
struct FieldEnds<plk_dither_spec>
{
    static constexpr std::array ends = {
        // NOLINTNEXTLINE(bugprone-sizeof-expression): the pointer itself is counted.
        DITHER_END(size),     DITHER_END(bits), DITHER_END(tones),
        DITHER_END(channels), DITHER_END(road), DITHER_END(mask),
    };
};

namespace {

static_assert(mostInk == PLK_MOST_INK);

// The name of a field of one of the entries.
template <typename... Part>
FieldName EntryField(std::int32_t channel, const Part&... part)
{
    return FieldName("tones[", channel, "].", part...);
}

void RequireSample(const FieldName& field, std::int32_t sample, std::int32_t largest)
{
    if (sample < 0 || sample > largest)
        throw Refusal(PLK_INVALID, field, sample, largest, field.GetChars().data(), " is ", sample,
                      "; the samples of ", largest == 255 ? 8 : 16, " bits go from 0 to ", largest);
}

void RequireRisingInks(const plk_tones& tones, std::int32_t channel)
{
    for (std::int32_t step = 0; step != tones.steps; ++step) {
        const std::uint32_t ink = tones.inks[step];
        const FieldName field = EntryField(channel, "inks[", step, "]");
        const char* name = field.GetChars().data();
        if (step == 0 && ink != 0)
            throw Refusal(PLK_INVALID, field, ink, 0, name, " is ", ink,
                          "; the first step must have no ink, 0");
        if (step != 0 && ink <= tones.inks[step - 1])
            throw Refusal(PLK_INVALID, field, ink, std::int64_t{tones.inks[step - 1]} + 1, name,
                          " is ", ink, "; it must be more than the ink of the step before it, ",
                          tones.inks[step - 1]);
        if (ink > mostInk)
            throw Refusal(PLK_INVALID, field, ink, mostInk, name, " is ", ink, "; the most is ",
                          mostInk);
    }
}

ToneScale CheckTones(const plk_tones& tones, std::int32_t channel, std::int32_t largest)
{
    constexpr auto most = static_cast<std::int32_t>(mostSteps);
    const FieldName steps = EntryField(channel, "steps");
    if (tones.steps < 1 || tones.steps > most)
        throw Refusal(PLK_INVALID, steps, tones.steps, tones.steps < 1 ? 1 : most,
                      steps.GetChars().data(), " is ", tones.steps, "; it must be 1 to ", most);
    RequireSample(EntryField(channel, "no_ink"), tones.no_ink, largest);
    const FieldName fullInk = EntryField(channel, "full_ink");
    RequireSample(fullInk, tones.full_ink, largest);
    if (tones.full_ink == tones.no_ink)
        throw Refusal(PLK_INVALID, fullInk, tones.full_ink, tones.no_ink == 0 ? largest : 0,
                      fullInk.GetChars().data(), " is ", tones.full_ink,
                      ", the sample of no ink too; they must differ");
    RequireZero(EntryField(channel, "reserved"), tones.reserved);
    if (tones.inks == nullptr)
        throw NullRefusal(EntryField(channel, "inks").GetChars().data());
    RequireRisingInks(tones, channel);
    return {std::vector<std::uint32_t>(tones.inks, tones.inks + tones.steps),
            static_cast<std::uint32_t>(tones.no_ink), static_cast<std::uint32_t>(tones.full_ink)};
}

const std::uint16_t* MaskOf(const plk_dither_spec& spec)
{
    const std::uint16_t* mask = spec.mask != nullptr ? spec.mask : BuiltInMask();
    if (mask == nullptr)
        throw Refusal(PLK_UNSUPPORTED, FieldName("mask"), 0, 0,
                      "mask is null, and this library was built without its own; give 65536 ranks");
    return mask;
}

} // namespace

DitherRequest CheckDitherSpec(const plk_dither_spec* given)
{
    const plk_dither_spec spec = ReadRecord(given, "spec");
    RequireOneOf(FieldName("bits"), spec.bits, {8, 16}, "8 or 16");
    RequireNotNegative(FieldName("channels"), spec.channels);
    RequireRoad(spec.road);
    if (spec.tones == nullptr && spec.channels != 0)
        throw NullRefusal("tones");
    DitherRequest request;
    request.bits = spec.bits;
    for (std::int32_t channel = 0; channel != spec.channels; ++channel)
        request.scales.push_back(CheckTones(spec.tones[channel], channel, (1 << spec.bits) - 1));
    request.mask = MaskOf(spec);
    request.road = RoadOf(spec.road == PLK_ROAD_PORTABLE ? 0 : SystemTools::GetSseVersion());
    return request;
}

} // namespace zvk::Pelkraft
