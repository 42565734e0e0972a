#pragma once

#include "tests/rows/row_fields.h"
#include "tests/support/naive_conversion.h"

#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft::TestSupport {

inline void AppendNumber(Bytes& state, std::uint64_t number)
{
    for (int shift = 0; shift != 64; shift += 8)
        state.push_back(static_cast<unsigned char>(number >> shift));
}

// Appends the fields of a row to what there is already.
inline void AppendFields(Bytes& state, const ImageRow& row)
{
    const RowFields fields = FieldsOf(row);
    for (const int value : {fields.width, fields.channels, fields.bits, fields.planar ? 1 : 0,
                            fields.ownsData ? 1 : 0, fields.dataCapacity})
        AppendNumber(state, static_cast<std::uint64_t>(value));
    AppendNumber(state, reinterpret_cast<std::uintptr_t>(fields.data));
}

} // namespace zvk::Pelkraft::TestSupport
