#include "tests/support/conversion_run.h"

#include <cstdint>

namespace zvk::Pelkraft::TestSupport {
namespace {

bool IsUnpacked(const ConversionCase& oneCase)
{
    const NaiveOperation& operation = oneCase.operation;
    if (!IsNaivePacked(oneCase.source))
        return false;
    // A fill and a map alone run on packed bytes; every factor, 1 included, unpacks.
    return oneCase.source.bits != oneCase.destination.bits ||
           (!operation.isFill && !operation.hasMap);
}

} // namespace

std::string Describe(const ConversionCase& oneCase)
{
    return Describe(oneCase.source) + " to " + Describe(oneCase.destination) + ", " +
           Describe(oneCase.operation) + (oneCase.forcePortable ? ", portable" : ", vector");
}

void RunConversion(const ConversionCase& oneCase, const ImageRow& source, ImageRow& destination)
{
    const NaiveOperation& operation = oneCase.operation;
    if (operation.hasMap)
        destination.FillFromWithRemap(source, operation.map.data(), false, oneCase.forcePortable);
    else if (operation.isFill)
        destination.FillFrom(source, false, oneCase.forcePortable);
    else
        destination.FillFromWithPixelRepeat(source, operation.factor, false, oneCase.forcePortable);
}

void RunConversion(const ConversionCase& oneCase, unsigned char* source, unsigned char* destination)
{
    const NaiveGeometry& from = oneCase.source;
    const NaiveGeometry& to = oneCase.destination;
    const ImageRow sourceRow(from.width, from.channels, from.bits, from.planar, source);
    ImageRow row(to.width, to.channels, to.bits, to.planar, destination);
    RunConversion(oneCase, sourceRow, row);
}

bool IsServedDirectly(const ConversionCase& oneCase)
{
    constexpr int mostEntries = 64;
    const bool maps = oneCase.operation.hasMap;
    const int channels = oneCase.destination.channels;
    if (maps && channels > mostEntries)
        return false;
    if (!oneCase.forcePortable || !IsUnpacked(oneCase))
        return true;
    // A map runs on packed bytes: ahead of the unpacking, but after it where packing follows. The
    // unpacking fills a slot from its end down, in groups of four channels.
    const std::int64_t met =
        maps && IsNaivePacked(oneCase.destination) ? oneCase.source.channels : channels;
    return (met + 3) / 4 == (met + 15) / 16 * 4;
}

bool IsLeftPacked(const ConversionCase& oneCase, int destinationChannel)
{
    if (!oneCase.forcePortable || !IsUnpacked(oneCase))
        return false;
    // The map runs on the packed side: before the unpacker, or after the packer.
    const bool mapsBehind = oneCase.operation.hasMap && IsNaivePacked(oneCase.destination);
    const std::int64_t lanes = mapsBehind ? oneCase.source.channels : oneCase.destination.channels;
    const int lane = mapsBehind
                         ? oneCase.operation.map[static_cast<std::size_t>(destinationChannel)]
                         : destinationChannel;
    const std::int64_t slot = (lanes + 15) / 16 * 16;
    const std::int64_t covered = (lanes + 3) / 4 * 4;
    return lane >= 0 && lane < slot - covered;
}

void ForgetLeftPacked(const ConversionCase& oneCase, Bytes& destinationRow)
{
    const int setPixels =
        CountSetPixels(oneCase.source, oneCase.destination, oneCase.operation.factor);
    for (int channel = 0; channel != oneCase.destination.channels; ++channel)
        if (IsLeftPacked(oneCase, channel))
            ClearSamples(oneCase.destination, destinationRow, channel, setPixels);
}

} // namespace zvk::Pelkraft::TestSupport
