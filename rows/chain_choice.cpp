#include "rows/chain_choice.h"

namespace zvk::Pelkraft {
namespace {

constexpr const char* unsupported = "zvk::Pelkraft::Convert unsupported conversion";
constexpr const char* unsupportedTo16 = "zvk::Pelkraft::Convert unsupported conversion to 16 bit";
constexpr const char* unsupportedFrom16 =
    "zvk::Pelkraft::Convert unsupported conversion from 16 bit";

void Require(bool served, const char* text)
{
    if (!served)
        throw text;
}

template <typename... Facility>
Chain ChainOf(const Facility&... facility)
{
    return {{facility...}, sizeof...(facility)};
}

const ChunkConvertFacility& OneOption(const ChainOptions& options)
{
    return options.repeat.select != nullptr ? options.repeat : options.remap;
}

Chain ChooseChainTo16(const FormatPair& formats, const ChainOptions& options,
                      std::int32_t sseVersion)
{
    using Facility = ChunkConvertFacility;
    const std::int32_t depth = formats.source.bits;
    if (depth == 8)
        return ChainOf(options.reverse, options.remap, Facility::Create_Convert8to16(sseVersion),
                       options.repeat);
    Require(IsPacked(formats.source), unsupportedTo16);
    return ChainOf(options.reverse, options.remap, Facility::Create_Unpacker(sseVersion, depth),
                   Facility::Create_Convert8to16(sseVersion), options.repeat);
}

// Narrowing runs ahead of the mirror, so that the mirror has less to turn.
Chain ChooseChainFrom16(const FormatPair& formats, const ChainOptions& options,
                        std::int32_t sseVersion)
{
    using Facility = ChunkConvertFacility;
    const std::int32_t depth = formats.destination.bits;
    if (depth == 8)
        return ChainOf(Facility::Create_Convert16to8(sseVersion), options.reverse,
                       OneOption(options));
    Require(IsPacked(formats.destination), unsupportedFrom16);
    return ChainOf(Facility::Create_Convert16to8(sseVersion), options.reverse, options.repeat,
                   Facility::Create_Packer(sseVersion, depth), options.remap);
}

} // namespace

ChunkConvertFacility ReverseFor(const ConversionRequest& request)
{
    return request.factor < 0 ? ChunkConvertFacility::Create_Reverse(request.sseVersion)
                              : ChunkConvertFacility{};
}

// Mapping comes where a chunk has the fewest bytes, repeating where no byte holds two samples.
Chain ChooseChain(const FormatPair& formats, const ChainOptions& options, std::int32_t sseVersion)
{
    using Facility = ChunkConvertFacility;
    const std::int32_t from = formats.source.bits;
    const std::int32_t to = formats.destination.bits;
    if (from == to)
        return ChainOf(options.reverse, OneOption(options));
    if (to == 16)
        return ChooseChainTo16(formats, options, sseVersion);
    if (from == 8 && IsPacked(formats.destination))
        return ChainOf(options.reverse, options.repeat, Facility::Create_Packer(sseVersion, to),
                       options.remap);
    if (from == 16)
        return ChooseChainFrom16(formats, options, sseVersion);
    if (to == 8) {
        Require(IsPacked(formats.source), unsupported);
        return ChainOf(options.reverse, options.remap, Facility::Create_Unpacker(sseVersion, from),
                       options.repeat);
    }
    Require(IsPacked(formats.source) && IsPacked(formats.destination), unsupported);
    return ChainOf(options.reverse, Facility::Create_Unpacker(sseVersion, from), options.repeat,
                   Facility::Create_Packer(sseVersion, to), options.remap);
}

} // namespace zvk::Pelkraft
