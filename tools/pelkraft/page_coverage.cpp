#include "tools/pelkraft/page_coverage.h"

#include "tools/pelkraft/band_reader.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/sample_planes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

namespace zvk::Pelkraft::Client {
namespace {

constexpr double mmPerInch = 25.4;
// Sums of so many amounts of 16 bits stay within 32.
constexpr int blockPixels = 4096;
constexpr std::uint64_t thousandthsOfAll = 100000;

// Takes amounts of ink out of samples, whose ink is high after flip has turned their bits.
template <typename Sample>
struct Amounts
{
    Sample flip = 0;
    Sample none = 0;
    Sample range = 0;

    // Without std::max, whose choice of a reference keeps compilers from vectorising.
    Sample Of(Sample sample) const
    {
        const auto turned = static_cast<Sample>(sample ^ flip);
        const Sample high = turned > none ? turned : none;
        const auto above = static_cast<Sample>(high - none);
        return above < range ? above : range;
    }
};

template <typename Sample>
Amounts<Sample> AmountsFor(const CoveragePlan& plan)
{
    const int highest = (1 << plan.picture.bits) - 1;
    const bool high = plan.codes.InkIsHigh();
    Amounts<Sample> amounts;
    amounts.flip = static_cast<Sample>(high ? 0 : highest);
    amounts.none = static_cast<Sample>(high ? plan.codes.none : highest - plan.codes.none);
    amounts.range = static_cast<Sample>(plan.Full());
    return amounts;
}

// A thread's share of the counting.
struct Counted
{
    // cppcheck-suppress unusedStructMember // a template uses it
    std::vector<InkAmounts> inks;
    std::uint64_t sum = 0;
    LargestSum largest;
    std::uint64_t pixelsAbove = 0;
};

// Three loops over a block, each of a kind that compilers vectorise.
template <typename Sample, typename Total>
void AddInk(const Sample* samples, std::int64_t count, const Amounts<Sample>& amountsOf,
            Total* totals, InkAmounts& ink)
{
    std::array<Sample, blockPixels> amounts;
    const Amounts<Sample> of = amountsOf;
    for (std::int64_t i = 0; i < count; ++i)
        amounts[static_cast<std::size_t>(i)] = of.Of(samples[i]);
    Sample largest = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        const Sample amount = amounts[static_cast<std::size_t>(i)];
        largest = amount > largest ? amount : largest;
    }
    std::uint32_t sum = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        const Sample amount = amounts[static_cast<std::size_t>(i)];
        sum += amount;
        totals[i] = static_cast<Total>(totals[i] + amount);
    }
    ink.sum += sum;
    ink.largest = std::max<std::uint32_t>(ink.largest, largest);
}

template <typename Total>
void AddTotals(const Total* totals, std::int64_t count, std::int64_t x, std::int64_t y,
               Total threshold, Counted& counted)
{
    Total largest = 0;
    std::uint32_t above = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        largest = std::max(largest, totals[i]);
        above += totals[i] > threshold ? 1 : 0;
    }
    counted.pixelsAbove += above;
    if (!counted.largest.found || largest > counted.largest.sum)
        counted.largest.Take(largest, x + (std::find(totals, totals + count, largest) - totals), y);
}

// Counts a page whose samples and sums have these sizes.
template <typename Sample, typename Total>
class Counter
{
public:
    Counter(const TiffFile& newFile, const CoveragePlan& newPlan, int newThreads)
        : file(newFile), plan(newPlan), planes(file, plan.picture, ChannelsOf(plan)),
          amounts(AmountsFor<Sample>(plan)), threads(newThreads), bandRows(BandRowsOf(plan)),
          scan(ShapeOrNone(plan), bandRows, threads), parts(static_cast<std::size_t>(threads))
    {
        for (Counted& part : parts) {
            part.inks.resize(plan.inks.size());
            rows.emplace_back(planes);
        }
        if (!scan.WantsLeaving())
            return;
        order.readers = 2;
        leaving.emplace(file, plan.picture, bandRows, order);
        uncounted.resize(parts.size(), std::vector<InkAmounts>(plan.inks.size()));
    }

