#include "tools/pelkraft/tiff_output.h"

namespace zvk::Pelkraft::Client {

TiffOutput::TiffOutput(const OutputOptions& options, std::uint64_t sampleBytes)
    : output(options.path, {FileKind::Tiff, options.noClobber}),
      file(TiffFile::OpenForWriting(output.TakeDescriptor(), options.path,
                                    NeedsBigForm(sampleBytes)))
{}

} // namespace zvk::Pelkraft::Client
