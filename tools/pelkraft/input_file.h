#pragma once

#include "tools/pelkraft/output_rules.h"

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {

// The standard input stream as a path that is read, the standard output stream as one that is
// written.
inline constexpr const char* standardStream = "-";

// The names of an input and of an output for messages. A message about a path that is the stream's
// own is about the input.
std::string InputName(const std::string& path);
std::string OutputName(const std::string& path);

// Tells where a pipe may be kept, and how much of it.
struct Spool
{
    // The file lies in the folder of this path; without a path, in that for temporary files.
    std::string besides;
    std::uint64_t limit = std::uint64_t{16} << 30;
};

// A file that is open to be read, closed at the end of the scope unless somebody takes its
// descriptor. What comes through a pipe is kept in a file without a name first.
class InputFile
{
public:
    // Throws the reason if it can't be read.
    InputFile(const std::string& path, FileKind kind, const Spool& spool = {});
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    int Descriptor() const { return descriptor; }
    int TakeDescriptor();
    // Bytes of the file at the time of opening.
    std::uint64_t Size() const { return size; }

private:
    int descriptor = -1;
    std::uint64_t size = 0;
};

// Creates a file without a name. Answers 0 or the number of the error.
int OpenSpool(const Spool& spool, int& descriptor);

// The failure to read a file.
[[noreturn]] void ThrowReadFailure(const std::string& path, const std::string& text);

} // namespace zvk::Pelkraft::Client
