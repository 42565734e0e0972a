#pragma once

#include "tools/pelkraft/input_file.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// A tag as it stands in a file, before anybody makes sense of it.
struct RawTag
{
    std::uint16_t tag = 0;
    std::uint16_t type = 0;
    std::uint64_t count = 0;
    // The place of its values in the file.
    std::uint64_t offset = 0;

    // 0 for a type that nobody knows.
    std::uint64_t ValueBytes() const;
};

// A file of TIFF read byte by byte, without libtiff, which mends and leaves out what is wrong.
class RawTiff
{
public:
    // Throws where this is no TIFF file. What comes through a pipe is kept in a file first.
    RawTiff(const std::string& newPath, const Spool& spool);

    const std::string& Path() const { return path; }
    std::uint64_t Size() const { return input.Size(); }
    bool IsBig() const { return big; }
    std::uint64_t FirstDirectory() const { return firstDirectory; }

    // The tags of the directory at this place, and the place of the next one, 0 after the last.
    // Nothing where the file ends before the directory does.
    std::optional<std::vector<RawTag>> ReadDirectory(std::uint64_t offset,
                                                     std::uint64_t& next) const;

    // True where all values of the tag lie in the file.
    bool Holds(const RawTag& tag) const;
    // Calls take for each value that lies in the file, as a whole number; the type is one of
    // those. Stops where take answers false.
    void ForEachNumber(const RawTag& tag, const std::function<bool(std::uint64_t)>& take) const;
    std::vector<std::uint64_t> Numbers(const RawTag& tag, std::size_t most) const;
    // The bytes of a tag, at most so many.
    std::string Bytes(const RawTag& tag, std::size_t most) const;
    // A fraction; not a number where it has no meaning.
    double Fraction(const RawTag& tag) const;

private:
    std::uint64_t Number(const std::string& bytes, std::size_t offset, std::size_t size) const;
    // Reads these bytes, or those of them that the file has.
    std::string Read(std::uint64_t offset, std::uint64_t size) const;

    std::string path;
    InputFile input;
    bool bigEndian = false;
    bool big = false;
    std::uint64_t firstDirectory = 0;
};

} // namespace zvk::Pelkraft::Client
