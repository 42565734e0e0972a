#include "tools/pelkraft/file_calls.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace zvk::Pelkraft::Client {
namespace {

// move(done) moves more bytes after those that are done, and answers as read and write do.
template <typename Move>
int MoveOn(std::size_t size, std::size_t& done, Move move)
{
    while (done < size) {
        const ssize_t count = move(done);
        if (count == 0)
            break;
        if (count > 0)
            done += static_cast<std::size_t>(count);
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

// A device that takes nothing without an error is not worth a further try.
int WholeOrFull(int error, std::size_t done, std::size_t size)
{
    return error == 0 && done < size ? ENOSPC : error;
}

} // namespace

int WriteAll(int descriptor, const void* bytes, std::size_t size)
{
    const char* const from = static_cast<const char*>(bytes);
    std::size_t done = 0;
    const int error =
        MoveOn(size, done, [&](std::size_t at) { return write(descriptor, from + at, size - at); });
    return WholeOrFull(error, done, size);
}

int WriteAllAt(int descriptor, const void* bytes, std::size_t size, std::uint64_t offset)
{
    const char* const from = static_cast<const char*>(bytes);
    std::size_t done = 0;
    const int error = MoveOn(size, done, [&](std::size_t at) {
        return pwrite(descriptor, from + at, size - at, static_cast<off_t>(offset + at));
    });
    return WholeOrFull(error, done, size);
}

int ReadUpTo(int descriptor, void* bytes, std::size_t size, std::uint64_t offset, std::size_t& got)
{
    char* const to = static_cast<char*>(bytes);
    got = 0;
    return MoveOn(size, got, [&](std::size_t at) {
        return pread(descriptor, to + at, size - at, static_cast<off_t>(offset + at));
    });
}

int StoreAndClose(int descriptor)
{
    int error = 0;
    do {
        error = fsync(descriptor) == 0 ? 0 : errno;
    } while (error == EINTR);
    // A file system that knows nothing of it is no reason to refuse.
    if (error == EINVAL || error == ENOTSUP || error == ENOSYS)
        error = 0;
    // Interrupted or not, the descriptor is gone, and what was written is stored by now.
    if (close(descriptor) != 0 && error == 0 && errno != EINTR)
        error = errno;
    return error;
}

std::string ErrorText(int error)
{
    return std::strerror(error);
}

} // namespace zvk::Pelkraft::Client
