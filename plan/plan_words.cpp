#include "plan/plan_words.h"

#include <algorithm>
#include <cstdlib>

namespace zvk::Pelkraft {
namespace {

std::string Counted(std::uint64_t count, const char* one)
{
    return std::to_string(count) + " " + one + (count == 1 ? "" : "s");
}

std::string BitsOf(std::int32_t bits)
{
    return Counted(static_cast<std::uint64_t>(bits), "bit");
}

std::string TurnOf(bool mirrored, std::uint64_t repeat)
{
    std::string text = mirrored ? "mirror" : "";
    if (repeat != 1)
        text.append(text.empty() ? "" : " and ").append("repeat ").append(std::to_string(repeat)) +=
            " times";
    return text;
}

std::string StepText(const DirectPlan& plan, const PassOutput& pass)
{
    const bool maps = plan.mapped && !plan.sourcePlanar && !plan.splitMaps;
    const std::string turn = TurnOf(plan.mirrored, plan.repeat);
    if (!maps)
        return turn + (pass.planar ? " the planes" : " the pixels");
    return (turn.empty() ? "map" : "map, " + turn) + " the pixels";
}

std::string PassText(const DirectPlan& plan, const PassOutput& pass)
{
    const std::string channels = Counted(plan.channels, "channel");
    switch (pass.kind) {
    case PassKind::Copy:
        return pass.planar ? "copy the planes" : "copy the row";
    case PassKind::Widen:
        return "widen to 16 bits";
    case PassKind::Narrow:
        return "narrow to 8 bits";
    case PassKind::Pack:
        return "pack to " + BitsOf(pass.bits);
    case PassKind::NarrowPack:
        return "narrow and pack to " + BitsOf(pass.bits);
    case PassKind::Unpack:
        return "unpack from " + BitsOf(plan.sourceBits);
    case PassKind::UnpackWiden:
        return "unpack from " + BitsOf(plan.sourceBits) + " and widen to 16 bits";
    case PassKind::MirrorBits:
        return "mirror the packed planes";
    case PassKind::Step:
    case PassKind::Move:
        return StepText(plan, pass);
    case PassKind::Split:
        return (plan.splitMaps ? "split and map to " : "split ") + channels + " of " +
               BitsOf(pass.bits);
    case PassKind::PackSplit:
        return "split " + channels + " and pack to " + BitsOf(pass.bits);
    case PassKind::SplitWiden:
        return "split " + channels + " and widen to 16 bits";
    case PassKind::NarrowSplit:
        return "narrow to 8 bits and split " + channels;
    case PassKind::Quantize:
        return std::string("round tones to ") +
               (plan.passes[plan.passCount - 1U].bits == 1 ? "2" : "4") + " levels";
    case PassKind::Stretch:
        return "stretch levels to tones of 8 bits";
    case PassKind::Cut:
        return "keep the low 8 bits";
    case PassKind::Extend:
        return "extend to 16 bits";
    case PassKind::Clear:
        return "fill with zeros";
    case PassKind::Merge:
        break;
    }
    return "merge " + channels + " of " + BitsOf(pass.bits);
}

std::string ChainText(const DescribedPlan& plan, ChainStep step)
{
    switch (step) {
    case ChainStep::None:
        break;
    case ChainStep::Reverse:
        return "mirror";
    case ChainStep::Repeat:
        return TurnOf(false, static_cast<std::uint64_t>(std::abs(plan.factor)));
    case ChainStep::Remap:
        return "map";
    case ChainStep::Unpack:
        return "unpack from " + BitsOf(plan.formats.source.bits);
    case ChainStep::Pack:
        return "pack to " + BitsOf(plan.formats.destination.bits);
    case ChainStep::Widen:
        return "widen to 16 bits";
    case ChainStep::Narrow:
        return "narrow to 8 bits";
    }
    return {};
}

std::vector<std::string> StepsOf(const DirectPlan& plan)
{
    std::vector<std::string> steps;
    // Planes are chosen by their addresses, ahead of all else.
    if (plan.mapped && plan.sourcePlanar)
        steps.emplace_back("map the planes");
    std::transform(plan.passes.begin(), plan.passes.begin() + plan.passCount,
                   std::back_inserter(steps),
                   [&](const PassOutput& pass) { return PassText(plan, pass); });
    const RowPatch* patch = plan.extras->patch;
    if (patch != nullptr && patch->setsConstants)
        steps.emplace_back("set constant samples");
    if (patch != nullptr && patch->inverts)
        steps.emplace_back("invert");
    if (plan.extras->streamed && plan.staged)
        steps.emplace_back("store past the cache");
    return steps;
}

std::vector<std::string> StepsOf(const DescribedPlan& plan)
{
    if (plan.road == PlanRoad::Direct)
        return StepsOf(plan.direct);
    std::vector<std::string> steps;
    steps.emplace_back("load chunks");
    for (std::uint32_t i = 0; i != plan.steps.GetLength(); ++i)
        if (std::string text = ChainText(plan, plan.steps.GetStep(i)); !text.empty())
            steps.push_back(std::move(text));
    steps.emplace_back("save chunks");
    return steps;
}

std::string LevelText(const DescribedPlan& plan)
{
    // The chain has no kernels beyond those of 16-byte vectors.
    const Road road = RoadOf(plan.sseVersion);
    const char* name = "plain code";
    if (road != Road::Portable)
        name = plan.road == PlanRoad::Chain || road == Road::Vector ? "SSSE3"
               : road == Road::Avx2                                 ? "AVX2"
                                                                    : "AVX-512";
    return std::string(name) + " (level " + std::to_string(plan.sseVersion) + ")";
}

// Bytes of so many samples, of which there may be nearly as many as 64 bits can count.
std::uint64_t SampleBytes(std::uint64_t samples, std::uint64_t bits)
{
    return samples / 8 * bits + (samples % 8 * bits + 7) / 8;
}

// The bytes that hold the pixels that take part; those of a mirrored row are its last ones.
std::uint64_t ActiveBytes(const ImageRowFormat& format, std::uint64_t channels, bool mirrored)
{
    const auto pixels = static_cast<std::uint64_t>(format.activeWidth);
    const auto bits = static_cast<std::uint64_t>(format.bits);
    if (!IsPacked(format))
        return channels * pixels * ((bits + 7) / 8);
    const auto end = mirrored ? static_cast<std::uint64_t>(format.width) : pixels;
    const std::uint64_t wholeBytesBefore = (end - pixels) / (8 / bits);
    return channels * (SampleBytes(end, bits) - wholeBytesBefore);
}

std::uint64_t CountChannelsRead(const DescribedPlan& plan)
{
    const auto channels = static_cast<std::uint64_t>(plan.formats.source.channels);
    const ChannelMap& map = plan.map;
    if (map.entryCount == 0 || plan.formats.source.layout == LayoutInterleaved)
        return channels;
    std::vector<std::int32_t> named(map.entries, map.entries + map.entryCount);
    std::sort(named.begin(), named.end());
    named.erase(std::unique(named.begin(), named.end()), named.end());
    const auto isRead = [&](std::int32_t entry) {
        return entry >= 0 && static_cast<std::uint64_t>(entry) < channels;
    };
    return static_cast<std::uint64_t>(std::count_if(named.begin(), named.end(), isRead));
}

bool ReadsNothing(const DescribedPlan& plan)
{
    return plan.road == PlanRoad::Direct && plan.direct.extras->clears;
}

} // namespace

PlanWords Describe(const DescribedPlan& plan)
{
    if (plan.road == PlanRoad::None)
        return {"none", LevelText(plan), {}, 0, 0};
    const auto channels = static_cast<std::uint64_t>(plan.formats.destination.channels);
    return {plan.road == PlanRoad::Direct ? "direct" : "chain", LevelText(plan), StepsOf(plan),
            ReadsNothing(plan)
                ? 0
                : ActiveBytes(plan.formats.source, CountChannelsRead(plan), plan.factor < 0),
            ActiveBytes(plan.formats.destination, channels, false)};
}

PlanWords Describe(const Plan& plan)
{
    const ConversionRequest& request = plan.request;
    return Describe({plan.road, request.sseVersion, request.factor, FormatsOf(plan), MapOf(plan),
                     StepsOf(plan), plan.direct});
}

std::string ToText(const PlanWords& words)
{
    std::string text = "road: " + words.road + ", " + words.level + "\n";
    for (const std::string& step : words.steps)
        text.append("  ").append(step) += '\n';
    return text + "reads " + Counted(words.bytesRead, "byte") + ", writes " +
           Counted(words.bytesWritten, "byte") + "\n";
}

} // namespace zvk::Pelkraft
