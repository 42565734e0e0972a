#pragma once

#include "pelkraft/image_row.h"

namespace zvk::Pelkraft::TestSupport {

// Answers itself how many bytes it needs.
class OwnSizeRow : public ImageRow
{
public:
    explicit OwnSizeRow(int newBytes) : bytes(newBytes) {}

protected:
    int CalcDataSize() const override { return bytes; }

private:
    int bytes;
};

} // namespace zvk::Pelkraft::TestSupport
