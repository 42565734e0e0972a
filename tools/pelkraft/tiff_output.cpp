#include "tools/pelkraft/tiff_output.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/input_file.h"
#include "tools/pelkraft/system_calls.h"
#include "tools/pelkraft/text_output.h"

namespace zvk::Pelkraft::Client {
namespace {

void CheckPipe(const OutputOptions& options)
{
    if (options.compression.value_or(COMPRESSION_NONE) != COMPRESSION_NONE)
        throw Failure(ExitCode::Usage, OutputName(options.path),
                      "is a pipe, which takes no --compress: where each strip begins is told "
                      "before the first is written");
    RefuseTerminal("a picture");
}

TiffFile OpenPipe(const OutputOptions& options, bool big, int pages)
{
    CheckPipe(options);
    const int descriptor = DuplicateOutput();
    if (descriptor < 0)
        throw Failure(ExitCode::ReadWrite, OutputName(options.path),
                      "cannot be written: " + ErrorText(-descriptor));
    return TiffFile::OpenForSending(descriptor, OutputName(options.path), big, pages);
}

OutputRules RulesFor(const OutputOptions& options)
{
    return {FileKind::Tiff, options.noClobber};
}

TiffFile OpenFile(const OutputOptions& options, std::optional<AtomicOutput>& output, bool big)
{
    output.emplace(options.path, RulesFor(options));
    return TiffFile::OpenForWriting(output->TakeDescriptor(), options.path, big);
}

} // namespace

TiffOutput::TiffOutput(const OutputOptions& options, std::uint64_t sampleBytes, int pages)
    : file(options.IsPipe() ? OpenPipe(options, NeedsBigForm(sampleBytes), pages)
                            : OpenFile(options, output, NeedsBigForm(sampleBytes)))
{}

void TiffOutput::Check(const OutputOptions& options)
{
    if (options.IsPipe())
        CheckPipe(options);
    else
        AtomicOutput::Check(options.path, RulesFor(options));
}

void TiffOutput::Commit()
{
    if (output)
        output->Commit();
    else
        PrintNote(file.Path(), "written, " + ByteWords(file.Size()));
}

} // namespace zvk::Pelkraft::Client
