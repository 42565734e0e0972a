#pragma once

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {

// A regular file that is open to be read, closed at the end of the scope unless somebody takes its
// descriptor.
class InputFile
{
public:
    // Throws the reason if it can't be read.
    explicit InputFile(const std::string& path);
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

// The failure to read a file.
[[noreturn]] void ThrowReadFailure(const std::string& path, const std::string& text);

} // namespace zvk::Pelkraft::Client
