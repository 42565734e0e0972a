#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace zvk::Pelkraft {

// A saved record, the same on every machine: four letters that say what it is, the version, the
// bytes of the content, the content, and a check of all that. Numbers have their low byte first.
// Later versions keep this frame.
struct RecordKind
{
    std::array<char, 4> letters;
    std::uint32_t version;
};

class RecordWriter
{
public:
    explicit RecordWriter(const RecordKind& newKind) : kind(newKind) {}

    void Put(std::uint32_t number) { PutNumber(number, 4); }
    void Put(std::int32_t number) { Put(static_cast<std::uint32_t>(number)); }
    void Put(std::uint64_t number) { PutNumber(number, 8); }
    void Put(std::int64_t number) { Put(static_cast<std::uint64_t>(number)); }
    void PutBytes(const char* bytes, std::size_t count) { content.append(bytes, count); }

    // The whole record.
    std::string Finish() const;

private:
    void PutNumber(std::uint64_t number, int bytes);

    RecordKind kind;
    std::string content;
};

// Takes a record apart. Damage is refused as PLK_BAD_RECORD, a later version as PLK_TOO_NEW.
class RecordReader
{
public:
    RecordReader(const RecordKind& kind, const void* record, std::uint64_t bytes);

    std::uint32_t Get32() { return static_cast<std::uint32_t>(GetNumber(4)); }
    std::int32_t GetSigned32() { return static_cast<std::int32_t>(Get32()); }
    std::uint64_t Get64() { return GetNumber(8); }
    std::int64_t GetSigned64() { return static_cast<std::int64_t>(Get64()); }
    // The bytes stay the caller's.
    const char* GetBytes(std::uint64_t count);
    std::uint64_t CountLeft() const { return left; }
    // The content must end here.
    void RequireEnd() const;

private:
    std::uint64_t GetNumber(std::uint64_t bytes);

    const unsigned char* next;
    std::uint64_t left;
};

// Gives the caller a text or a record. `needed`, which may be null, is set to its bytes. Too few
// bytes are refused as PLK_TOO_SMALL and left as they are.
void GiveBytes(const char* content, std::uint64_t count, void* buffer, std::uint64_t bytes,
               std::uint64_t* needed);

} // namespace zvk::Pelkraft
