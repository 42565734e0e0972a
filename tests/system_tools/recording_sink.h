#pragma once

#include "zvk/diagnostics.h"

#include <mutex>
#include <string>
#include <vector>

namespace zvk::Diagnostics {

// Keeps the lines that it is given, from any thread.
class RecordingSink final : public ILogSink
{
public:
    void Write(const wchar_t* line) override
    {
        const std::lock_guard<std::mutex> lock(mutex);
        recorded.emplace_back(line);
    }

    std::vector<std::wstring> Lines() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return recorded;
    }

private:
    mutable std::mutex mutex;
    std::vector<std::wstring> recorded;
};

} // namespace zvk::Diagnostics
