#include "tests/sizes/naive_end.h"

#include "tests/support/words.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace zvk::Pelkraft::TestSupport {
namespace {

using namespace Words;

struct ActiveWidths
{
    std::int64_t source;
    std::int64_t destination;
};

ActiveWidths WidthsOf(const NaiveGeometry& from, const NaiveGeometry& to, std::int64_t repeats)
{
    const std::int64_t source = from.width;
    const std::int64_t destination = to.width;
    return {std::min(source, (destination + repeats - 1) / repeats),
            std::min(source * repeats, destination)};
}

std::string FaultOfFormat(const NaiveGeometry& geometry, std::int64_t activeWidth)
{
    const int bits = geometry.bits;
    if (bits != 1 && bits != 2 && bits != 8 && bits != 10 && bits != 16)
        return depth;
    // Compared as if unsigned: the negative number nearer to 0 is the larger.
    const auto order = [](std::int64_t number) {
        return number < 0 ? number + (std::int64_t{1} << 32) : number;
    };
    return order(geometry.width) < order(activeWidth) ? width : "";
}

std::string FaultOfCall(const NaiveGeometry& from, const NaiveGeometry& to,
                        const NaiveOperation& operation)
{
    const bool sameChannels = from.channels == to.channels;
    if (operation.hasMap)
        return "";
    if (operation.isFill)
        return sameChannels ? "" : fill;
    const std::int64_t repeats = std::abs(std::int64_t{operation.factor});
    if (!sameChannels || (repeats != 1 && repeats != 2 && repeats != 4))
        return repeat;
    return "";
}

// The one fault of a repeat of packed samples, which goes its own way.
std::string FaultOfRepeat(const NaiveGeometry& from)
{
    return from.bits == 10 ? unpacker : "";
}

std::string FaultOfUnpacking(const NaiveGeometry& from, const char* ending)
{
    if (!IsNaivePacked(from))
        return std::string(unsupported) + ending;
    return from.bits == 10 ? unpacker : "";
}

std::string FaultOfPacking(const NaiveGeometry& to, const char* ending)
{
    if (!IsNaivePacked(to))
        return std::string(unsupported) + ending;
    return to.bits == 10 ? packer : "";
}

std::string FaultOfChain(const NaiveGeometry& from, const NaiveGeometry& to)
{
    if (from.bits == to.bits)
        return "";
    if (to.bits == 16)
        return from.bits == 8 ? "" : FaultOfUnpacking(from, " to 16 bit");
    if (from.bits == 16)
        return to.bits == 8 ? "" : FaultOfPacking(to, " from 16 bit");
    if (from.bits == 8)
        return FaultOfPacking(to, "");
    if (to.bits == 8)
        return FaultOfUnpacking(from, "");
    if (!IsNaivePacked(from) || !IsNaivePacked(to))
        return unsupported;
    const std::string unpacking = FaultOfUnpacking(from, "");
    return unpacking.empty() ? FaultOfPacking(to, "") : unpacking;
}

bool Fits(const NaiveGeometry& geometry)
{
    return ExactRowBytes(geometry) <= 2147483647.0;
}

std::string FaultOfSizes(const NaiveGeometry& from, const NaiveGeometry& to)
{
    if (from.width < 0 || to.width < 0)
        return width;
    if (from.channels < 0 || to.channels < 0)
        return channelCount;
    return Fits(from) && Fits(to) ? "" : width;
}

bool LayoutsMeet(const NaiveGeometry& from, const NaiveGeometry& to)
{
    if ((IsNaivePacked(from) && from.bits == 10) || (IsNaivePacked(to) && to.bits == 10))
        return false;
    return from.bits != to.bits || from.bits >= 8 || IsNaivePacked(from) == IsNaivePacked(to);
}

std::string FaultOfFormats(const NaiveGeometry& from, const NaiveGeometry& to,
                           const ActiveWidths& active)
{
    const std::string source = FaultOfFormat(from, active.source);
    return source.empty() ? FaultOfFormat(to, active.destination) : source;
}

} // namespace

double ExactRowBytes(const NaiveGeometry& geometry)
{
    const double wide = geometry.width;
    if (!geometry.planar)
        return wide * geometry.channels * std::floor((geometry.bits + 7) / 8.0);
    return std::floor((wide * geometry.bits + 7) / 8) * geometry.channels;
}

NaiveEnd EndOfConversion(const NaiveGeometry& from, const NaiveGeometry& to,
                         const NaiveOperation& operation, bool mapIsNull)
{
    NaiveEnd end;
    end.refusal = FaultOfCall(from, to, operation);
    if (!end.refusal.empty())
        return end;
    const ActiveWidths active = WidthsOf(from, to, std::abs(std::int64_t{operation.factor}));
    end.refusal = FaultOfFormats(from, to, active);
    if (!end.refusal.empty())
        return end;
    const bool repeatsPacked =
        !operation.isFill && !operation.hasMap && IsNaivePacked(from) && from.bits == to.bits;
    end.refusal = repeatsPacked ? FaultOfRepeat(from) : FaultOfChain(from, to);
    if (end.refusal.empty())
        end.refusal = FaultOfSizes(from, to);
    if (!end.refusal.empty() || to.channels == 0)
        return end;
    if (from.channels == 0 || !LayoutsMeet(from, to))
        end.refusal = unsupported;
    else if (operation.hasMap && mapIsNull)
        end.refusal = remap;
    end.pixels = active.destination;
    end.pixelBytes = std::max(std::int64_t{from.channels} * ((from.bits + 7) / 8),
                              std::int64_t{to.channels} * ((to.bits + 7) / 8));
    return end;
}

} // namespace zvk::Pelkraft::TestSupport
