#include "tools/pelkraft/spooled_rows.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/system_calls.h"

#include <vector>

namespace zvk::Pelkraft::Client {

SpooledRows::SpooledRows(IRowReader& forward, const TiffPicture& picture, const Spool& spool,
                         const std::string& newPath)
    : path(newPath), rowBytes(static_cast<std::size_t>(picture.RowBytes()))
{
    if (const int error = OpenSpool(spool, descriptor); error != 0)
        ThrowReadFailure(path, "no file can be made to keep its rows: " + ErrorText(error));
    try {
        Keep(forward, picture.height, spool);
    } catch (...) {
        Close(descriptor);
        throw;
    }
}

SpooledRows::~SpooledRows()
{
    Close(descriptor);
}

void SpooledRows::Keep(IRowReader& forward, std::uint32_t height, const Spool& spool)
{
    if (rowBytes > spool.limit / height)
        throw Failure(ExitCode::Unsupported, path,
                      "is compressed in large strips, whose rows take more than the " +
                          std::to_string(spool.limit) +
                          " bytes that may be kept to turn them; --spool-limit allows more");
    std::vector<unsigned char> row(rowBytes);
    for (; rowsLeft < height; ++rowsLeft) {
        StopIfInterrupted(spool.besides);
        forward.ReadRow(row.data());
        if (const int error = WriteAllAt(descriptor, row.data(), rowBytes, rowsLeft * rowBytes);
            error != 0)
            ThrowReadFailure(path, "its rows can't be kept to turn them: " + ErrorText(error));
    }
}

void SpooledRows::ReadRow(unsigned char* row)
{
    --rowsLeft;
    std::size_t got = 0;
    const int error = ReadUpTo(descriptor, row, rowBytes, rowsLeft * rowBytes, got);
    if (error != 0 || got < rowBytes)
        ThrowReadFailure(path, "its rows can't be read again: " + ErrorText(error));
}

} // namespace zvk::Pelkraft::Client
