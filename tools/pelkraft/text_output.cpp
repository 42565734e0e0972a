#include "tools/pelkraft/text_output.h"

#include "tools/pelkraft/atomic_output.h"
#include "tools/pelkraft/failure.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace zvk::Pelkraft::Client {

void WriteWholeFile(const std::string& path, const std::string& bytes)
{
    AtomicOutput output(path);
    std::FILE* const file = fdopen(output.TakeDescriptor(), "wb");
    if (file == nullptr)
        throw Failure(ExitCode::ReadWrite, path, "cannot be written");
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (std::fclose(file) != 0 || !written)
        throw Failure(ExitCode::ReadWrite, path,
                      std::string("cannot be written: ") + std::strerror(errno));
    output.Commit();
}

void PrintText(const std::string& text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        throw Failure(ExitCode::ReadWrite, {},
                      std::string("the standard output can't be written: ") + std::strerror(errno));
}

} // namespace zvk::Pelkraft::Client
