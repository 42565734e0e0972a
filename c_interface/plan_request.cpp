#include "c_interface/plan_request.h"

#include "c_interface/field_checks.h"
#include "c_interface/record_size.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#define SPEC_END(field) PELKRAFT_FIELD_END(plk_spec, field)
// The end of a field of one of the two formats.
#define FORMAT_END(side, field)                                                                    \
    (static_cast<std::uint32_t>(offsetof(plk_spec, side)) + PELKRAFT_FIELD_END(plk_format, field))

namespace zvk::Pelkraft {

template <>
struct FieldEnds<plk_spec>
{
    static constexpr std::array ends = {
        SPEC_END(size),
        SPEC_END(reserved),
        FORMAT_END(source, width),
        FORMAT_END(source, channels),
        FORMAT_END(source, bits),
        FORMAT_END(source, planar),
        FORMAT_END(source, reserved),
        FORMAT_END(target, width),
        FORMAT_END(target, channels),
        FORMAT_END(target, bits),
        FORMAT_END(target, planar),
        FORMAT_END(target, reserved),
        SPEC_END(map),
        SPEC_END(map_count),
        SPEC_END(repeat),
        SPEC_END(mirror),
        SPEC_END(samples),
        SPEC_END(invert),
        SPEC_END(clip),
        SPEC_END(stream),
        SPEC_END(road),
        SPEC_END(reserved2),
    };
};

namespace {

constexpr std::int32_t largestSample = std::numeric_limits<std::uint16_t>::max();
constexpr auto mostBytes = static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max());

void RequireFlag(const FieldName& field, std::int32_t value)
{
    RequireOneOf(field, value, {0, 1}, "0 or 1");
}

void CheckFormat(const plk_format& format, const char* side)
{
    RequireNotNegative(FieldName(side, ".width"), format.width);
    RequireNotNegative(FieldName(side, ".channels"), format.channels);
    RequireOneOf(FieldName(side, ".bits"), format.bits, {8, 1, 2, 10, 16}, "1, 2, 8, 10 or 16");
    RequireFlag(FieldName(side, ".planar"), format.planar);
    RequireZero(FieldName(side, ".reserved"), format.reserved);
}

void CheckFields(const plk_spec& spec)
{
    RequireZero(FieldName("reserved"), spec.reserved);
    CheckFormat(spec.source, "source");
    CheckFormat(spec.target, "target");
    if (spec.map == nullptr && spec.map_count != 0)
        throw NullRefusal("map");
    RequireOneOf(FieldName("repeat"), spec.repeat, {1, 0, 2, 4}, "1, 2 or 4, or 0 for 1");
    RequireFlag(FieldName("mirror"), spec.mirror);
    RequireOneOf(FieldName("samples"), spec.samples,
                 {PLK_SAMPLES_AS_FILL, PLK_SAMPLES_AS_TONES, PLK_SAMPLES_AS_LEVELS},
                 "0 (as fill), 1 (as tones) or 2 (as levels)");
    RequireFlag(FieldName("invert"), spec.invert);
    RequireFlag(FieldName("clip"), spec.clip);
    RequireFlag(FieldName("stream"), spec.stream);
    RequireRoad(spec.road);
    RequireZero(FieldName("reserved2"), spec.reserved2);
}

void RefusePlanesOf10Bits(const plk_format& format, const char* side)
{
    if (format.planar != 0 && format.bits == 10)
        throw Refusal(PLK_UNSUPPORTED, FieldName(side, ".bits"), 10, 16, side,
                      ".bits is 10, of which there are no planes; give 16, or set ", side,
                      ".planar to 0");
}

// The widest row whose bytes there are addresses for.
std::uint64_t MostPixels(const plk_format& format)
{
    const auto channels = static_cast<std::uint64_t>(format.channels);
    if (channels == 0)
        return std::numeric_limits<std::uint64_t>::max();
    const auto bits = static_cast<std::uint64_t>(format.bits);
    if (format.planar == 0 || bits >= 8)
        return mostBytes / (channels * ((bits + 7) / 8));
    const std::uint64_t planeBytes = mostBytes / channels;
    const std::uint64_t inByte = 8 / bits;
    return planeBytes > std::numeric_limits<std::uint64_t>::max() / inByte
               ? std::numeric_limits<std::uint64_t>::max()
               : planeBytes * inByte;
}

void CheckSize(const plk_format& format, const char* side)
{
    const std::uint64_t most = MostPixels(format);
    if (static_cast<std::uint64_t>(format.width) > most)
        throw Refusal(PLK_UNSUPPORTED, FieldName(side, ".width"), format.width, Limited(most), side,
                      ".width is ", format.width, "; a row of these channels and bits can have ",
                      most, " pixels at most");
}

bool IsInterleavedOfFewerBits(const plk_format& format)
{
    return format.planar == 0 && format.bits % 8 != 0;
}

// Interleaved rows of 1 and 2 bits hold bytes, and those of 10 bits samples of 16 bits.
std::int32_t BitsInMemory(const plk_format& format)
{
    return IsInterleavedOfFewerBits(format) ? (format.bits + 7) / 8 * 8 : format.bits;
}

void CheckEntry(const plk_spec& spec, std::uint64_t index)
{
    const std::int32_t entry = spec.map[index];
    const FieldName field("map[", index, "]");
    const char* name = field.GetChars().data();
    if (entry < PLK_CONSTANT(largestSample))
        throw Refusal(PLK_INVALID, field, entry, PLK_CONSTANT(largestSample), name, " is ", entry,
                      "; constants go down to PLK_CONSTANT(65535), which is ",
                      PLK_CONSTANT(largestSample));
    if (entry >= spec.source.channels)
        throw Refusal(PLK_UNSUPPORTED, field, entry,
                      spec.source.channels == 0 ? PLK_EMPTY : spec.source.channels - 1, name,
                      " is ", entry, "; the source has ", spec.source.channels,
                      " channels, counted from 0");
    const std::int32_t largest = (1 << BitsInMemory(spec.target)) - 1;
    if (entry < PLK_CONSTANT(largest))
        throw Refusal(PLK_UNSUPPORTED, field, entry, PLK_CONSTANT(largest), name,
                      " is the constant ", -2 - entry, "; the largest sample of the target is ",
                      largest);
}

void CheckMap(const plk_spec& spec)
{
    if (spec.map == nullptr) {
        if (spec.source.channels != spec.target.channels)
            throw Refusal(PLK_UNSUPPORTED, FieldName("target.channels"), spec.target.channels,
                          spec.source.channels, "target.channels is ", spec.target.channels,
                          "; without a map it must be that of the source, ", spec.source.channels);
        return;
    }
    const auto channels = static_cast<std::uint64_t>(spec.target.channels);
    if (spec.map_count != channels)
        throw Refusal(PLK_UNSUPPORTED, FieldName("map_count"), Limited(spec.map_count),
                      spec.target.channels, "map_count is ", spec.map_count,
                      "; it must be the number of channels of the target, ", channels);
    for (std::uint64_t index = 0; index != channels; ++index)
        CheckEntry(spec, index);
}

std::int32_t RepeatOf(const plk_spec& spec)
{
    return spec.repeat == 0 ? 1 : spec.repeat;
}

bool WidthsMeet(const plk_spec& spec)
{
    const std::int64_t repeat = RepeatOf(spec);
    return spec.target.width % repeat == 0 && spec.target.width / repeat == spec.source.width;
}

void CheckWidths(const plk_spec& spec)
{
    if (WidthsMeet(spec) || spec.clip != 0)
        return;
    const std::int32_t repeat = RepeatOf(spec);
    const std::int64_t most = std::numeric_limits<std::int64_t>::max() / repeat;
    if (spec.source.width > most)
        throw Refusal(PLK_UNSUPPORTED, FieldName("source.width"), spec.source.width,
                      spec.target.width / repeat, "source.width is ", spec.source.width,
                      "; with repeat ", repeat, " it can be ", most, " at most");
    const std::int64_t needed = spec.source.width * repeat;
    throw Refusal(PLK_UNSUPPORTED, FieldName("target.width"), spec.target.width, needed,
                  "target.width is ", spec.target.width, "; it must be ", needed,
                  ", the source.width ", spec.source.width, " with repeat ", repeat,
                  ", or clip must be 1");
}

// Samples of which the depth is not the one in memory have no full scale.
void CheckFullScale(const plk_spec& spec)
{
    if (!IsInterleavedOfFewerBits(spec.source) && !IsInterleavedOfFewerBits(spec.target))
        return;
    constexpr const char* why = "; interleaved samples of 1, 2 and 10 bits have no full scale, so ";
    if (spec.samples == PLK_SAMPLES_AS_TONES)
        throw Refusal(PLK_UNSUPPORTED, FieldName("samples"), spec.samples, PLK_SAMPLES_AS_FILL,
                      "samples is 1 (as tones)", why, "it must be 0 or 2, or the bits 8 or 16");
    if (spec.invert != 0)
        throw Refusal(PLK_UNSUPPORTED, FieldName("invert"), spec.invert, 0, "invert is 1", why,
                      "it must be 0, or the bits 8 or 16");
}

// The simplest kind of samples that gives the same for these depths.
std::int32_t CanonicalSamples(const plk_spec& spec)
{
    const std::int32_t from = BitsInMemory(spec.source);
    const std::int32_t to = BitsInMemory(spec.target);
    const bool changes = from != to;
    const bool hasWords = from == 16 || to == 16;
    const bool isPacked = from < 8 || to < 8;
    // From 8 bits to 16 and back a fill keeps full scale, and between 8 bits and packed planes it
    // keeps the number. It does the one and the other between 16 bits and packed planes.
    if (!changes || (spec.samples == PLK_SAMPLES_AS_TONES && !isPacked) ||
        (spec.samples == PLK_SAMPLES_AS_LEVELS && !hasWords))
        return PLK_SAMPLES_AS_FILL;
    return spec.samples;
}

bool KeepsChannels(const plk_spec& spec)
{
    if (spec.source.channels != spec.target.channels)
        return false;
    for (std::int32_t channel = 0; channel != spec.target.channels; ++channel)
        if (spec.map[channel] != channel)
            return false;
    return true;
}

PlanSpec CanonicalOf(const plk_spec& spec)
{
    const bool maps = spec.map != nullptr && !KeepsChannels(spec);
    return {spec.source,
            spec.target,
            maps,
            maps ? std::vector<std::int32_t>(spec.map, spec.map + spec.map_count)
                 : std::vector<std::int32_t>(),
            RepeatOf(spec),
            spec.mirror,
            CanonicalSamples(spec),
            spec.invert,
            WidthsMeet(spec) ? 0 : spec.clip,
            spec.stream,
            spec.road};
}

RowForm FormOf(const plk_format& format)
{
    return {format.width, format.channels, format.bits, format.planar != 0};
}

Samples SamplesOf(std::int32_t samples)
{
    if (samples == PLK_SAMPLES_AS_TONES)
        return Samples::AsTones;
    return samples == PLK_SAMPLES_AS_LEVELS ? Samples::AsLevels : Samples::AsFill;
}

} // namespace

