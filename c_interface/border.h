#pragma once

#include "c_interface/failure.h"

namespace zvk::Pelkraft {

// Runs the body of an exported function. Whatever it throws becomes a status.
template <typename Body>
plk_status AtBorder(plk_failure* failure, const Body& body) noexcept
{
    try {
        body();
        return PLK_OK;
    } catch (...) {
        return ReportCaught(failure);
    }
}

// The same for a function that makes a handle of what the body returns, a std::unique_ptr.
template <typename Handle, typename Body>
plk_status MakeAtBorder(const char* name, Handle** handle, plk_failure* failure, const Body& body)
{
    return AtBorder(failure, [&] {
        if (handle == nullptr)
            throw NullRefusal(name);
        *handle = nullptr;
        *handle = body().release();
    });
}

} // namespace zvk::Pelkraft
