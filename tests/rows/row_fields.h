#pragma once

#include "pelkraft/image_row.h"

#include <cstring>

namespace zvk::Pelkraft::TestSupport {

// A row's memory as its binary interface promises it.
struct RowFields
{
    const void* virtualTable;
    int width;
    int channels;
    int bits;
    bool planar;
    bool ownsData;
    unsigned char* data;
    int dataCapacity;
};
static_assert(sizeof(RowFields) == sizeof(ImageRow));

inline RowFields FieldsOf(const ImageRow& row)
{
    RowFields fields;
    std::memcpy(&fields, static_cast<const void*>(&row), sizeof fields);
    return fields;
}

inline bool operator==(const RowFields& one, const RowFields& other)
{
    return one.virtualTable == other.virtualTable && one.width == other.width &&
           one.channels == other.channels && one.bits == other.bits && one.planar == other.planar &&
           one.ownsData == other.ownsData && one.data == other.data &&
           one.dataCapacity == other.dataCapacity;
}

} // namespace zvk::Pelkraft::TestSupport
