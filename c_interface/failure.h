#pragma once

#include "c_interface/fixed_text.h"
#include "pelkraft/plan.h"

#include <cstdint>
#include <limits>

namespace zvk::Pelkraft {

using FieldName = FixedText<sizeof(plk_failure::field)>;

// Thrown inside the C interface, where the border turns it into a status and a record.
struct Refusal
{
    // The sentence is made of texts and numbers, one after the other. Given and needed are 0 where
    // there is no number to name.
    template <typename... Part>
    Refusal(plk_status newStatus, const FieldName& newField, std::int64_t newGiven,
            std::int64_t newNeeded, const Part&... part)
        : status(newStatus), field(newField), given(newGiven), needed(newNeeded), text(part...)
    {}

    plk_status status;
    FieldName field;
    std::int64_t given;
    std::int64_t needed;
    // The place in a text, both counted from 1.
    std::uint32_t line = 0;
    std::uint32_t column = 0;
    FixedText<sizeof(plk_failure::text)> text;
};

// A number of a failure's record, which has 63 bits.
constexpr std::int64_t Limited(std::uint64_t number)
{
    constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    return number < static_cast<std::uint64_t>(largest) ? static_cast<std::int64_t>(number)
                                                        : largest;
}

// A required pointer that is null.
Refusal NullRefusal(const char* field);

// Describes the exception that is being handled in the caller's record, as far as that one goes,
// and answers its status. Without a record, or with one too short for its size, nothing is written.
plk_status ReportCaught(plk_failure* failure) noexcept;

} // namespace zvk::Pelkraft
