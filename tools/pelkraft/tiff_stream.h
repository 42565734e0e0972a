#pragma once

#include "tools/pelkraft/held_directory.h"
#include "tools/pelkraft/mapped_file.h"

#include <tiffio.h>

#include <cstdint>
#include <optional>
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
    // Writes into a pipe: what libtiff writes is held, and sent when it is complete. It closes the
    // descriptor.
    TiffStream(int newDescriptor, const HeldDirectory& newHeld)
        : descriptor(newDescriptor), size(0), held(newHeld)
    {}
    ~TiffStream();
    TiffStream(const TiffStream&) = delete;
    TiffStream& operator=(const TiffStream&) = delete;

    // Null if libtiff finds no TIFF file there.
    TIFF* Open(const std::string& path, const char* mode, TIFFOpenOptions* options);

    int Descriptor() const { return descriptor; }
    std::uint64_t Size() const { return size; }

    // A pipe takes each directory before its strips, and these from Send.
    bool IsPipe() const { return held.has_value(); }
    void StartDirectory() { held->Start(size); }
    void SendDirectory(const StripRun& strips);
    void Send(const void* bytes, std::size_t count);

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
    // Up to here the disk has begun.
    std::uint64_t storing = 0;
    const MappedFile* mapping = nullptr;
    bool owner = true;
    std::optional<HeldDirectory> held;
    int firstError = 0;
    bool cutShort = false;
};

} // namespace zvk::Pelkraft::Client
