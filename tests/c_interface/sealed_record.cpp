#include "tests/c_interface/sealed_record.h"

namespace zvk::Pelkraft::TestSupport {
namespace {

// Bit by bit from the definition of CRC-32.
std::uint32_t NaiveCheck(const Bytes& bytes)
{
    std::uint32_t rest = 0xFFFFFFFF;
    for (std::size_t bit = 0; bit != 8 * bytes.size(); ++bit) {
        const std::uint32_t top = rest % 2 ^ (bytes[bit / 8] >> bit % 8) % 2U;
        rest = rest / 2 ^ (top != 0 ? 0xEDB88320 : 0);
    }
    return ~rest;
}

} // namespace

void AppendNumber(Bytes& bytes, std::uint64_t number, int count)
{
    for (; count != 0; --count, number /= 256)
        bytes.push_back(static_cast<unsigned char>(number % 256));
}

Bytes Sealed(Bytes record)
{
    AppendNumber(record, NaiveCheck(record), 4);
    return record;
}

Bytes SealedRecord(const Bytes& letters, std::uint32_t version, const Bytes& content)
{
    Bytes record = letters;
    AppendNumber(record, version, 4);
    AppendNumber(record, content.size(), 8);
    record.insert(record.end(), content.begin(), content.end());
    return Sealed(record);
}

} // namespace zvk::Pelkraft::TestSupport
