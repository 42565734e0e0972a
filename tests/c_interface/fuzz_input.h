#pragma once

#include "pelkraft/plan.h"
#include "tests/support/naive_rows.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>

// The ways in which trials are taken from any bytes. No check of a test is in here.
namespace zvk::Pelkraft::TestSupport {

// Takes numbers from the input; after its end all are 0.
class InputNumbers
{
public:
    InputNumbers(const std::uint8_t* newBytes, std::size_t newCount)
        : bytes(newBytes), count(newCount)
    {}

    int Next(int limit) { return Byte() % limit; }
    int Signed(int limit) { return Next(2 * limit + 1) - limit; }

    template <typename Record>
    void Fill(Record& record)
    {
        std::array<unsigned char, sizeof(Record)> content;
        std::generate(content.begin(), content.end(), [&] { return Byte(); });
        std::memcpy(&record, content.data(), content.size());
    }

    Bytes Rest() const { return Bytes(bytes, bytes + count); }

private:
    unsigned char Byte()
    {
        if (count == 0)
            return 0;
        --count;
        return *bytes++;
    }

    const std::uint8_t* bytes;
    std::size_t count;
};

// The strides of dense rows, now and then with a little more or less.
NaivePlacement TakePlacement(InputNumbers& numbers, const NaiveGeometry& form, int size);

// Says whether a refusal names nothing.
std::string CheckRefused(plk_status status, const plk_failure& failure);

} // namespace zvk::Pelkraft::TestSupport
