#pragma once

#include "tools/pelkraft/input_file.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zvk::Pelkraft::Client {

// An open file, read byte by byte.
struct FileBytes
{
    int descriptor = -1;
    std::uint64_t size = 0;
    // The number of the last error, after which bytes seem to be missing.
    mutable int error = 0;

    // These bytes, or those of them that the file has.
    std::string Read(std::uint64_t offset, std::uint64_t count) const;
};

// The header says this of the form of all that follows.
struct TiffForm
{
    bool big = false;
    bool bigEndian = false;

    std::size_t HeaderBytes() const { return big ? 16 : 8; }
    std::size_t CountBytes() const { return big ? 8 : 2; }
    std::size_t EntryBytes() const { return big ? 20 : 12; }
    std::size_t PlaceBytes() const { return big ? 8 : 4; }
    std::uint64_t Number(std::string_view bytes) const;
    // The place of the first directory, by a whole header.
    std::uint64_t FirstDirectory(std::string_view header) const;
};

// By the first bytes of a file; nothing where they are no header of TIFF.
std::optional<TiffForm> FormOf(std::string_view start);

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

// A directory as it stands in a file, however much of it is there.
struct RawDirectory
{
    // The number of entries that it says it has.
    std::uint64_t count = 0;
    // False where the file ends before the directory does.
    bool whole = false;
    // None where one of them is missing, or where no program could have written so many.
    std::vector<RawTag> tags;
    // The place of the next one, 0 after the last.
    std::uint64_t next = 0;
};

// Nothing where the file ends before the number of entries does.
std::optional<RawDirectory> ReadDirectory(const FileBytes& file, const TiffForm& form,
                                          std::uint64_t offset);

// A file of TIFF read byte by byte, without libtiff, which mends and leaves out what is wrong.
class RawTiff
{
public:
    // Throws where this is no TIFF file. What comes through a pipe is kept in a file first.
    RawTiff(const std::string& newPath, const Spool& spool);

    const std::string& Path() const { return path; }
    std::uint64_t Size() const { return input.Size(); }
    const FileBytes& Whole() const { return bytes; }
    std::uint64_t FirstDirectory() const { return firstDirectory; }

    // Nothing where the file ends before the directory does, or the directory is empty.
    std::optional<RawDirectory> DirectoryAt(std::uint64_t offset) const;

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
    // Throws where reading fails.
    std::string Read(std::uint64_t offset, std::uint64_t count) const;
    void RequireSound() const;

    std::string path;
    InputFile input;
    FileBytes bytes;
    TiffForm form;
    std::uint64_t firstDirectory = 0;
};

} // namespace zvk::Pelkraft::Client
