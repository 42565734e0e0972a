#include "tests/support/conversion_run.h"

namespace zvk::Pelkraft::TestSupport {
namespace {

bool IsUnpacked(const ConversionCase& oneCase)
{
    if (!IsNaivePacked(oneCase.source))
        return false;
    // A map alone runs on packed bytes; every factor, 1 included, unpacks.
    return oneCase.source.bits != oneCase.destination.bits || !oneCase.operation.hasMap;
}

} // namespace

std::string Describe(const ConversionCase& oneCase)
{
    return Describe(oneCase.source) + " to " + Describe(oneCase.destination) + ", " +
           Describe(oneCase.operation) + (oneCase.forcePortable ? ", portable" : ", vector");
}

void RunConversion(const ConversionCase& oneCase, unsigned char* source, unsigned char* destination)
{
    const auto& [from, to, operation, forcePortable] = oneCase;
    ImageRow sourceRow(from.width, from.channels, from.bits, from.planar, source);
    ImageRow row(to.width, to.channels, to.bits, to.planar, destination);
    if (operation.hasMap)
        row.FillFromWithRemap(sourceRow, operation.map.data(), false, forcePortable);
    else if (operation.isFill)
        row.FillFrom(sourceRow, false, forcePortable);
    else
        row.FillFromWithPixelRepeat(sourceRow, operation.factor, false, forcePortable);
}

bool IsLeftPacked(const ConversionCase& oneCase, int destinationChannel)
{
    if (!oneCase.forcePortable || !IsUnpacked(oneCase))
        return false;
    if (oneCase.source.bits == oneCase.destination.bits && oneCase.operation.isFill)
        return false;
    // The map runs on the packed side: ahead of the unpacker, or behind the packer.
    const bool mapsBehind = oneCase.operation.hasMap && IsNaivePacked(oneCase.destination);
    const int lanes = mapsBehind ? oneCase.source.channels : oneCase.destination.channels;
    const int lane = mapsBehind
                         ? oneCase.operation.map[static_cast<std::size_t>(destinationChannel)]
                         : destinationChannel;
    const int slot = (lanes + 15) / 16 * 16;
    const int covered = (lanes + 3) / 4 * 4;
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
