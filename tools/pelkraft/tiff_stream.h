#pragma once

#include "tools/pelkraft/mapped_file.h"

#include <tiffio.h>

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {

// The file under a handle of libtiff. Reads and writes that are cut short go on, and the first
// failure is kept: libtiff passes over failures in tags and at the end.
class TiffStream
{
public:
    // Reads a file of this size, or writes a new one of size 0. It closes the descriptor.
    TiffStream(int newDescriptor, std::uint64_t newSize) : descriptor(newDescriptor), size(newSize)
    {}
    // Reads the same file once more, in place where it could be mapped.
    TiffStream(const TiffStream& other, const MappedFile& newMapping)
        : descriptor(other.descriptor), size(other.size), mapping(&newMapping), owner(false)
    {}
    ~TiffStream();
    TiffStream(const TiffStream&) = delete;
    TiffStream& operator=(const TiffStream&) = delete;

    // Null if libtiff finds no TIFF file there.
    TIFF* Open(const std::string& path, const char* mode, TIFFOpenOptions* options);

    int Descriptor() const { return descriptor; }
    std::uint64_t Size() const { return size; }

    // Stores what was written, once the handle is closed.
    void Store();

    // The text of the first failure; empty if there is none.
    std::string Failure() const;

private:
    static TiffStream& From(thandle_t handle) { return *static_cast<TiffStream*>(handle); }
    static tmsize_t Read(thandle_t handle, void* bytes, tmsize_t count);
    static tmsize_t Write(thandle_t handle, void* bytes, tmsize_t count);
    static toff_t Seek(thandle_t handle, toff_t offset, int from);
    static int Map(thandle_t handle, void** start, toff_t* count);

    void Note(int error);

    int descriptor;
    std::uint64_t size;
    std::uint64_t position = 0;
    const MappedFile* mapping = nullptr;
    bool owner = true;
    int firstError = 0;
    bool cutShort = false;
};

} // namespace zvk::Pelkraft::Client
