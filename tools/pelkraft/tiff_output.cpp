#include "tools/pelkraft/tiff_output.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/system_calls.h"

namespace zvk::Pelkraft::Client {
namespace {

TiffFile OpenPipe(const OutputOptions& options, bool big, int pages)
{
    if (options.compression.value_or(COMPRESSION_NONE) != COMPRESSION_NONE)
        throw Failure(ExitCode::Usage, options.path,
                      "is a pipe, which takes no --compress: where each strip begins is told "
                      "before the first is written");
    if (OutputIsSeen())
        throw Failure(ExitCode::Usage, options.path,
                      "is a terminal; a picture goes to a file or into a pipe");
    const int descriptor = DuplicateOutput();
    if (descriptor < 0)
        throw Failure(ExitCode::ReadWrite, options.path,
                      "cannot be written: " + ErrorText(-descriptor));
    return TiffFile::OpenForSending(descriptor, options.path, big, pages);
}

TiffFile OpenFile(const OutputOptions& options, std::optional<AtomicOutput>& output, bool big)
{
    output.emplace(options.path);
    return TiffFile::OpenForWriting(output->TakeDescriptor(), options.path, big);
}

} // namespace

TiffOutput::TiffOutput(const OutputOptions& options, std::uint64_t sampleBytes, int pages)
    : file(options.IsPipe() ? OpenPipe(options, NeedsBigForm(sampleBytes), pages)
                            : OpenFile(options, output, NeedsBigForm(sampleBytes)))
{}

void TiffOutput::Commit()
{
    if (output)
        output->Commit();
}

} // namespace zvk::Pelkraft::Client
