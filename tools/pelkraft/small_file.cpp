#include "tools/pelkraft/small_file.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/input_file.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace zvk::Pelkraft::Client {
namespace {

using namespace std::string_view_literals;

constexpr std::uint64_t largestFile = std::uint64_t{1} << 20;

// A TIFF file begins so, in both byte orders, in the plain format and in that of large files.
constexpr std::string_view pictureStarts[] = {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv};

// A picture is known before its size is complained of.
void RefusePicture(const InputFile& file, const std::string& path, const SmallFile& wanted)
{
    char start[4] = {};
    std::size_t got = 0;
    if (const int error = ReadUpTo(file.Descriptor(), start, sizeof start, 0, got); error != 0)
        ThrowReadFailure(path, ErrorText(error));
    if (std::find(std::begin(pictureStarts), std::end(pictureStarts),
                  std::string_view(start, got)) != std::end(pictureStarts))
        throw Failure(wanted.refusal, path,
                      "is a TIFF picture, and " + wanted.kind + " is expected here" +
                          (wanted.advice.empty() ? "" : "; " + wanted.advice));
}

} // namespace

std::string ReadSmallFile(const std::string& path, const SmallFile& wanted)
{
    const InputFile file(path, FileKind::Text, {{}, largestFile});
    RefusePicture(file, path, wanted);
    if (file.Size() > largestFile)
        throw Failure(ExitCode::BadInput, path,
                      "is too large for " + wanted.kind + "; supported are up to 1 MiB");

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
