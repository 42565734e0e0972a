#include "tools/pelkraft/atomic_output.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/system_calls.h"

#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

[[noreturn]] void ThrowWriteFailure(const std::string& path, const std::string& text)
{
    throw Failure(ExitCode::ReadWrite, path, "cannot be written: " + text);
}

} // namespace

AtomicOutput* AtomicOutput::latest = nullptr;

AtomicOutput::AtomicOutput(const std::string& newPath)
    : earlier(latest), shownPath(newPath), targetPath(newPath)
{
    PresentFile present;
    if (const int error = FollowLinks(targetPath); error != 0)
        ThrowWriteFailure(shownPath, ErrorText(error));
    if (const int error = LookAt(targetPath, present); error != 0)
        ThrowWriteFailure(shownPath, ErrorText(error));
    if (present.exists && !present.regular)
        ThrowWriteFailure(shownPath, "it exists and is not a regular file");
    if (!PathOf(targetPath).has_filename())
        ThrowWriteFailure(shownPath, "it names a folder");
    if (const int error = CreateBeside(targetPath, present, descriptor, temporaryPath); error != 0)
        ThrowWriteFailure(shownPath, ErrorText(error));
    latest = this;
}

AtomicOutput::~AtomicOutput()
{
    latest = earlier;
    if (descriptor >= 0)
        Close(descriptor);
    if (!temporaryPath.empty())
        Remove(temporaryPath);
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
    if (const int error = Replace(temporaryPath, targetPath); error != 0)
        ThrowWriteFailure(shownPath, ErrorText(error));
    temporaryPath.clear();
}

void AtomicOutput::RemoveAll() noexcept
{
    for (const AtomicOutput* output = latest; output != nullptr; output = output->earlier) {
        if (!output->temporaryPath.empty())
            Remove(output->temporaryPath);
    }
}

} // namespace zvk::Pelkraft::Client
