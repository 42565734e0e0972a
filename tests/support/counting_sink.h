#pragma once

#include "tests/support/structured_lines.h"
#include "zvk/diagnostics.h"

namespace zvk::Pelkraft::TestSupport {

// Takes the log of the process while it lives, counts the lines that no guard has written, and
// allocates nothing.
class CountingSink final : public Diagnostics::ILogSink
{
public:
    CountingSink() { Diagnostics::Seh::SetDefaultLog(this); }
    ~CountingSink() { Diagnostics::Seh::SetDefaultLog(nullptr); }
    CountingSink(const CountingSink&) = delete;
    CountingSink& operator=(const CountingSink&) = delete;
    void Write(const wchar_t* line) override { lines += IsStructuredLine(line) ? 0 : 1; }

    int lines = 0;
};

} // namespace zvk::Pelkraft::TestSupport
