#pragma once

#include "c_interface/failure.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string_view>

// The checks that fields of several records go through.
namespace zvk::Pelkraft {

inline void RequireZero(const FieldName& field, std::int32_t value)
{
    if (value != 0)
        throw Refusal(PLK_TOO_NEW, field, value, 0, field.GetChars().data(), " is ", value,
                      "; this library knows of nothing but 0 there");
}

// One of a few values, of which the first is the simplest.
inline void RequireOneOf(const FieldName& field, std::int32_t value,
                         std::initializer_list<std::int32_t> values, std::string_view words)
{
    if (std::find(values.begin(), values.end(), value) == values.end())
        throw Refusal(PLK_INVALID, field, value, *values.begin(), field.GetChars().data(), " is ",
                      value, "; it must be ", words);
}

inline void RequireRoad(std::int32_t road)
{
    RequireOneOf(FieldName("road"), road, {PLK_ROAD_AUTOMATIC, PLK_ROAD_PORTABLE},
                 "0 (automatic) or 1 (portable)");
}

inline void RequireNotNegative(const FieldName& field, std::int64_t value)
{
    if (value < 0)
        throw Refusal(PLK_INVALID, field, value, 0, field.GetChars().data(), " is ", value,
                      "; it must be 0 or more");
}

} // namespace zvk::Pelkraft
