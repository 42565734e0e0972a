#include "tools/pelkraft/coverage_window.h"

#include "tools/pelkraft/workers.h"

#include <algorithm>
#include <numeric>

namespace zvk::Pelkraft::Client {

template <typename Total>
WindowScan<Total>::WindowScan(const WindowShape& newShape, std::uint32_t newBandRows,
                              int newThreads)
    : shape(newShape), ringRows(shape.height + newBandRows), threads(newThreads),
      ring(static_cast<std::size_t>(ringRows * shape.pageWidth)),
      stripes(static_cast<std::size_t>(threads))
{}

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
    const Total* const left = Row(row - shape.height) + start;
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
