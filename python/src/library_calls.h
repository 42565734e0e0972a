// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "array_rows.h"
#include "failure.h"

namespace zvk::Pelkraft::Python {

// Runs of fewer bytes keep the interpreter's lock: they are over sooner than another thread would
// have given it back.
constexpr std::uint64_t bytesToUnlock = 32768;

// The handle that make(handle, failure) makes.
template <typename Handle, typename Make>
Handle* MakeHandle(const Make& make)
{
    plk_failure failure = EmptyFailure();
    Handle* handle = nullptr;
    if (make(&handle, &failure) != PLK_OK)
        ThrowFailure(failure);
    return handle;
}

// Calls run(failure), which answers a status, and throws where it fails.
template <typename Body>
void RunUnlocked(const SourceView& source, const TargetView& target, const Body& run)
{
    plk_failure failure = EmptyFailure();
    plk_status status = PLK_OK;
    if (source.rows.bytes + target.rows.bytes < bytesToUnlock) {
        status = run(&failure);
    } else {
        PyThreadState* const thread = PyEval_SaveThread();
        status = run(&failure);
        PyEval_RestoreThread(thread);
    }
    if (status != PLK_OK)
        ThrowRunFailure(failure);
}

// Fetches what the library saves or describes: call(buffer, bytes, needed, failure).
template <typename Call>
std::string Fetch(const Call& call)
{
    plk_failure failure = EmptyFailure();
    std::uint64_t needed = 0;
    std::string buffer;
    plk_status status = call(nullptr, 0, &needed, &failure);
    if (status == PLK_TOO_SMALL) {
        buffer.resize(needed);
        status = call(buffer.data(), needed, &needed, &failure);
    }
    if (status != PLK_OK)
        ThrowFailure(failure);
    return buffer;
}

} // namespace zvk::Pelkraft::Python
