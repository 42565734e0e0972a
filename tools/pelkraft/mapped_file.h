#pragma once

#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft::Client {

// A file to be read in place. What the file can't give any more, because it was cut or its disk
// fails, reads as zeros and is noted, where by itself it would end the program. The
// system's own file says how many there can be at a time; others are not mapped.
class MappedFile
{
public:
    // Maps so many bytes. Not every file can be mapped: then there is nothing.
    MappedFile(int descriptor, std::uint64_t newSize);
    ~MappedFile();
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    void* Data() const { return data; }
    std::uint64_t Size() const { return size; }

    // True if something could not be read so far.
    bool Failed() const;
    // Gives the pages back that were read; they come again when they are needed.
    void Release() const;

private:
    void* data = nullptr;
    std::uint64_t size;
};

} // namespace zvk::Pelkraft::Client
