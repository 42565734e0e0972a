#pragma once

#include "zvk/diagnostics.h"

namespace zvk::Pelkraft::TestSupport {

// Takes the log of the process while it lives, counts its lines and allocates nothing.
class CountingSink final : public Diagnostics::ILogSink
{
public:
    CountingSink() { Diagnostics::Seh::SetDefaultLog(this); }
    ~CountingSink() { Diagnostics::Seh::SetDefaultLog(nullptr); }
    CountingSink(const CountingSink&) = delete;
    CountingSink& operator=(const CountingSink&) = delete;
    void Write(const wchar_t*) override { ++lines; }

    int lines = 0;
};

} // namespace zvk::Pelkraft::TestSupport
