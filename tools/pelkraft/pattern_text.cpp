#include "tools/pelkraft/pattern_text.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr off_t largestText = off_t{1} << 20;

struct Descriptor
{
    int number;
    ~Descriptor()
    {
        if (number >= 0)
            close(number);
    }
};

[[noreturn]] void ThrowReadFailure(const std::string& path, const std::string& text)
{
    throw Failure(ExitCode::ReadWrite, path, "cannot be read: " + text);
}

} // namespace

PatternText PatternText::Load(const std::string& path)
{
    // Without O_NONBLOCK a pipe would be waited for before it can be refused.
    const Descriptor file{open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)};
    struct stat status = {};
    if (file.number < 0 || fstat(file.number, &status) != 0)
        ThrowReadFailure(path, ErrorText(errno));
    if (!S_ISREG(status.st_mode))
        ThrowReadFailure(path, "it is not a regular file");
    if (status.st_size > largestText)
        throw Failure(ExitCode::BadInput, path,
                      "is too large for a pattern text; supported are up to 1 MiB");

    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t got = 0;
    if (const int error = ReadUpTo(file.number, bytes.data(), bytes.size(), 0, got); error != 0)
        ThrowReadFailure(path, ErrorText(error));
    if (got < bytes.size())
        ThrowReadFailure(path, "it has become shorter meanwhile");
    return PatternText(path, bytes);
}

PatternText::PatternText(std::string newPath, const std::string& newBytes)
    : path(std::move(newPath)), bytes(newBytes.substr(0, newBytes.find('\0'))),
      endsAtZero(bytes.size() < newBytes.size()), lines(bytes)
{}

} // namespace zvk::Pelkraft::Client
