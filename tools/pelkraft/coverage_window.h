#pragma once

#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::Client {

// The place with the largest sum; the first one from the top, then from the left.
struct LargestSum
{
    std::uint64_t sum = 0;
    std::int64_t x = 0;
    std::int64_t y = 0;
    bool found = false;

    void Take(std::uint64_t newSum, std::int64_t newX, std::int64_t newY)
    {
        if (!found || newSum > sum || (newSum == sum && (newY < y || (newY == y && newX < x))))
            *this = {newSum, newX, newY, true};
    }
    void Take(const LargestSum& other)
    {
        if (other.found)
            Take(other.sum, other.x, other.y);
    }
};

// The size of a page and of a window on it, which is no larger, in pixels.
struct WindowShape
{
    std::int64_t pageWidth = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;
};

// Moves a window over the rows of a page and keeps the place where its sum is largest. Of the rows
// it holds as many as the window and a band have, or those of a band alone where that is too much:
// then it wants rows again as they leave the window. Sums are exact.
template <typename Total>
class WindowScan
{
public:
    WindowScan(const WindowShape& newShape, std::uint32_t newBandRows, int newThreads);

    // The place for the sums of the pixels of a row, before their band is scanned.
    Total* Row(std::int64_t row)
    {
        return ring.data() + static_cast<std::size_t>(row % ringRows * shape.pageWidth);
    }

    // True if it holds no row until it leaves the window.
    bool WantsLeaving() const { return !leaving.empty(); }
    // The place for the sums of a row that leaves the window within the band, before it is scanned.
    Total* Leaving(std::int64_t row)
    {
        return leaving.data() + static_cast<std::size_t>(row % bandRows * shape.pageWidth);
    }

    // Takes the next rows, from first to end - 1, with all threads.
    void Scan(std::int64_t first, std::int64_t end);

    LargestSum Largest() const;

private:
    // Some places of the window, and the sums of the columns below them.
    struct Stripe
    {
        std::vector<std::uint64_t> columns;
        LargestSum largest;
    };

    void AddRow(Stripe& stripe, std::int64_t start, std::int64_t row);
    void ScanRow(Stripe& stripe, std::int64_t start, std::int64_t row) const;

    WindowShape shape;
    std::int64_t bandRows;
    std::int64_t ringRows;
    int threads;
    std::vector<Total> ring;
    std::vector<Total> leaving;
    std::vector<Stripe> stripes;
};

extern template class WindowScan<std::uint16_t>;
extern template class WindowScan<std::uint32_t>;

} // namespace zvk::Pelkraft::Client
