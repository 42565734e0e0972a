#include "tools/pelkraft/input_file.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/system_calls.h"
#include "tools/pelkraft/text_output.h"

#include <cerrno>
#include <utility>
#include <vector>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::size_t pieceBytes = std::size_t{1} << 20;

// A descriptor that is closed at the end of the scope.
struct OpenDescriptor
{
    explicit OpenDescriptor(int newDescriptor) : descriptor(newDescriptor) {}
    ~OpenDescriptor()
    {
        if (descriptor >= 0)
            Close(descriptor);
    }
    OpenDescriptor(const OpenDescriptor&) = delete;
    OpenDescriptor& operator=(const OpenDescriptor&) = delete;

    int descriptor;
};

int OpenPipeSpool(const std::string& path, const Spool& spool)
{
    int descriptor = -1;
    const int error = OpenSpool(spool, descriptor);
    // The output's folder is to hold the file.
    if (error == ENOENT && !spool.besides.empty() && spool.besides != standardStream)
        throw Failure(ExitCode::ReadWrite, spool.besides,
                      "cannot be written: " + MakingErrorText(error, spool.besides));
    if (error != 0)
        ThrowReadFailure(path, "no file can be made to keep what comes through the pipe: " +
                                   ErrorText(error));
    return descriptor;
}

// The next bytes of a pipe; none at its end.
std::size_t ReadPiece(int pipe, std::vector<char>& piece, const std::string& path)
{
    for (;;) {
        const std::int64_t count = ReadNext(pipe, piece.data(), piece.size());
        StopIfInterrupted(InputName(path));
        if (count >= 0)
            return static_cast<std::size_t>(count);
        if (count != -EINTR && count != -EAGAIN)
            ThrowReadFailure(path, ErrorText(static_cast<int>(-count)));
    }
}

// Copies a pipe into a file, and answers its size.
std::uint64_t CopyPipe(int pipe, int file, const std::string& path, std::uint64_t limit)
{
    std::vector<char> piece(pieceBytes);
    std::uint64_t size = 0;
    while (const std::size_t count = ReadPiece(pipe, piece, path)) {
        if (count > limit - size)
            throw Failure(ExitCode::Unsupported, path,
                          "gives more than the " + std::to_string(limit) +
                              " bytes that a pipe may; --spool-limit allows more");
        if (const int error = WriteAllAt(file, piece.data(), count, size); error != 0)
            ThrowReadFailure(path,
                             "what comes through the pipe can't be kept: " + ErrorText(error));
        size += count;
    }
    return size;
}

} // namespace

std::string InputName(const std::string& path)
{
    return path == standardStream ? "standard input" : path;
}

std::string OutputName(const std::string& path)
{
    return path == standardStream ? "standard output" : path;
}

InputFile::InputFile(const std::string& path, FileKind kind, const Spool& spool)
{
    OpenedFile file;
    const int error = path == standardStream ? OpenStandardInput(file) : OpenToRead(path, file);
    OpenDescriptor opened(file.descriptor);
    if (error != 0)
        ThrowReadFailure(path, ErrorText(error));
    if (!file.regular && !file.pipe)
        ThrowReadFailure(path, file.terminal ? "it is a terminal, and no regular file or pipe"
                                             : "it is not a regular file or a pipe");
    if (file.regular)
        NoteInput(file.identity, kind);
    size = file.size;
    if (file.pipe) {
        OpenDescriptor kept(OpenPipeSpool(path, spool));
        size = CopyPipe(opened.descriptor, kept.descriptor, path, spool.limit);
        std::swap(opened.descriptor, kept.descriptor);
    }
    descriptor = std::exchange(opened.descriptor, -1);
    PrintNote(path, "opened, " + ByteWords(size) + (file.pipe ? " through a pipe" : ""));
}

InputFile::~InputFile()
{
    if (descriptor >= 0)
        Close(descriptor);
}

int InputFile::TakeDescriptor()
{
    return std::exchange(descriptor, -1);
}

int OpenSpool(const Spool& spool, int& descriptor)
{
    std::string folder;
    if (!spool.besides.empty() && spool.besides != standardStream) {
        const std::filesystem::path parent = PathOf(spool.besides).parent_path();
        const std::u8string text = parent.empty() ? u8"." : parent.u8string();
        folder.assign(text.begin(), text.end());
    }
    return CreateSpool(folder, descriptor);
}

void ThrowReadFailure(const std::string& path, const std::string& text)
{
    throw Failure(ExitCode::ReadWrite, path, "cannot be read: " + text);
}

} // namespace zvk::Pelkraft::Client
