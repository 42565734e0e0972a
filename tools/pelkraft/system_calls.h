#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace zvk::Pelkraft::Client {

// The calls for files that each system has in its own way. Where nothing else is said they return
// 0 or the number of the error, as errno has it. Paths are in UTF-8 on Windows.

inline std::filesystem::path PathOf(const std::string& text)
{
    return std::u8string(text.begin(), text.end());
}

// One try each, which may move less than all: the bytes moved, or the number of the error below 0.
std::int64_t ReadAt(int descriptor, void* bytes, std::size_t size, std::uint64_t offset);
std::int64_t Write(int descriptor, const void* bytes, std::size_t size);
std::int64_t WriteAt(int descriptor, const void* bytes, std::size_t size, std::uint64_t offset);

// Has the system begin with sending these bytes of a file to the disk, where it can be asked to;
// Store then waits for less.
void StartStoring(int descriptor, std::uint64_t offset, std::uint64_t count);
// Sends what was written to the disk.
int Store(int descriptor);
int Close(int descriptor);

// The same for all names of a file, and for no other file.
struct FileIdentity
{
    std::uint64_t device = 0;
    std::uint64_t number = 0;

    bool operator==(const FileIdentity&) const = default;
};

struct OpenedFile
{
    int descriptor = -1;
    bool regular = false;
    bool pipe = false;
    bool terminal = false;
    std::uint64_t size = 0;
    FileIdentity identity;
};
// Opens a file to be read, without waiting for whoever writes to a pipe. The descriptor is there
// even after an error that came later.
int OpenToRead(const std::string& path, OpenedFile& file);
// The standard input stream. A file counts as regular if nothing of it was read yet.
int OpenStandardInput(OpenedFile& file);
// One try to read what follows in a pipe, which an interrupt ends: as Read and Write answer.
std::int64_t ReadNext(int descriptor, void* bytes, std::size_t size);
// A second descriptor of the standard output stream, or an error below 0.
int DuplicateOutput();
// True if somebody sees the standard output stream on a terminal.
bool OutputIsSeen();
// Creates a file in a folder, or in that for temporary files if it is empty, which is gone when its
// descriptor is closed.
int CreateSpool(const std::string& folder, int& descriptor);

// A look at the place of a file that is to be written.
struct PresentFile
{
    bool exists = false;
    bool regular = false;
    // In the system's own terms.
    unsigned mode = 0;
    FileIdentity identity;
};
// Replaces a path that ends in symbolic links by what the last of them names.
int FollowLinks(std::string& path);
// That nothing is there is no error.
int LookAt(const std::string& path, PresentFile& present);
// Creates a file with a name of its own in the folder of targetPath, and gives it the rights of
// what is present there.
int CreateBeside(const std::string& targetPath, const PresentFile& present, int& descriptor,
                 std::string& newPath);
// Answers whether CreateBeside could create a file there.
int TryBeside(const std::string& targetPath);
// Puts the file into the target's place in one step.
int Replace(const std::string& path, const std::string& targetPath);
// Puts the file there in one step if nothing is there, else answers EEXIST.
int PlaceNew(const std::string& path, const std::string& targetPath);
// Needs no memory.
void Remove(const std::string& path) noexcept;

} // namespace zvk::Pelkraft::Client
