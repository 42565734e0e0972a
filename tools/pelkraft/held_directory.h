#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::Client {

// The strips of a page that follow their directory: those of all planes for the first rows, then
// those for the next.
struct StripRun
{
    std::uint64_t planeBytes = 0;
    std::uint32_t height = 0;
    std::uint32_t rowsPerStrip = 1;
    std::uint32_t planes = 1;

    std::uint64_t Bytes() const { return planeBytes * height * planes; }
};

// Holds the directory that libtiff writes into a file that goes to a pipe, until it is known where
// its strips and the next directory will be. The one before is kept too: libtiff reads it again.
class HeldDirectory
{
public:
    // A file in the form for more than 4 GB or not, with so many pages.
    HeldDirectory(bool newBig, int pages) : big(newBig), pagesLeft(pages) {}

    // From here on a page's directory is written, at this offset. What stands before the first one
    // is held with it.
    void Start(std::uint64_t offset);
    void Write(std::uint64_t offset, const void* bytes, std::size_t size);
    // Answers how much it got.
    std::size_t Read(std::uint64_t offset, void* bytes, std::size_t size) const;

    // Fills in where the strips are, which follow at once, and where the next directory will be if
    // there is one.
    void Complete(const StripRun& strips);

    const std::vector<unsigned char>& Bytes() const { return present.bytes; }
    // The first offset after the strips that a directory can have.
    std::uint64_t NextOffset() const { return nextOffset; }

private:
    struct Piece
    {
        std::uint64_t start = 0;
        std::vector<unsigned char> bytes;
    };

    // Puts the values where an entry of the directory has them.
    void FillIn(std::size_t entry, const std::vector<std::uint64_t>& values);

    bool big;
    int pagesLeft;
    Piece former;
    Piece present;
    std::uint64_t directory = 0;
    // The place in the piece at which the offset of the next directory stands.
    std::size_t link = 0;
    std::uint64_t nextOffset = 0;
};

} // namespace zvk::Pelkraft::Client
