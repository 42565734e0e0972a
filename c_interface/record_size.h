#pragma once

#include "c_interface/failure.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zvk::Pelkraft {

// A caller's record may have another size than this header's, since it may be of another header.
// No header has a record of more bytes than this: its size is a number that was never set.
inline constexpr std::uint32_t largestRecord = 4096;

// The ends of a record's fields, ascending. A field that a record's size cuts through counts as one
// that it lacks.
template <typename Record>
struct FieldEnds;

#define PELKRAFT_FIELD_END(Record, field)                                                          \
    static_cast<std::uint32_t>(offsetof(Record, field) + sizeof(Record::field))

// The bytes of a record of this size that belong to whole fields that this library knows.
template <typename Record>
std::uint32_t KnownBytes(std::uint32_t size)
{
    std::uint32_t known = 0;
    for (const std::uint32_t end : FieldEnds<Record>::ends)
        if (end <= size)
            known = end;
    return known;
}

// Refuses a size that is none, and bytes after the known fields that are not 0. The name is that of
// the argument, such as "spec".
template <typename Record>
void RequireKnown(const Record* record, const char* name)
{
    if (record == nullptr)
        throw NullRefusal(name);
    const std::uint32_t size = record->size;
    if (size == sizeof(Record))
        return;
    if (size < sizeof record->size || size > largestRecord)
        throw Refusal(PLK_INVALID, FieldName(name, ".size"), size, sizeof(Record), name,
                      ".size is ", size, "; set it to sizeof the record, which is ",
                      std::uint64_t{sizeof(Record)});
    if (size < sizeof(Record))
        return;
    const auto* bytes = reinterpret_cast<const unsigned char*>(record);
    const auto* end = bytes + size;
    if (std::find_if(bytes + sizeof(Record), end, [](unsigned byte) { return byte != 0; }) != end)
        throw Refusal(PLK_TOO_NEW, FieldName(name, ".size"), size, sizeof(Record), name,
                      ".size is ", size, ", and what this library does not know of it, after byte ",
                      std::uint64_t{sizeof(Record)}, ", is not 0; leave it 0");
}

// The caller's record as one of this header.
template <typename Record>
Record ReadRecord(const Record* given, const char* name)
{
    RequireKnown(given, name);
    Record record = {};
    std::memcpy(&record, given, KnownBytes<Record>(given->size));
    return record;
}

// Fills the caller's record, whose size it keeps. RequireKnown has accepted it.
template <typename Record>
void WriteRecord(Record* given, Record record)
{
    record.size = given->size;
    std::memcpy(given, &record, KnownBytes<Record>(given->size));
}

} // namespace zvk::Pelkraft
