#pragma once

#include <string>

namespace zvk::Pelkraft::TestSupport {

// Leads the process's standard error stream into a file of its own for as long as it lives.
class StandardErrorCapture
{
public:
    StandardErrorCapture();
    ~StandardErrorCapture();
    StandardErrorCapture(const StandardErrorCapture&) = delete;
    StandardErrorCapture& operator=(const StandardErrorCapture&) = delete;

    // All that was written so far.
    [[nodiscard]] std::string Text() const;

private:
    std::string name;
    int file;
    int before;
};

} // namespace zvk::Pelkraft::TestSupport
