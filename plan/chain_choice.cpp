#include "plan/chain_choice.h"

namespace zvk::Pelkraft {
namespace {

constexpr const char* onlyOneOption = "zvk::Pelkraft::Convert only one option is allowed";
constexpr const char* unsupported = "zvk::Pelkraft::Convert unsupported conversion";
constexpr const char* unsupportedTo16 = "zvk::Pelkraft::Convert unsupported conversion to 16 bit";
constexpr const char* unsupportedFrom16 =
    "zvk::Pelkraft::Convert unsupported conversion from 16 bit";

void Require(bool served, const char* text)
{
    if (!served)
        throw text;
}

// The steps that the request asks for, each with None in its place where it does not.
struct Options
{
    explicit Options(const ConversionRequest& request)
        : reverse(request.factor < 0 ? ChainStep::Reverse : ChainStep::None),
          repeat(request.repeats ? ChainStep::Repeat : ChainStep::None),
          remap(request.maps ? ChainStep::Remap : ChainStep::None),
          one(request.repeats ? repeat : remap)
    {}

    ChainStep reverse;
    ChainStep repeat;
    ChainStep remap;
    // The one of the two that is asked for.
    ChainStep one;
};

// The factories know which depths they serve. Where two are refused, the first in the chain is
// named, so that a chain's list must not ask for both: its order of evaluation is open.
ChainStep PackTo(std::int32_t depth)
{
    if (depth != 1 && depth != 2)
        (void)ChunkConvertFacility::Create_Packer(0, depth);
    return ChainStep::Pack;
}

ChainStep UnpackFrom(std::int32_t depth)
{
    if (depth != 1 && depth != 2)
        (void)ChunkConvertFacility::Create_Unpacker(0, depth);
    return ChainStep::Unpack;
}

ChainSteps ChooseSameDepth(const FormatPair& formats, const Options& options)
{
    // A repeat copies bytes, and a byte of a packed row is several pixels: each gets a byte of its
    // own on the way.
    if (options.repeat != ChainStep::None && IsPacked(formats.source)) {
        const ChainStep unpack = UnpackFrom(formats.source.bits);
        return ChainSteps::Of(options.reverse, unpack, options.repeat, PackTo(formats.source.bits));
    }
    return ChainSteps::Of(options.reverse, options.one);
}

ChainSteps ChooseChainTo16(const FormatPair& formats, const Options& options)
{
    if (formats.source.bits == 8)
        return ChainSteps::Of(options.reverse, options.remap, ChainStep::Widen, options.repeat);
    Require(IsPacked(formats.source), unsupportedTo16);
    return ChainSteps::Of(options.reverse, options.remap, UnpackFrom(formats.source.bits),
                          ChainStep::Widen, options.repeat);
}

// Narrowing runs ahead of the mirror, so that the mirror has less to turn.
ChainSteps ChooseChainFrom16(const FormatPair& formats, const Options& options)
{
    if (formats.destination.bits == 8)
        return ChainSteps::Of(ChainStep::Narrow, options.reverse, options.one);
    Require(IsPacked(formats.destination), unsupportedFrom16);
    return ChainSteps::Of(ChainStep::Narrow, options.reverse, options.repeat,
                          PackTo(formats.destination.bits), options.remap);
}

} // namespace

// Mapping comes where a chunk has the fewest bytes, repeating where no byte holds two samples.
ChainSteps ChooseChain(const FormatPair& formats, const ConversionRequest& request)
{
    Require(!request.repeats || !request.maps, onlyOneOption);
    const Options options(request);
    const std::int32_t from = formats.source.bits;
    const std::int32_t to = formats.destination.bits;
    if (from == to)
        return ChooseSameDepth(formats, options);
    if (to == 16)
        return ChooseChainTo16(formats, options);
    if (from == 8 && IsPacked(formats.destination))
        return ChainSteps::Of(options.reverse, options.repeat, PackTo(to), options.remap);
    if (from == 16)
        return ChooseChainFrom16(formats, options);
    if (to == 8) {
        Require(IsPacked(formats.source), unsupported);
        return ChainSteps::Of(options.reverse, options.remap, UnpackFrom(from), options.repeat);
    }
    Require(IsPacked(formats.source) && IsPacked(formats.destination), unsupported);
    const ChainStep unpack = UnpackFrom(from);
    return ChainSteps::Of(options.reverse, unpack, options.repeat, PackTo(to), options.remap);
}

bool HasStep(const ChainSteps& chain, ChainStep step)
{
    for (std::uint32_t i = 0; i != chain.GetLength(); ++i)
        if (chain.GetStep(i) == step)
            return true;
    return false;
}

ChainFacilities FacilitiesOf(const ChainSteps& chain, const FormatPair& formats,
                             const ChainNumbers& numbers)
{
    using Facility = ChunkConvertFacility;
    const std::int32_t level = numbers.sseVersion;
    const auto facilityOf = [&](ChainStep step) -> Facility {
        switch (step) {
        case ChainStep::None:
            break;
        case ChainStep::Reverse:
            return Facility::Create_Reverse(level);
        case ChainStep::Repeat:
            return Facility::Create_PixelRepeat(level, numbers.factor);
        case ChainStep::Remap:
            return Facility::Create_Remap(level, numbers.map.entryCount, numbers.map.entries);
        case ChainStep::Unpack:
            return Facility::Create_Unpacker(level, formats.source.bits);
        case ChainStep::Pack:
            return Facility::Create_Packer(level, formats.destination.bits);
        case ChainStep::Widen:
            return Facility::Create_Convert8to16(level);
        case ChainStep::Narrow:
            return Facility::Create_Convert16to8(level);
        }
        return {};
    };
    ChainFacilities facilities{{}, chain.GetLength()};
    for (std::uint32_t i = 0; i != chain.GetLength(); ++i)
        facilities.facilities[i] = facilityOf(chain.GetStep(i));
    return facilities;
}

} // namespace zvk::Pelkraft
