#pragma once

#include "tools/pelkraft/pattern_report.h"

#include <cstddef>

namespace zvk::Pelkraft::Client {

// The findings about a text that is about to be used on an engine, shown on the standard error
// stream: errors with their lines, and one line for each kind of warning with its count. Findings
// about limits of other engines are left out.
class ShownFindings
{
public:
    ShownFindings(const PatternReport& report, DotWeavePattern::Engine engine);

    // Throws a failure if there were errors.
    void StopAtErrors() const;
    bool HasWarnings() const { return warnings > 0; }

private:
    const PatternText& text;
    std::size_t errors = 0;
    std::size_t warnings = 0;
};

} // namespace zvk::Pelkraft::Client
