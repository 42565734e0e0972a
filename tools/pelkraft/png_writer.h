#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace zvk::Pelkraft::Client {

struct PngState;

// The size of a picture, and its pixels per metre across and down where they are known, else 0.
struct PngShape
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t pixelsPerMetre = 0;
    std::uint32_t rowsPerMetre = 0;
};

// Writes a PNG of red, green and blue, row by row.
class PngWriter
{
public:
    // Takes bytes, and answers 0 or the number of an error.
    using Sink = std::function<int(const void* bytes, std::size_t size)>;

    // Failures name the path.
    PngWriter(std::string newPath, const PngShape& shape, Sink newSink);
    ~PngWriter();
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;

    // Three bytes for each pixel.
    void AddRow(const std::uint8_t* row);
    // Writes what comes after the last row.
    void Finish();

private:
    [[noreturn]] void Throw() const;

    std::unique_ptr<PngState> state;
};

} // namespace zvk::Pelkraft::Client
