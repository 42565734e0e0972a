#include "tools/pelkraft/tiff_stream.h"

#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/system_calls.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

// The disk begins with its work when so many new bytes were written.
constexpr std::uint64_t storedAtOnce = std::uint64_t{8} << 20;

} // namespace

TiffStream::~TiffStream()
{
    if (owner && descriptor >= 0)
        Close(descriptor);
}

TIFF* TiffStream::Open(const std::string& path, const char* mode, TIFFOpenOptions* options)
{
    const auto leaveOpen = [](thandle_t) { return 0; };
    const auto tellSize = [](thandle_t handle) -> toff_t { return From(handle).size; };
    const auto unmap = [](thandle_t, void*, toff_t) {};
    return TIFFClientOpenExt(path.c_str(), mode, this, Read, Write, Seek, leaveOpen, tellSize, Map,
                             unmap, options);
}

void TiffStream::SendDirectory(const StripRun& strips)
{
    held->Complete(strips);
    Send(held->Bytes().data(), held->Bytes().size());
    size = held->NextOffset();
}

void TiffStream::Send(const void* bytes, std::size_t count)
{
    // After a failure nothing that follows would stand at its place.
    if (firstError == 0)
        Note(WriteAll(descriptor, bytes, count));
}

void TiffStream::Store()
{
    if (!owner || descriptor < 0)
        return;
    const int written = std::exchange(descriptor, -1);
    Note(IsPipe() ? Close(written) : StoreAndClose(written));
}

std::string TiffStream::Failure() const
{
    if (firstError == EPIPE && IsPipe())
        return "whoever read the pipe has closed it";
    if (firstError != 0)
        return ErrorText(firstError);
    if (cutShort)
        return "it has become shorter meanwhile";
    return mapping != nullptr && mapping->Failed() ? ErrorText(EIO) : std::string();
}

tmsize_t TiffStream::Read(thandle_t handle, void* bytes, tmsize_t count)
{
    TiffStream& stream = From(handle);
    if (stream.IsPipe()) {
        const auto asked = static_cast<std::size_t>(count);
        const std::size_t recalled = stream.held->Read(stream.position, bytes, asked);
        stream.position += recalled;
        return static_cast<tmsize_t>(recalled);
    }
    // Bytes wanted after the end are the fault of the file; bytes missing before it are not.
    const std::uint64_t left = stream.size - std::min(stream.size, stream.position);
    const auto wanted = static_cast<std::size_t>(std::min(left, static_cast<std::uint64_t>(count)));
    std::size_t got = 0;
    const int error = ReadUpTo(stream.descriptor, bytes, wanted, stream.position, got);
    stream.Note(error);
    stream.cutShort = stream.cutShort || (error == 0 && got < wanted);
    stream.position += got;
    // Never -1: libtiff clears what is missing after so many bytes, and -1 lies before them all.
    return static_cast<tmsize_t>(got);
}

tmsize_t TiffStream::Write(thandle_t handle, void* bytes, tmsize_t count)
{
    TiffStream& stream = From(handle);
    const auto wanted = static_cast<std::size_t>(count);
    if (stream.IsPipe()) {
        stream.held->Write(stream.position, bytes, wanted);
    } else if (const int error = WriteAllAt(stream.descriptor, bytes, wanted, stream.position);
               error != 0) {
        stream.Note(error);
        return -1;
    }
    stream.position += wanted;
    stream.size = std::max(stream.size, stream.position);
    if (!stream.IsPipe() && stream.size - stream.storing >= storedAtOnce) {
        StartStoring(stream.descriptor, stream.storing, stream.size - stream.storing);
        stream.storing = stream.size;
    }
    return count;
}

toff_t TiffStream::Seek(thandle_t handle, toff_t offset, int from)
{
    TiffStream& stream = From(handle);
    if (from == SEEK_CUR)
        offset += stream.position;
    else if (from == SEEK_END)
        offset += stream.size;
    stream.position = offset;
    return offset;
}

int TiffStream::Map(thandle_t handle, void** start, toff_t* count)
{
    const MappedFile* const mapping = From(handle).mapping;
    if (mapping == nullptr || mapping->Data() == nullptr)
        return 0;
    *start = mapping->Data();
    *count = mapping->Size();
    return 1;
}

void TiffStream::Note(int error)
{
    if (firstError == 0)
        firstError = error;
}

} // namespace zvk::Pelkraft::Client
