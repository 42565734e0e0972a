#include "tests/c_interface/naive_plan.h"

#include <algorithm>
#include <set>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Byte number `byte` of a plane; interleaved rows have plane 0 alone.
struct PlaneByte
{
    int plane;
    int byte;

    bool operator<(const PlaneByte& other) const
    {
        return plane != other.plane ? plane < other.plane : byte < other.byte;
    }
};
using PlaneBytes = std::set<PlaneByte>;

// The bytes of all samples of some pixels, and so what stands in the same bytes.
void AddSamples(PlaneBytes& covered, const NaiveGeometry& form, int channel, int firstPixel,
                int endPixel)
{
    const int bits = form.planar ? form.bits : (form.bits + 7) / 8 * 8;
    for (int pixel = firstPixel; pixel != endPixel; ++pixel) {
        const int bit = bits * (form.planar ? pixel : pixel * form.channels + channel);
        for (int byte = bit / 8; byte <= (bit + bits - 1) / 8; ++byte)
            covered.insert({form.planar ? channel : 0, byte});
    }
}

int CountPixels(const NaiveJoin& join)
{
    return std::min(join.source.width * join.repeat, join.target.width);
}

PlaneBytes BytesRead(const NaiveJoin& join)
{
    int first = join.source.planar ? join.source.channels : 0;
    int last = join.source.planar ? -1 : join.source.channels - 1;
    for (int channel = 0; channel != join.target.channels && join.source.planar; ++channel) {
        const int entry = join.maps ? join.map[static_cast<std::size_t>(channel)] : channel;
        first = entry >= 0 ? std::min(first, entry) : first;
        last = std::max(last, entry);
    }
    const int pixels = (CountPixels(join) + join.repeat - 1) / join.repeat;
    const int firstPixel = join.mirrored ? join.source.width - pixels : 0;
    PlaneBytes covered;
    for (int channel = first; channel <= last; ++channel)
        AddSamples(covered, join.source, channel, firstPixel, firstPixel + pixels);
    return covered;
}

PlaneBytes BytesWritten(const NaiveJoin& join)
{
    PlaneBytes covered;
    for (int channel = 0; channel != join.target.channels; ++channel)
        AddSamples(covered, join.target, channel, 0, CountPixels(join));
    return covered;
}

long long PlaceOf(const NaivePlacement& at, int row, const PlaneByte& byte)
{
    return at.offset + row * at.rowStep + byte.plane * at.planeStep + byte.byte;
}

// The place of a byte in a row whose planes follow one another.
std::size_t DensePlace(const NaiveGeometry& form, const PlaneByte& byte)
{
    const std::size_t row = NaiveRowBytes(form);
    const auto plane = static_cast<std::size_t>(byte.plane);
    return (form.planar ? plane * (row / static_cast<std::size_t>(form.channels)) : 0) +
           static_cast<std::size_t>(byte.byte);
}

Bytes TakeCovered(const NaiveGeometry& form, const PlaneBytes& covered, const Bytes& memory,
                  const NaivePlacement& at, int row)
{
    Bytes content(NaiveRowBytes(form));
    for (const PlaneByte& byte : covered)
        content[DensePlace(form, byte)] = memory[static_cast<std::size_t>(PlaceOf(at, row, byte))];
    return content;
}

std::vector<long long> PlacesOf(const PlaneBytes& covered, const NaivePlacement& at, int rows)
{
    std::vector<long long> places;
    for (int row = 0; row != rows; ++row)
        for (const PlaneByte& byte : covered)
            places.push_back(PlaceOf(at, row, byte));
    return places;
}

bool LiesIn(const std::vector<long long>& places, std::size_t size)
{
    return std::all_of(places.begin(), places.end(), [=](long long place) {
        return place >= 0 && place < static_cast<long long>(size);
    });
}

bool HasTwice(const std::vector<long long>& places)
{
    return std::set<long long>(places.begin(), places.end()).size() != places.size();
}

bool HaveCommon(const std::vector<long long>& one, const std::vector<long long>& other)
{
    const std::set<long long> places(one.begin(), one.end());
    return std::any_of(other.begin(), other.end(),
                       [&](long long place) { return places.count(place) != 0; });
}

// The same rows and planes; a stride that none of them takes may differ.
bool IsSame(const NaiveTrial& trial)
{
    const auto placesOf = [&](const NaiveGeometry& form, const NaivePlacement& at) {
        std::vector<long long> places;
        for (int row = 0; row != trial.rows; ++row)
            for (int plane = 0; plane != (form.planar ? form.channels : 1); ++plane)
                places.push_back(at.offset + row * at.rowStep + plane * at.planeStep);
        return places;
    };
    return placesOf(trial.spec.source, trial.from) == placesOf(trial.spec.target, trial.to);
}

} // namespace

std::vector<long long> PlacesRead(const NaiveJoin& join, const NaivePlacement& at, int rows)
{
    return PlacesOf(BytesRead(join), at, rows);
}

std::vector<long long> PlacesWritten(const NaiveJoin& join, const NaivePlacement& at, int rows)
{
    return PlacesOf(BytesWritten(join), at, rows);
}

Bytes NaiveRun(const NaiveJoin& join, const Bytes& source, const NaivePlacement& from,
               const Bytes& target, const NaivePlacement& to, int rows)
{
    const PlaneBytes read = BytesRead(join);
    const PlaneBytes written = BytesWritten(join);
    Bytes result = target;
    for (int row = 0; row != rows && !written.empty(); ++row) {
        const Bytes before = TakeCovered(join.target, written, target, to, row);
        const Bytes after =
            NaiveJoined(join, TakeCovered(join.source, read, source, from, row), before);
        for (const PlaneByte& byte : written)
            result[static_cast<std::size_t>(PlaceOf(to, row, byte))] =
                after[DensePlace(join.target, byte)];
    }
    return result;
}

std::string Describe(const NaiveTrial& trial)
{
    const auto view = [](const NaivePlacement& place) {
        return std::to_string(place.offset) + "/" + std::to_string(place.rowStep) + "/" +
               std::to_string(place.planeStep);
    };
    return Describe(trial.spec) + ", from " + view(trial.from) + " to " + view(trial.to) + ", " +
           std::to_string(trial.rows) + " rows" + (trial.shared ? " in one buffer" : "");
}

std::string NaiveEnd(const NaiveTrial& trial, bool inPlace, std::size_t size)
{
    const std::vector<long long> written = PlacesWritten(trial.spec, trial.to, trial.rows);
    const std::vector<long long> read = PlacesRead(trial.spec, trial.from, trial.rows);
    if (written.empty())
        return "OK";
    if (!LiesIn(read, size))
        return "TOO_SMALL source";
    if (!LiesIn(written, size))
        return "TOO_SMALL target";
    if (HasTwice(written))
        return "OVERLAP target";
    if (trial.shared && HaveCommon(read, written) && !(inPlace && IsSame(trial)))
        return "OVERLAP target";
    return "OK";
}

} // namespace zvk::Pelkraft::TestSupport
