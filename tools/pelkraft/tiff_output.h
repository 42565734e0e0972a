#pragma once

#include "tools/pelkraft/atomic_output.h"
#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/tiff_file.h"

#include <cstdint>
#include <optional>

namespace zvk::Pelkraft::Client {

// A TIFF file that is being written: one that appears whole or not at all, or the standard output
// stream, which takes each page's directory before its strips and nothing compressed.
class TiffOutput
{
public:
    // So many pages are to come, with so many bytes of samples in all.
    TiffOutput(const OutputOptions& options, std::uint64_t sampleBytes, int pages = 1);

    // Throws what would keep the constructor from its work, without creating anything.
    static void Check(const OutputOptions& options);

    const TiffFile& File() const { return file; }

    // Stores all that was written, or fails.
    void Finish() { file.Finish(); }
    // Shows the file under its name.
    void Commit();

private:
    std::optional<AtomicOutput> output;
    TiffFile file;
};

} // namespace zvk::Pelkraft::Client