PlanSpec CheckSpec(const plk_spec* given)
{
    const plk_spec spec = ReadRecord(given, "spec");
    CheckFields(spec);
    RefusePlanesOf10Bits(spec.source, "source");
    RefusePlanesOf10Bits(spec.target, "target");
    CheckSize(spec.source, "source");
    CheckSize(spec.target, "target");
    CheckMap(spec);
    CheckWidths(spec);
    CheckFullScale(spec);
    return CanonicalOf(spec);
}

void GiveSpec(const PlanSpec& spec, plk_spec* record)
{
    // A map of no entries is one all the same, so it has an address.
    static constexpr std::int32_t none = 0;
    RequireKnown(record, "spec");
    plk_spec given = {};
    given.source = spec.source;
    given.target = spec.target;
    if (spec.maps)
        given.map = spec.map.empty() ? &none : spec.map.data();
    given.map_count = spec.map.size();
    given.repeat = spec.repeat;
    given.mirror = spec.mirror;
    given.samples = spec.samples;
    given.invert = spec.invert;
    given.clip = spec.clip;
    given.stream = spec.stream;
    given.road = spec.road;
    WriteRecord(record, given);
}

std::uint64_t BytesUpTo(const plk_format& format, std::uint64_t pixels)
{
    const auto bits = static_cast<std::uint64_t>(BitsInMemory(format));
    if (format.planar == 0)
        return pixels * static_cast<std::uint64_t>(format.channels) * (bits / 8);
    // In two parts: the bits of a plane may need more than 64 bits where its bytes don't.
    return pixels / 8 * bits + (pixels % 8 * bits + 7) / 8;
}

RowsRequest RequestOf(const PlanSpec& spec, std::int32_t level)
{
    RowsRequest request;
    request.source = FormOf(spec.source);
    request.target = FormOf(spec.target);
    request.maps = spec.maps;
    request.entries = spec.map;
    request.repeat = spec.repeat;
    request.mirrored = spec.mirror != 0;
    request.samples = SamplesOf(spec.samples);
    request.inverted = spec.invert != 0;
    request.streamed = spec.stream != 0;
    request.level = level;
    return request;
}

} // namespace zvk::Pelkraft
