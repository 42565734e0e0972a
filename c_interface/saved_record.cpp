#include "c_interface/saved_record.h"

#include "c_interface/failure.h"

#include <algorithm>
#include <cstring>

namespace zvk::Pelkraft {
namespace {

constexpr std::uint64_t headBytes = 16;
constexpr std::uint64_t checkBytes = 4;

// The remainders of the polynomial of CRC-32, which finds every change of up to 32 bits in a row.
constexpr std::array<std::uint32_t, 256> MakeRemainders()
{
    std::array<std::uint32_t, 256> made = {};
    for (std::uint32_t byte = 0; byte != 256; ++byte) {
        std::uint32_t remainder = byte;
        for (int bit = 0; bit != 8; ++bit)
            remainder = remainder >> 1 ^ ((remainder & 1U) != 0 ? 0xEDB88320U : 0U);
        made[byte] = remainder;
    }
    return made;
}

constexpr std::array<std::uint32_t, 256> remainders = MakeRemainders();

std::uint32_t CheckOf(const unsigned char* bytes, std::uint64_t count)
{
    std::uint32_t check = ~0U;
    for (const unsigned char* end = bytes + count; bytes != end; ++bytes)
        check = check >> 8 ^ remainders[(check ^ *bytes) & 0xFFU];
    return ~check;
}

std::uint64_t NumberAt(const unsigned char* bytes, std::uint64_t count)
{
    std::uint64_t number = 0;
    while (count != 0)
        number = number << 8 | bytes[--count];
    return number;
}

void AppendNumber(std::string& text, std::uint64_t number, int bytes)
{
    for (; bytes != 0; --bytes, number >>= 8)
        text.push_back(static_cast<char>(number & 0xFFU));
}

// The bytes of a record with such a content. A damaged one may name any number.
std::int64_t WholeBytes(std::uint64_t contentBytes)
{
    const std::uint64_t limited = static_cast<std::uint64_t>(Limited(contentBytes));
    return Limited(limited + headBytes + checkBytes);
}

Refusal Damaged(const char* why)
{
    return {PLK_BAD_RECORD,
            FieldName("record"),
            0,
            0,
            "record ",
            why,
            "; give all bytes that were saved, unchanged"};
}

} // namespace

void RecordWriter::PutNumber(std::uint64_t number, int bytes)
{
    AppendNumber(content, number, bytes);
}

std::string RecordWriter::Finish() const
{
    std::string record(kind.letters.data(), kind.letters.size());
    AppendNumber(record, kind.version, 4);
    AppendNumber(record, content.size(), 8);
    record += content;
    const auto* bytes = reinterpret_cast<const unsigned char*>(record.data());
    AppendNumber(record, CheckOf(bytes, record.size()), checkBytes);
    return record;
}

RecordReader::RecordReader(const RecordKind& kind, const void* record, std::uint64_t bytes)
{
    if (record == nullptr)
        throw NullRefusal("record");
    if (bytes < headBytes + checkBytes)
        throw Refusal(PLK_BAD_RECORD, FieldName("bytes"), Limited(bytes), headBytes + checkBytes,
                      "bytes is ", bytes, "; a record has ", headBytes + checkBytes, " or more");
    const auto* begin = static_cast<const unsigned char*>(record);
    if (std::memcmp(begin, kind.letters.data(), kind.letters.size()) != 0)
        throw Damaged("does not begin with the letters of its kind");
    const std::uint64_t contentBytes = NumberAt(begin + 8, 8);
    if (contentBytes != bytes - headBytes - checkBytes)
        throw Refusal(PLK_BAD_RECORD, FieldName("bytes"), Limited(bytes), WholeBytes(contentBytes),
                      "bytes is ", bytes, "; the record says that it has ",
                      WholeBytes(contentBytes));
    if (NumberAt(begin + headBytes + contentBytes, checkBytes) !=
        CheckOf(begin, bytes - checkBytes))
        throw Damaged("is damaged");
    const auto version = static_cast<std::uint32_t>(NumberAt(begin + 4, 4));
    if (version == 0)
        throw Damaged("has the version 0, which there is not");
    if (version > kind.version)
        throw Refusal(PLK_TOO_NEW, FieldName("record"), version, kind.version,
                      "record has the version ", version, "; this library knows them up to ",
                      kind.version);
    next = begin + headBytes;
    left = contentBytes;
}

const char* RecordReader::GetBytes(std::uint64_t count)
{
    if (count > left)
        throw Damaged("ends before its content does");
    const auto* bytes = reinterpret_cast<const char*>(next);
    next += count;
    left -= count;
    return bytes;
}

std::uint64_t RecordReader::GetNumber(std::uint64_t bytes)
{
    return NumberAt(reinterpret_cast<const unsigned char*>(GetBytes(bytes)), bytes);
}

void RecordReader::RequireEnd() const
{
    if (left != 0)
        throw Damaged("goes on after its content");
}

void GiveBytes(const char* content, std::uint64_t count, void* buffer, std::uint64_t bytes,
               std::uint64_t* needed)
{
    if (needed != nullptr)
        *needed = count;
    if (bytes < count)
        throw Refusal(PLK_TOO_SMALL, FieldName("bytes"), Limited(bytes), Limited(count),
                      "bytes is ", bytes, "; ", count, " are needed");
    if (buffer == nullptr)
        throw NullRefusal("buffer");
    std::memcpy(buffer, content, static_cast<std::size_t>(count));
}

} // namespace zvk::Pelkraft
