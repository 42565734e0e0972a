#include "tools/pelkraft/small_file.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/input_file.h"

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::uint64_t largestFile = std::uint64_t{1} << 20;

} // namespace

std::string ReadSmallFile(const std::string& path, const std::string& kind)
{
    const InputFile file(path);
    if (file.Size() > largestFile)
        throw Failure(ExitCode::BadInput, path,
                      "is too large for " + kind + "; supported are up to 1 MiB");

    std::string bytes(static_cast<std::size_t>(file.Size()), '\0');
    std::size_t got = 0;
    if (const int error = ReadUpTo(file.Descriptor(), bytes.data(), bytes.size(), 0, got);
        error != 0)
        ThrowReadFailure(path, ErrorText(error));
    if (got < bytes.size())
        ThrowReadFailure(path, "it has become shorter meanwhile");
    return bytes;
}

} // namespace zvk::Pelkraft::Client
