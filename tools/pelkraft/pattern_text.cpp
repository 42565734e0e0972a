#include "tools/pelkraft/pattern_text.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
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

bool IsContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
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
    return PatternText(path, std::move(bytes));
}

PatternText::PatternText(std::string newPath, std::string newBytes)
    : path(std::move(newPath)), bytes(std::move(newBytes))
{
    const std::size_t zero = bytes.find('\0');
    endsAtZero = zero != std::string::npos;
    if (endsAtZero)
        bytes.resize(zero);

    lineStarts.push_back(0);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        // A carriage return ends a line of its own, unless the line feed behind it does.
        const bool pair = bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n';
        if (bytes[i] == '\n' || (bytes[i] == '\r' && !pair))
            lineStarts.push_back(i + 1);
    }
}

TextPlace PatternText::PlaceOf(std::size_t offset) const
{
    const std::size_t clamped = std::min(offset, bytes.size());
    const auto next = std::upper_bound(lineStarts.begin(), lineStarts.end(), clamped);
    TextPlace place;
    place.line = static_cast<int>(next - lineStarts.begin());
    const auto from = bytes.begin() + static_cast<std::ptrdiff_t>(*(next - 1));
    const auto to = bytes.begin() + static_cast<std::ptrdiff_t>(clamped);
    place.column +=
        static_cast<int>(std::count_if(from, to, [](char b) { return !IsContinuation(b); }));
    return place;
}

std::string_view PatternText::Line(int number) const
{
    const std::size_t start = lineStarts[static_cast<std::size_t>(number - 1)];
    const std::size_t end = std::min(bytes.find_first_of("\r\n", start), bytes.size());
    return std::string_view(bytes).substr(start, end - start);
}

} // namespace zvk::Pelkraft::Client
