// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pelkraft/plan.h"

#include <string>

namespace zvk::Pelkraft::Python {

// Throws what becomes a PelkraftError with the record's fields, or a MemoryError.
[[noreturn]] void ThrowFailure(const plk_failure& failure);

// The same for a failed run, in whose words the target is an array called out.
[[noreturn]] void ThrowRunFailure(plk_failure failure);

// Refuses an argument before the library has seen it.
[[noreturn]] void ThrowInvalid(const char* field, const std::string& text, std::int64_t given = 0,
                               std::int64_t needed = 0);

// Throws a TypeError.
[[noreturn]] void ThrowTypeError(const std::string& text);

inline plk_failure EmptyFailure()
{
    plk_failure failure = {};
    failure.size = sizeof failure;
    return failure;
}

} // namespace zvk::Pelkraft::Python
