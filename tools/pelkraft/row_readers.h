#pragma once

#include "tools/pelkraft/tiff_picture.h"

#include <cstdint>
#include <memory>

namespace zvk::Pelkraft::Client {

// Gives the rows of a page one after the other, whatever the file is cut into. A row has the
// picture's RowBytes(). Failures are those of a damaged file.
class IRowReader
{
public:
    virtual ~IRowReader() = default;
    virtual void ReadRow(unsigned char* row) = 0;
    // The next rows, each right after the one before.
    virtual void ReadRows(unsigned char* rows, std::uint32_t count, std::int64_t rowBytes);
};

// Tells in which order rows are read, and by how many readers side by side, which share the memory
// for strips.
struct RowOrder
{
    // From the last to the first.
    bool flip = false;
    // Decoders of large strips know one way alone, so that their rows are kept here.
    Spool spool;
    int readers = 1;
};

// A reader for the page at which the file stands; the file must stay there while it is used.
std::unique_ptr<IRowReader> OpenRows(const TiffFile& file, const TiffPicture& picture,
                                     const RowOrder& order = {});

} // namespace zvk::Pelkraft::Client
