#pragma once

#include "tools/pelkraft/row_readers.h"

namespace zvk::Pelkraft::Client {

// Reads all rows of a page once, keeps them in a file, and gives them from the last to the first.
class SpooledRows final : public IRowReader
{
public:
    // path names the page's file in failures.
    SpooledRows(IRowReader& forward, const TiffPicture& picture, const Spool& spool,
                const std::string& newPath);
    ~SpooledRows() override;
    SpooledRows(const SpooledRows&) = delete;
    SpooledRows& operator=(const SpooledRows&) = delete;

    void ReadRow(unsigned char* row) override;

private:
    void Keep(IRowReader& forward, std::uint32_t height, const Spool& spool);

    std::string path;
    std::size_t rowBytes;
    std::uint64_t rowsLeft = 0;
    int descriptor = -1;
};

} // namespace zvk::Pelkraft::Client
