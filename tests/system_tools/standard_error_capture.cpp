#include "tests/system_tools/standard_error_capture.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include <unistd.h>

namespace zvk::Pelkraft::TestSupport {

StandardErrorCapture::StandardErrorCapture()
    : name(testing::TempDir() + "standard_error_XXXXXX"), file(mkstemp(name.data())),
      before(dup(STDERR_FILENO))
{
    if (file < 0 || before < 0 || dup2(file, STDERR_FILENO) < 0)
        std::abort();
}

StandardErrorCapture::~StandardErrorCapture()
{
    dup2(before, STDERR_FILENO);
    close(before);
    close(file);
    // Only now: a file that is open can't be removed everywhere.
    unlink(name.c_str());
}

std::string StandardErrorCapture::Text() const
{
    std::string text;
    char part[4096];
    // The stream goes on where the reading stops, which is the end of the file.
    lseek(file, 0, SEEK_SET);
    for (auto count = read(file, part, sizeof(part)); count > 0;
         count = read(file, part, sizeof(part)))
        text.append(part, static_cast<std::size_t>(count));
    return text;
}

} // namespace zvk::Pelkraft::TestSupport
