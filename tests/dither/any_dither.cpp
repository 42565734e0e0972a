#include "tests/dither/any_dither.h"

#include "tests/c_interface/fuzz_input.h"
#include "tests/c_interface/plan_records.h"
#include "tests/dither/dither_record.h"
#include "tests/support/random_bytes.h"

#include <limits>
#include <set>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int bufferBytes = 2000;

template <typename Number>
Number TakeAny(InputNumbers& numbers)
{
    Number number;
    numbers.Fill(number);
    return number;
}

// Mostly rising inks between two samples of the range.
NaiveTones TakeTones(InputNumbers& numbers, int bits)
{
    const int steps = numbers.Next(4) == 0 ? numbers.Next(256) + 2 : numbers.Next(6) + 1;
    const int shift = numbers.Next(steps > 6 ? 6 : 12);
    NaiveTones tones;
    std::uint64_t ink = 0;
    for (int step = 0; step != steps; ++step) {
        tones.inks.push_back(
            std::min<std::uint64_t>(ink, std::numeric_limits<std::uint32_t>::max()));
        ink += (std::uint64_t{TakeAny<std::uint16_t>(numbers)} << shift) + 1;
    }
    const std::int64_t samples = bits == 16 ? 65536 : 256;
    tones.noInk = TakeAny<std::uint16_t>(numbers) % samples;
    tones.fullInk = TakeAny<std::uint16_t>(numbers) % samples;
    if (numbers.Next(32) == 0)
        (numbers.Next(2) == 0 ? tones.noInk : tones.fullInk) = TakeAny<std::int32_t>(numbers);
    if (numbers.Next(32) == 0)
        tones.inks[static_cast<std::size_t>(numbers.Next(steps))] = TakeAny<std::uint32_t>(numbers);
    return tones;
}

NaiveDither TakeDither(InputNumbers& numbers)
{
    static const std::vector<std::uint16_t> randomMask = RandomMask(5);
    NaiveDither naive;
    naive.bits = numbers.Next(2) == 0 ? 8 : 16;
    const int channels = numbers.Next(16) == 0 ? numbers.Next(20) : numbers.Next(5);
    for (int channel = 0; channel != channels; ++channel)
        naive.channels.push_back(TakeTones(numbers, naive.bits));
    naive.mask = randomMask;
    if (plk_dither_mask() != nullptr && numbers.Next(2) == 0)
        naive.mask.assign(plk_dither_mask(), plk_dither_mask() + naive.mask.size());
    return naive;
}

bool IsServed(const NaiveTones& tones, std::int64_t largest)
{
    const auto isSample = [&](std::int64_t code) { return code >= 0 && code <= largest; };
    const std::vector<std::uint64_t>& inks = tones.inks;
    const std::set<std::uint64_t> rising(inks.begin(), inks.end());
    return inks.size() <= 256 && inks[0] == 0 && inks.back() <= PLK_MOST_INK &&
           std::is_sorted(inks.begin(), inks.end()) && rising.size() == inks.size() &&
           isSample(tones.noInk) && isSample(tones.fullInk) && tones.noInk != tones.fullInk;
}

bool IsServed(const NaiveDither& naive)
{
    return std::all_of(naive.channels.begin(), naive.channels.end(), [&](const NaiveTones& tones) {
        return IsServed(tones, naive.bits == 16 ? 65535 : 255);
    });
}

bool HasTwice(std::vector<long long> places)
{
    std::sort(places.begin(), places.end());
    return std::adjacent_find(places.begin(), places.end()) != places.end();
}

// All places of a page are taken modulo 256, so that these can't leave 64 bits.
std::int64_t PlaceBefore(std::int64_t place, int step)
{
    return static_cast<std::int64_t>((static_cast<std::uint64_t>(place) & 255U) +
                                     static_cast<std::uint64_t>(step));
}

Bytes DitheredBuffer(const NaiveDither& naive, const NaiveTrial& trial, std::int64_t x,
                     std::int64_t y, const Bytes& source, Bytes target)
{
    for (int row = 0; row != trial.rows; ++row)
        PutRow(trial.spec.target, trial.to, target, row,
               naive.RowOf(TakeRow(trial.spec.source, trial.from, source, row), PlaceBefore(x, 0),
                           PlaceBefore(y, row)));
    return target;
}

std::string CheckRun(const NaiveDither& naive, const plk_dither* dither, InputNumbers& numbers)
{
    const int channels = static_cast<int>(naive.channels.size());
    const int pixels = numbers.Next(8) == 0 ? numbers.Next(256) : numbers.Next(40);
    NaiveTrial trial = {{}, {}, {}, numbers.Next(5), numbers.Next(2) == 1};
    trial.spec.source = {pixels, channels, naive.bits, false};
    trial.spec.target = {pixels, channels, 8, false};
    trial.from = TakePlacement(numbers, trial.spec.source, bufferBytes);
    trial.to =
        numbers.Next(4) == 0 ? trial.from : TakePlacement(numbers, trial.spec.target, bufferBytes);
    const auto x = TakeAny<std::int64_t>(numbers);
    const auto y = TakeAny<std::int64_t>(numbers);

    const Bytes source = RandomBytes(bufferBytes, 1);
    const Bytes before = trial.shared ? source : RandomBytes(bufferBytes, 2);
    Bytes target = before;
    const plk_source from = SourceOf(trial.shared ? target : source, trial.from);
    const plk_target to = TargetOf(target, trial.to);
    plk_failure failure = Sized<plk_failure>();
    const plk_status status =
        plk_dither_run(dither, x, y, static_cast<std::uint64_t>(trial.rows),
                       static_cast<std::uint64_t>(pixels), &from, &to, &failure);
    const bool inPlace = !HasTwice(PlacesRead(trial.spec, trial.from, trial.rows));
    const bool isServed = NaiveEnd(trial, inPlace, bufferBytes) == "OK";
    if ((status == PLK_OK) != isServed)
        return "the run ends with status " + std::to_string(status) + ": " + Describe(trial);
    if (status != PLK_OK)
        return target == before ? CheckRefused(status, failure) : "a refused run writes";
    if (pixels == 0 || channels == 0)
        return target == before ? "" : "a run of nothing writes";
    if (target != DitheredBuffer(naive, trial, x, y, source, before))
        return "the run gives other bytes: " + Describe(trial);
    return "";
}

} // namespace

std::string CheckAnyDither(const std::uint8_t* bytes, std::size_t count)
{
    InputNumbers numbers(bytes, count);
    const NaiveDither naive = TakeDither(numbers);
    const DitherRecord record(naive, numbers.Next(2));
    plk_dither* dither = nullptr;
    plk_failure failure = Sized<plk_failure>();
    const plk_status status = plk_dither_create(&record.spec, &dither, &failure);
    const DitherHandle owner(dither);
    if ((status == PLK_OK) != IsServed(naive))
        return "making the dither ends with status " + std::to_string(status) + ": " + failure.text;
    return status == PLK_OK ? CheckRun(naive, dither, numbers) : CheckRefused(status, failure);
}

} // namespace zvk::Pelkraft::TestSupport
