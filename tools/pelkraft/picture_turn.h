#pragma once

#include "tools/pelkraft/input_file.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The size of a picture as it is stored, and the number of its tag Orientation, from 1 to 8.
struct TurnShape
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t orientation = 1;

    // True if a person sees its rows as columns.
    bool SwapsSides() const { return orientation > 4; }
};

// Turns a picture of three bytes for each pixel as a person is to see it. Rows that can't go on at
// once are kept, those of a large picture in a file.
class PictureTurn
{
public:
    using Sink = std::function<void(const std::uint8_t* row)>;

    // Failures name the path.
    PictureTurn(std::string newPath, const TurnShape& newShape, const Spool& spool, Sink newSink);
    ~PictureTurn();
    PictureTurn(const PictureTurn&) = delete;
    PictureTurn& operator=(const PictureTurn&) = delete;

    // Takes the next stored row.
    void AddRow(const std::uint8_t* row);
    // Gives all rows that were kept.
    void Finish();

private:
    bool Keeps() const { return shape.orientation > 2; }
    // The bytes of a kept row from start on, in place or else in the space for them.
    const std::uint8_t* Kept(std::uint32_t row, std::size_t start, std::size_t bytes,
                             std::uint8_t* space) const;
    void GiveRow(const std::uint8_t* row);
    void GiveKeptRows();
    void GiveKeptColumns();
    void GatherColumns(std::uint32_t first, std::uint32_t count, std::uint8_t* rows) const;

    std::string path;
    TurnShape shape;
    std::size_t rowBytes;
    Sink sink;
    std::uint32_t nextRow = 0;
    std::vector<std::uint8_t> mirroredRow;
    // The rows that are kept; none of them where there is a file for them.
    std::vector<std::uint8_t> held;
    int descriptor = -1;
};

// Refuses a picture whose turn takes a larger file than it may.
void CheckTurn(const std::string& path, const TurnShape& shape, const Spool& spool);

} // namespace zvk::Pelkraft::Client
