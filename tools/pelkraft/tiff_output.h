#pragma once

#include "tools/pelkraft/atomic_output.h"
#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/tiff_file.h"

#include <cstdint>

namespace zvk::Pelkraft::Client {

// A TIFF file that is being written, and appears whole or not at all.
class TiffOutput
{
public:
    // Pages of so many bytes of samples are to come.
    TiffOutput(const OutputOptions& options, std::uint64_t sampleBytes);

    const TiffFile& File() const { return file; }

    // Stores all that was written, or fails.
    void Finish() { file.Finish(); }
    // Shows the file under its name.
    void Commit() { output.Commit(); }

private:
    AtomicOutput output;
    TiffFile file;
};

} // namespace zvk::Pelkraft::Client
