#include "tools/pelkraft/system_calls.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

std::int64_t Moved(ssize_t count)
{
    return count < 0 ? -errno : count;
}

FileIdentity IdentityOf(const struct stat& status)
{
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

int Describe(OpenedFile& file)
{
    struct stat status = {};
    if (file.descriptor < 0 || fstat(file.descriptor, &status) != 0)
        return errno;
    file.regular = S_ISREG(status.st_mode);
    file.pipe = S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode);
    file.terminal = isatty(file.descriptor) != 0;
    file.size = static_cast<std::uint64_t>(status.st_size);
    file.identity = IdentityOf(status);
    return 0;
}

// The mode that a plain creation of the file would have had, or that of the file it replaces.
mode_t ModeBeside(const PresentFile& present)
{
    if (present.exists)
        return present.mode;
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

} // namespace

std::int64_t ReadAt(int descriptor, void* bytes, std::size_t size, std::uint64_t offset)
{
    return Moved(pread(descriptor, bytes, size, static_cast<off_t>(offset)));
}

std::int64_t Write(int descriptor, const void* bytes, std::size_t size)
{
    return Moved(write(descriptor, bytes, size));
}

std::int64_t WriteAt(int descriptor, const void* bytes, std::size_t size, std::uint64_t offset)
{
    return Moved(pwrite(descriptor, bytes, size, static_cast<off_t>(offset)));
}

void StartStoring(int descriptor, std::uint64_t offset, std::uint64_t count)
{
#ifdef __linux__
    // A failure comes again when the file is stored.
    static_cast<void>(sync_file_range(descriptor, static_cast<off_t>(offset),
                                      static_cast<off_t>(count), SYNC_FILE_RANGE_WRITE));
#else
    static_cast<void>(descriptor);
    static_cast<void>(offset);
    static_cast<void>(count);
#endif
}

int Store(int descriptor)
{
    return fsync(descriptor) == 0 ? 0 : errno;
}

int Close(int descriptor)
{
    return close(descriptor) == 0 ? 0 : errno;
}

int OpenToRead(const std::string& path, OpenedFile& file)
{
    // Without O_NONBLOCK the wait for whoever writes to a pipe could not be interrupted.
    file.descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    return Describe(file);
}

int OpenStandardInput(OpenedFile& file)
{
    file.descriptor = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (const int error = Describe(file); error != 0)
        return error;
    if (file.regular && lseek(file.descriptor, 0, SEEK_CUR) != 0) {
        file.regular = false;
        file.pipe = true;
    }
    return 0;
}

std::int64_t ReadNext(int descriptor, void* bytes, std::size_t size)
{
    pollfd wait = {descriptor, POLLIN, 0};
    // Other than a read, a wait is never begun again after a signal.
    if (poll(&wait, 1, -1) < 0)
        return -errno;
    return Moved(read(descriptor, bytes, size));
}

int DuplicateOutput()
{
    const int descriptor = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    return descriptor < 0 ? -errno : descriptor;
}

bool OutputIsSeen()
{
    return isatty(STDOUT_FILENO) != 0;
}

int CreateSpool(const std::string& folder, int& descriptor)
{
    std::error_code error;
    std::filesystem::path place = folder;
    if (folder.empty())
        place = std::filesystem::temp_directory_path(error);
    if (error)
        return error.value();
    std::string pattern = (place / ".pelkraft-XXXXXX").string();
    descriptor = mkostemp(pattern.data(), O_CLOEXEC);
    if (descriptor < 0)
        return errno;
    unlink(pattern.c_str());
    return 0;
}

int FollowLinks(std::string& path)
{
    std::filesystem::path followed = path;
    for (int step = 0;; ++step) {
        struct stat status = {};
        // Not to know what is there is a failure, since it would be replaced.
        if (lstat(followed.c_str(), &status) != 0 && errno != ENOENT)
            return errno;
        if (!S_ISLNK(status.st_mode))
            break;
        // The kernel follows as many; a longer way is a circle.
        if (step == 40)
            return ELOOP;
        std::error_code error;
        const auto next = std::filesystem::read_symlink(followed, error);
        if (error)
            return error.value();
        followed = followed.parent_path() / next;
    }
    path = followed.string();
    return 0;
}

int LookAt(const std::string& path, PresentFile& present)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0)
        return errno == ENOENT ? 0 : errno;
    present.exists = true;
    present.regular = S_ISREG(status.st_mode);
    present.mode = status.st_mode & 0777;
    present.identity = IdentityOf(status);
    return 0;
}

int CreateBeside(const std::string& targetPath, const PresentFile& present, int& descriptor,
                 std::string& newPath)
{
    const std::filesystem::path target = targetPath;
    std::string pattern = (target.parent_path() / ".pelkraft-XXXXXX").string();
    descriptor = mkostemp(pattern.data(), O_CLOEXEC);
    if (descriptor < 0)
        return errno;
    newPath = std::move(pattern);
    // A file system without modes is no reason to refuse.
    [[maybe_unused]] const int ignored = fchmod(descriptor, ModeBeside(present));
    return 0;
}

int TryBeside(const std::string& targetPath)
{
    const std::filesystem::path folder = std::filesystem::path(targetPath).parent_path();
    return access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) == 0 ? 0 : errno;
}

int Replace(const std::string& path, const std::string& targetPath)
{
    return std::rename(path.c_str(), targetPath.c_str()) == 0 ? 0 : errno;
}

int PlaceNew(const std::string& path, const std::string& targetPath)
{
    if (link(path.c_str(), targetPath.c_str()) == 0) {
        Remove(path);
        return 0;
    }
    if (errno == EEXIST)
        return EEXIST;
    // A file system without hard links is no reason to refuse.
    PresentFile present;
    const int error = LookAt(targetPath, present);
    if (error != 0 || present.exists)
        return error != 0 ? error : EEXIST;
    return Replace(path, targetPath);
}

void Remove(const std::string& path) noexcept
{
    unlink(path.c_str());
}

} // namespace zvk::Pelkraft::Client
