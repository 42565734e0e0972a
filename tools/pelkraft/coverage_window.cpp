#include "tools/pelkraft/coverage_window.h"

#include "tools/pelkraft/workers.h"

#include <algorithm>
#include <numeric>

namespace zvk::Pelkraft::Client {

namespace {

// Rows of windows and bands that take more are not held.
constexpr std::int64_t mostRingBytes = std::int64_t{16} << 20;
// Each thread has the columns below a window for itself, all together no more than these.
constexpr std::int64_t mostColumnBytes = std::int64_t{4} << 20;

int ThreadsFor(const WindowShape& shape, int threads)
{
    const std::int64_t columnBytes = shape.width * std::int64_t{sizeof(std::uint64_t)};
    return static_cast<int>(
        std::clamp<std::int64_t>(mostColumnBytes / columnBytes, 1, std::int64_t{threads}));
}

} // namespace

template <typename Total>
WindowScan<Total>::WindowScan(const WindowShape& newShape, std::uint32_t newBandRows,
                              int newThreads)
    : shape(newShape), bandRows(newBandRows), ringRows(shape.height + bandRows),
      threads(ThreadsFor(shape, newThreads)), stripes(static_cast<std::size_t>(threads))
{
    const std::int64_t rowBytes = shape.pageWidth * std::int64_t{sizeof(Total)};
    if (shape.height > 0 && ringRows > std::max<std::int64_t>(mostRingBytes / rowBytes, 1)) {
        ringRows = bandRows;
        leaving.resize(static_cast<std::size_t>(bandRows * shape.pageWidth));
    }
    ring.resize(static_cast<std::size_t>(ringRows * shape.pageWidth));
}

template <typename Total>
void WindowScan<Total>::Scan(std::int64_t first, std::int64_t end)
{
    const std::int64_t places = shape.pageWidth - shape.width + 1;
    ShareOut(threads, places, [&](int worker, std::int64_t start, std::int64_t stop) {
        Stripe& stripe = stripes[static_cast<std::size_t>(worker)];
        // A thread has the same places in every band.
        stripe.columns.resize(static_cast<std::size_t>(stop - start + shape.width - 1));
        for (std::int64_t row = first; row < end; ++row) {
            AddRow(stripe, start, row);
            if (row >= shape.height - 1)
                ScanRow(stripe, start, row);
        }
    });
}

template <typename Total>
void WindowScan<Total>::AddRow(Stripe& stripe, std::int64_t start, std::int64_t row)
{
    const Total* const added = Row(row) + start;
    std::uint64_t* const columns = stripe.columns.data();
    const std::size_t count = stripe.columns.size();
    if (row < shape.height) {
        for (std::size_t x = 0; x < count; ++x)
            columns[x] += added[x];
        return;
    }
    const std::int64_t gone = row - shape.height;
    const Total* const left = (WantsLeaving() ? Leaving(gone) : Row(gone)) + start;
    for (std::size_t x = 0; x < count; ++x)
        columns[x] = columns[x] + added[x] - left[x];
}

template <typename Total>
void WindowScan<Total>::ScanRow(Stripe& stripe, std::int64_t start, std::int64_t row) const
{
    const std::uint64_t* const columns = stripe.columns.data();
    const auto width = static_cast<std::size_t>(shape.width);
    const std::size_t places = stripe.columns.size() - width + 1;
    std::uint64_t sum = std::accumulate(columns, columns + width, std::uint64_t{0});
    std::uint64_t largest = sum;
    std::size_t at = 0;
    for (std::size_t x = 1; x < places; ++x) {
        sum += columns[x + width - 1] - columns[x - 1];
        if (sum > largest) {
            largest = sum;
            at = x;
        }
    }
    stripe.largest.Take(largest, start + static_cast<std::int64_t>(at), row - shape.height + 1);
}

template <typename Total>
LargestSum WindowScan<Total>::Largest() const
{
    LargestSum largest;
    for (const Stripe& stripe : stripes)
        largest.Take(stripe.largest);
    return largest;
}

template class WindowScan<std::uint16_t>;
template class WindowScan<std::uint32_t>;

} // namespace zvk::Pelkraft::Client