    PageCoverage Count(CoverageMap* map, Progress& progress)
    {
        const auto takeRow = [&](int worker, std::int64_t y, const unsigned char* bytes) {
            SamplePlanes::Row& row = rows[static_cast<std::size_t>(worker)];
            row.Take(bytes);
            CountRow(row, y, parts[static_cast<std::size_t>(worker)]);
        };
        const auto endBand = [&](std::uint32_t first, std::uint32_t count) {
            if (scan.WantsLeaving())
                ReadLeaving(std::int64_t{first} + count - plan.window->height);
            if (plan.window)
                scan.Scan(first, std::int64_t{first} + count);
            for (std::uint32_t i = 0; map != nullptr && i < count; ++i)
                map->AddRow(scan.Row(std::int64_t{first} + i));
            progress.Advance(count);
        };
        ForEachBand(file, plan.picture, threads, {takeRow, endBand, bandRows, order});
        return Sum();
    }

private:
    static std::vector<int> ChannelsOf(const CoveragePlan& plan)
    {
        std::vector<int> channels;
        for (const PageInk& ink : plan.inks)
            channels.push_back(static_cast<int>(ink.sample));
        return channels;
    }

    // Sums take more than bits do, and are counted too.
    static std::uint32_t BandRowsOf(const CoveragePlan& plan)
    {
        const std::uint32_t height = plan.picture.height;
        return std::min(RowsOfBand(plan.picture.RowBytes(), height),
                        RowsOfBand(plan.picture.width * std::int64_t{sizeof(Total)}, height));
    }

    // Sums the rows up to end once more, from the one where the last band stopped.
    void ReadLeaving(std::int64_t end)
    {
        const std::int64_t count = end - nextLeaving;
        if (count <= 0)
            return;
        leaving->Next(static_cast<std::uint32_t>(count));
        ShareOutRows(threads, count, plan.picture.RowBytes(),
                     [&](int worker, std::int64_t begin, std::int64_t stop) {
                         const auto index = static_cast<std::size_t>(worker);
                         leaving->Fetch(begin, stop);
                         for (std::int64_t row = begin; row < stop; ++row) {
                             rows[index].Take(leaving->Row(row));
                             Total* const totals = scan.Leaving(nextLeaving + row);
                             for (std::int64_t x = 0; x < planes.Width(); x += blockPixels)
                                 SumPiece(rows[index], x, totals, uncounted[index]);
                         }
                     });
        nextLeaving = end;
    }

    // Answers the pixels of the piece from x on.
    std::int64_t SumPiece(const SamplePlanes::Row& row, std::int64_t x, Total* totals,
                          std::vector<InkAmounts>& inks)
    {
        const std::int64_t count = std::min<std::int64_t>(blockPixels, planes.Width() - x);
        std::fill_n(totals + x, count, Total{0});
        for (int ink = 0; ink < planes.Channels(); ++ink)
            AddInk(row.Channel<Sample>(ink) + x, count, amounts, totals + x,
                   inks[static_cast<std::size_t>(ink)]);
        return count;
    }

    static WindowShape ShapeOrNone(const CoveragePlan& plan)
    {
        return plan.window.value_or(WindowShape{plan.picture.width, 1, 0});
    }

    // Piece by piece, so that all inks of a piece are at hand.
    void CountRow(const SamplePlanes::Row& row, std::int64_t y, Counted& counted)
    {
        Total* const totals = scan.Row(y);
        const auto threshold = static_cast<Total>(
            std::min<std::uint64_t>(plan.threshold, std::numeric_limits<Total>::max()));
        for (std::int64_t x = 0; x < planes.Width(); x += blockPixels) {
            const std::int64_t count = SumPiece(row, x, totals, counted.inks);
            AddTotals(totals + x, count, x, y, threshold, counted);
        }
    }

    PageCoverage Sum() const
    {
        PageCoverage page;
        page.inks.resize(plan.inks.size());
        for (const Counted& part : parts) {
            for (std::size_t ink = 0; ink < page.inks.size(); ++ink) {
                page.inks[ink].sum += part.inks[ink].sum;
                page.inks[ink].largest = std::max(page.inks[ink].largest, part.inks[ink].largest);
                page.sum += part.inks[ink].sum;
            }
            page.largest.Take(part.largest);
            page.pixelsAbove += part.pixelsAbove;
        }
        page.window = scan.Largest();
        return page;
    }

    const TiffFile& file;
    const CoveragePlan& plan;
    SamplePlanes planes;
    Amounts<Sample> amounts;
    int threads;
    std::uint32_t bandRows;
    WindowScan<Total> scan;
    std::vector<Counted> parts;
    std::vector<SamplePlanes::Row> rows;
    RowOrder order;
    // Reads the rows that leave the window, where they are not held. Their inks were counted.
    std::optional<BandReader> leaving;
    std::int64_t nextLeaving = 0;
    std::vector<std::vector<InkAmounts>> uncounted;
};

