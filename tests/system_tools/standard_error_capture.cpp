#include "tests/system_tools/standard_error_capture.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include <unistd.h>

namespace zvk::Pelkraft::TestSupport {

StandardErrorCapture::StandardErrorCapture()
{
    std::string name = testing::TempDir() + "standard_error_XXXXXX";
    file = mkstemp(name.data());
    before = dup(STDERR_FILENO);
    if (file < 0 || before < 0 || dup2(file, STDERR_FILENO) < 0)
        std::abort();
    unlink(name.c_str());
}

StandardErrorCapture::~StandardErrorCapture()
{
    dup2(before, STDERR_FILENO);
    close(before);
    close(file);
}

std::string StandardErrorCapture::Text() const
{
    std::string text;
    char part[4096];
    ssize_t count = 0;
    while ((count = pread(file, part, sizeof(part), static_cast<off_t>(text.size()))) > 0)
        text.append(part, static_cast<std::size_t>(count));
    return text;
}

} // namespace zvk::Pelkraft::TestSupport
