#include "tools/pelkraft/atomic_output.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/system_calls.h"
#include "tools/pelkraft/text_output.h"

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <system_error>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* keptByNoClobber =
    "it exists, and --no-clobber keeps what exists; name another file, or leave the option out";

[[noreturn]] void ThrowWriteFailure(const std::string& path, const std::string& text)
{
    throw Failure(ExitCode::ReadWrite, path, "cannot be written: " + text);
}

std::string SizeWords(const std::string& path)
{
    std::error_code unknown;
    const std::uintmax_t size = std::filesystem::file_size(PathOf(path), unknown);
    return unknown ? std::string() : ", " + ByteWords(size);
}

} // namespace

AtomicOutput* AtomicOutput::latest = nullptr;

AtomicOutput::AtomicOutput(const std::string& newPath, const OutputRules& newRules)
    : earlier(latest), rules(newRules), shownPath(newPath)
{
    Target target = Find(newPath, rules);
    targetPath = std::move(target.path);
    if (const int error = CreateBeside(targetPath, target.present, descriptor, temporaryPath);
        error != 0)
        ThrowWriteFailure(shownPath, MakingErrorText(error, targetPath));
    latest = this;
}

AtomicOutput::Target AtomicOutput::Find(const std::string& path, const OutputRules& rules)
{
    RefuseOtherEnding(path, rules.kind);
    Target target = {path, {}};
    if (const int error = FollowLinks(target.path); error != 0)
        ThrowWriteFailure(path, ErrorText(error));
    if (const int error = LookAt(target.path, target.present); error != 0)
        ThrowWriteFailure(path, ErrorText(error));
    if (target.present.exists && !target.present.regular)
        ThrowWriteFailure(path, "it exists and is not a regular file");
    if (target.present.exists && rules.kind != FileKind::Any)
        RefuseInput(path, target.present.identity, rules.kind);
    if (!PathOf(target.path).has_filename())
        ThrowWriteFailure(path, "it names a folder");
    if (target.present.exists && rules.noClobber)
        ThrowWriteFailure(path, keptByNoClobber);
    return target;
}

void AtomicOutput::Check(const std::string& path, const OutputRules& rules)
{
    const Target target = Find(path, rules);
    if (const int error = TryBeside(target.path); error != 0)
        ThrowWriteFailure(path, MakingErrorText(error, target.path));
}

AtomicOutput::~AtomicOutput()
{
    AtomicOutput** place = &latest;
    while (*place != this)
        place = &(*place)->earlier;
    *place = earlier;
    if (descriptor >= 0)
        Close(descriptor);
    if (!temporaryPath.empty())
        Remove(temporaryPath);
}

int AtomicOutput::TakeDescriptor()
{
    return std::exchange(descriptor, -1);
}

int AtomicOutput::Append(const void* bytes, std::size_t size) const
{
    return WriteAll(descriptor, bytes, size);
}

void AtomicOutput::Store()
{
    if (const int error = StoreAndClose(TakeDescriptor()); error != 0)
        ThrowWriteFailure(shownPath, ErrorText(error));
}

void AtomicOutput::Write(const std::string& bytes)
{
    if (const int error = Append(bytes.data(), bytes.size()); error != 0)
        ThrowWriteFailure(shownPath, ErrorText(error));
    Store();
}

void AtomicOutput::Commit()
{
    const std::string words = NotesAreWanted() ? SizeWords(temporaryPath) : std::string();
    const int error =
        rules.noClobber ? PlaceNew(temporaryPath, targetPath) : Replace(temporaryPath, targetPath);
    if (rules.noClobber && error == EEXIST)
        ThrowWriteFailure(shownPath, keptByNoClobber);
    if (error != 0)
        ThrowWriteFailure(shownPath, ErrorText(error));
    temporaryPath.clear();
    PrintNote(shownPath, "written" + words);
}

void AtomicOutput::RemoveAll() noexcept
{
    for (const AtomicOutput* output = latest; output != nullptr; output = output->earlier) {
        if (!output->temporaryPath.empty())
            Remove(output->temporaryPath);
    }
}

} // namespace zvk::Pelkraft::Client
