#include "tools/pelkraft/file_calls.h"

#include "tools/pelkraft/system_calls.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace zvk::Pelkraft::Client {
namespace {

// move(done) moves more bytes after those that are done, and answers as ReadAt and Write do.
template <typename Move>
int MoveOn(std::size_t size, std::size_t& done, Move move)
{
    while (done < size) {
        const std::int64_t count = move(done);
        if (count == 0)
            break;
        if (count > 0)
            done += static_cast<std::size_t>(count);
        else if (count != -EINTR)
            return static_cast<int>(-count);
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
        MoveOn(size, done, [&](std::size_t at) { return Write(descriptor, from + at, size - at); });
    return WholeOrFull(error, done, size);
}

int WriteAllAt(int descriptor, const void* bytes, std::size_t size, std::uint64_t offset)
{
    const char* const from = static_cast<const char*>(bytes);
    std::size_t done = 0;
    const int error = MoveOn(size, done, [&](std::size_t at) {
        return WriteAt(descriptor, from + at, size - at, offset + at);
    });
    return WholeOrFull(error, done, size);
}

int ReadUpTo(int descriptor, void* bytes, std::size_t size, std::uint64_t offset, std::size_t& got)
{
    char* const to = static_cast<char*>(bytes);
    got = 0;
    return MoveOn(size, got, [&](std::size_t at) {
        return ReadAt(descriptor, to + at, size - at, offset + at);
    });
}

int StoreAndClose(int descriptor)
{
    int error = 0;
    do {
        error = Store(descriptor);
    } while (error == EINTR);
    // A file system that knows nothing of it is no reason to refuse.
    if (error == EINVAL || error == ENOTSUP || error == ENOSYS)
        error = 0;
    // Interrupted or not, the descriptor is gone, and what was written is stored by now.
    const int closeError = Close(descriptor);
    return error == 0 && closeError != EINTR ? closeError : error;
}

std::string ErrorText(int error)
{
    return std::strerror(error);
}

std::string MakingErrorText(int error, const std::string& path)
{
    const std::filesystem::path folder = PathOf(path).parent_path();
    std::error_code unknown;
    if (error != ENOENT || folder.empty() || std::filesystem::exists(folder, unknown))
        return ErrorText(error);
    const std::u8string name = folder.u8string();
    return "there is no folder " + std::string(name.begin(), name.end()) + "; make it first";
}

} // namespace zvk::Pelkraft::Client
