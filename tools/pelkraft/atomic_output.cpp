#include "tools/pelkraft/atomic_output.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

[[noreturn]] void ThrowWriteFailure(const std::string& path, const std::string& text)
{
    throw Failure(ExitCode::ReadWrite, path, "cannot be written: " + text);
}

// True if something was there to look at. Not to know it is a failure, since whatever is there
// would be replaced.
bool IsThere(int lookResult, const std::string& shownPath)
{
    if (lookResult != 0 && errno != ENOENT)
        ThrowWriteFailure(shownPath, ErrorText(errno));
    return lookResult == 0;
}

bool IsLink(const std::string& shownPath, const std::string& path)
{
    struct stat status = {};
    return IsThere(lstat(path.c_str(), &status), shownPath) && S_ISLNK(status.st_mode);
}

std::string FollowLinks(const std::string& path)
{
    std::error_code error;
    std::filesystem::path followed = path;
    // The kernel follows as many; a longer way is a circle.
    for (int step = 0; IsLink(path, followed); ++step) {
        if (step == 40)
            ThrowWriteFailure(path, ErrorText(ELOOP));
        const auto next = std::filesystem::read_symlink(followed, error);
        if (error)
            ThrowWriteFailure(path, error.message());
        followed = followed.parent_path() / next;
    }
    return followed.string();
}

// The mode that a plain creation of the file would have had, or that of the file it replaces.
mode_t ModeOf(const struct stat* present)
{
    if (present != nullptr)
        return present->st_mode & 0777;
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

} // namespace

AtomicOutput* AtomicOutput::latest = nullptr;

AtomicOutput::AtomicOutput(const std::string& newPath)
    : earlier(latest), shownPath(newPath), targetPath(FollowLinks(newPath))
{
    struct stat present = {};
    const bool exists = IsThere(stat(targetPath.c_str(), &present), shownPath);
    if (exists && !S_ISREG(present.st_mode))
        ThrowWriteFailure(shownPath, "it exists and is not a regular file");

    const std::filesystem::path target = targetPath;
    if (!target.has_filename())
        ThrowWriteFailure(shownPath, "it names a folder");
    std::string pattern = (target.parent_path() / ".pelkraft-XXXXXX").string();
    descriptor = mkostemp(pattern.data(), O_CLOEXEC);
    if (descriptor < 0)
        ThrowWriteFailure(shownPath, ErrorText(errno));
    temporaryPath = std::move(pattern);
    latest = this;
    // A file system without modes is no reason to refuse.
    [[maybe_unused]] const int ignored = fchmod(descriptor, ModeOf(exists ? &present : nullptr));
}

AtomicOutput::~AtomicOutput()
{
    latest = earlier;
    if (descriptor >= 0)
        close(descriptor);
    if (!temporaryPath.empty())
        unlink(temporaryPath.c_str());
}

int AtomicOutput::TakeDescriptor()
{
    return std::exchange(descriptor, -1);
}

void AtomicOutput::Write(const std::string& bytes)
{
    int error = WriteAll(descriptor, bytes.data(), bytes.size());
    const int storeError = StoreAndClose(TakeDescriptor());
    error = error != 0 ? error : storeError;
    if (error != 0)
        ThrowWriteFailure(shownPath, ErrorText(error));
}

void AtomicOutput::Commit()
{
    if (std::rename(temporaryPath.c_str(), targetPath.c_str()) != 0)
        ThrowWriteFailure(shownPath, ErrorText(errno));
    temporaryPath.clear();
}

void AtomicOutput::RemoveAll() noexcept
{
    for (const AtomicOutput* output = latest; output != nullptr; output = output->earlier) {
        if (!output->temporaryPath.empty())
            unlink(output->temporaryPath.c_str());
    }
}

} // namespace zvk::Pelkraft::Client
