#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {

// Calls to the system that go on where they were cut short or interrupted. Each returns 0 or the
// number of the error.

constexpr int standardOutput = 1;
constexpr int standardError = 2;

// Writes all bytes where the file stands, or from offset on.
int WriteAll(int descriptor, const void* bytes, std::size_t size);
int WriteAllAt(int descriptor, const void* bytes, std::size_t size, std::uint64_t offset);

// Reads until all is there or the file ends, and answers how much it got.
int ReadUpTo(int descriptor, void* bytes, std::size_t size, std::uint64_t offset, std::size_t& got);

// Stores a written file and closes it: a system may keep a failure to write until then.
int StoreAndClose(int descriptor);

std::string ErrorText(int error);
// The same for a file that could not be made, whose folder may be missing.
std::string MakingErrorText(int error, const std::string& path);

} // namespace zvk::Pelkraft::Client