// Takes a number off the start of rest, of up to nine digits before the point and three after it.
std::optional<std::uint64_t> TakeThousandths(std::string_view& rest)
{
    constexpr std::size_t mostDigits = 9;
    std::uint64_t number = 0;
    const auto takeDigits = [&](std::size_t most) {
        std::size_t digits = 0;
        for (; digits < most && !rest.empty() && rest[0] >= '0' && rest[0] <= '9'; ++digits) {
            number = number * 10 + static_cast<std::uint64_t>(rest[0] - '0');
            rest.remove_prefix(1);
        }
        return digits;
    };
    if (takeDigits(mostDigits) == 0)
        return std::nullopt;
    std::size_t decimals = 0;
    if (rest.starts_with('.')) {
        rest.remove_prefix(1);
        decimals = takeDigits(3);
        if (decimals == 0)
            return std::nullopt;
    }
    for (; decimals < 3; ++decimals)
        number *= 10;
    return number;
}

// A window as it is asked for, and the part of it that has room on the page.
void SetWindow(CoveragePlan& plan, const WindowSize& size)
{
    double across = 1;
    double down = 1;
    if (size.unit != "px") {
        if (!plan.resolution.HasLength())
            return;
        const double mm = size.unit == "in" ? mmPerInch : 1;
        across = plan.resolution.PixelsPerMmAcross() * mm;
        down = plan.resolution.PixelsPerMmDown() * mm;
    }
    const auto fit = [&](double pixels, std::uint32_t most) {
        plan.windowIsCut = plan.windowIsCut || pixels > static_cast<double>(most);
        return static_cast<std::int64_t>(std::clamp(pixels, 1.0, static_cast<double>(most)));
    };
    const std::int64_t width = fit(std::round(size.length * across), plan.picture.width);
    const std::int64_t height = fit(std::round(size.length * down), plan.picture.height);
    plan.window = WindowShape{plan.picture.width, width, height};
}

} // namespace

WindowSize ReadWindowSize(const std::string& words)
{
    WindowSize size;
    std::string_view rest = words;
    const std::optional<std::uint64_t> thousandths = TakeThousandths(rest);
    size.unit = rest;
    const bool known = size.unit == "mm" || size.unit == "in" || size.unit == "px";
    if (!thousandths || *thousandths == 0 || !known)
        throw Failure(ExitCode::Usage, {},
                      "--window " + words +
                          " is no size; supported are a number above 0 and its unit, mm, in or "
                          "px, such as 1mm");
    size.length = static_cast<double>(*thousandths) / 1000;
    return size;
}

std::uint64_t ReadLimit(const std::string& words)
{
    std::string_view rest = words;
    const std::optional<std::uint64_t> thousandths = TakeThousandths(rest);
    if (!thousandths || *thousandths == 0 || !rest.empty())
        throw Failure(ExitCode::Usage, {},
                      "--limit " + words +
                          " is no limit; supported are numbers above 0, in percent, such as 300");
    return *thousandths;
}

std::uint64_t CoveragePlan::Full() const
{
    return static_cast<std::uint64_t>(std::abs(codes.full - codes.none));
}

CoveragePlan PlanCoverage(const TiffFile& file, const InputOptions& input, const WindowSize& window,
                          std::uint64_t limit)
{
    CoveragePlan plan;
    plan.picture = ReadPicture(file);
    plan.resolution = ReadResolution(file);
    plan.inks = ReadPageInks(file, plan.picture);
    plan.codes = ReadInkCodes(file, plan.picture, input);
    SetWindow(plan, window);
    plan.threshold = limit * plan.Full() / thousandthsOfAll;
    return plan;
}

PageCoverage CountCoverage(const TiffFile& file, const CoveragePlan& plan, CoverageMap* map,
                           int threads, Progress& progress)
{
    const std::uint64_t mostSum = plan.Full() * plan.inks.size();
    const bool narrow = mostSum <= std::numeric_limits<std::uint16_t>::max();
    if (plan.picture.bits == 16)
        return narrow
                   ? Counter<std::uint16_t, std::uint16_t>(file, plan, threads).Count(map, progress)
                   : Counter<std::uint16_t, std::uint32_t>(file, plan, threads)
                         .Count(map, progress);
    return narrow ? Counter<std::uint8_t, std::uint16_t>(file, plan, threads).Count(map, progress)
                  : Counter<std::uint8_t, std::uint32_t>(file, plan, threads).Count(map, progress);
}

} // namespace zvk::Pelkraft::Client
