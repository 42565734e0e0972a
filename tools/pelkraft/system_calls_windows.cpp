#include "tools/pelkraft/system_calls.h"

#include "tools/pelkraft/wide_text_windows.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <random>

namespace zvk::Pelkraft::Client {
namespace {

constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

int LastError()
{
    switch (GetLastError()) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
        return ENOENT;
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_INVALID_PARAMETER:
        return EINVAL;
    case ERROR_FILENAME_EXCED_RANGE:
        return ENAMETOOLONG;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
        return EEXIST;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_WRITE_PROTECT:
    case ERROR_USER_MAPPED_FILE:
        return EACCES;
    case ERROR_TOO_MANY_OPEN_FILES:
        return EMFILE;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
        return ENOMEM;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        return ENOSPC;
    case ERROR_INVALID_HANDLE:
        return EBADF;
    case ERROR_BROKEN_PIPE:
    case ERROR_NO_DATA:
        return EPIPE;
    default:
        return EIO;
    }
}

int Answer(BOOL done)
{
    return done != 0 ? 0 : LastError();
}

std::int64_t Moved(BOOL done, DWORD count)
{
    return done != 0 ? std::int64_t{count} : -LastError();
}

HANDLE HandleOf(int descriptor)
{
    return reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
}

DWORD AtMost(std::size_t size)
{
    return static_cast<DWORD>(std::min(size, std::size_t{1} << 30));
}

OVERLAPPED Place(std::uint64_t offset)
{
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

HANDLE Open(const std::string& path, DWORD access)
{
    // Without the flag a folder could not be told from a file that is forbidden.
    return CreateFileW(Wide(path).c_str(), access, shareAll, nullptr, OPEN_EXISTING,
                       FILE_FLAG_BACKUP_SEMANTICS, nullptr);
}

bool IsRegular(HANDLE file, FileIdentity& identity)
{
    BY_HANDLE_FILE_INFORMATION information = {};
    if (GetFileType(file) != FILE_TYPE_DISK ||
        GetFileInformationByHandle(file, &information) == 0 ||
        (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return false;
    identity = {information.dwVolumeSerialNumber,
                std::uint64_t{information.nFileIndexHigh} << 32 | information.nFileIndexLow};
    return true;
}

int Describe(HANDLE handle, OpenedFile& file)
{
    file.regular = IsRegular(handle, file.identity);
    file.pipe = GetFileType(handle) == FILE_TYPE_PIPE;
    DWORD mode = 0;
    file.terminal = GetConsoleMode(handle, &mode) != 0;
    LARGE_INTEGER size = {};
    if (file.regular && GetFileSizeEx(handle, &size) == 0)
        return LastError();
    file.size = static_cast<std::uint64_t>(size.QuadPart);
    return 0;
}

// Six letters make more names than a folder has files.
std::string RandomName()
{
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device random;
    std::string name = ".pelkraft-";
    for (int i = 0; i < 6; ++i)
        name += letters[random() % letters.size()];
    return name;
}

} // namespace

std::int64_t ReadAt(int descriptor, void* bytes, std::size_t size, std::uint64_t offset)
{
    OVERLAPPED place = Place(offset);
    DWORD count = 0;
    const BOOL done = ReadFile(HandleOf(descriptor), bytes, AtMost(size), &count, &place);
    if (done == 0 && GetLastError() == ERROR_HANDLE_EOF)
        return 0;
    return Moved(done, count);
}

std::int64_t Write(int descriptor, const void* bytes, std::size_t size)
{
    DWORD count = 0;
    const BOOL done = WriteFile(HandleOf(descriptor), bytes, AtMost(size), &count, nullptr);
    return Moved(done, count);
}

std::int64_t WriteAt(int descriptor, const void* bytes, std::size_t size, std::uint64_t offset)
{
    OVERLAPPED place = Place(offset);
    DWORD count = 0;
    const BOOL done = WriteFile(HandleOf(descriptor), bytes, AtMost(size), &count, &place);
    return Moved(done, count);
}

void StartStoring(int, std::uint64_t, std::uint64_t) {}

int Store(int descriptor)
{
    return Answer(FlushFileBuffers(HandleOf(descriptor)));
}

int Close(int descriptor)
{
    return _close(descriptor) == 0 ? 0 : errno;
}

int OpenToRead(const std::string& path, OpenedFile& file)
{
    const HANDLE handle = Open(path, GENERIC_READ);
    if (handle == INVALID_HANDLE_VALUE)
        return LastError();
    if (const int error = Describe(handle, file); error != 0) {
        CloseHandle(handle);
        return error;
    }
    file.descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_BINARY);
    if (file.descriptor >= 0)
        return 0;
    CloseHandle(handle);
    return EMFILE;
}

int OpenStandardInput(OpenedFile& file)
{
    file.descriptor = _dup(0);
    if (file.descriptor < 0)
        return errno;
    const HANDLE handle = HandleOf(file.descriptor);
    if (const int error = Describe(handle, file); error != 0)
        return error;
    LARGE_INTEGER place = {};
    if (file.regular &&
        (SetFilePointerEx(handle, {}, &place, FILE_CURRENT) == 0 || place.QuadPart != 0)) {
        file.regular = false;
        file.pipe = true;
    }
    return 0;
}

std::int64_t ReadNext(int descriptor, void* bytes, std::size_t size)
{
    DWORD count = 0;
    const BOOL done = ReadFile(HandleOf(descriptor), bytes, AtMost(size), &count, nullptr);
    // A pipe whose writer has ended.
    if (done == 0 && GetLastError() == ERROR_BROKEN_PIPE)
        return 0;
    return Moved(done, count);
}

int DuplicateOutput()
{
    const int descriptor = _dup(1);
    return descriptor < 0 ? -errno : descriptor;
}

bool OutputIsSeen()
{
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != 0;
}

int CreateSpool(const std::string& folder, int& descriptor)
{
    std::error_code error;
    std::filesystem::path place = PathOf(folder);
    if (folder.empty())
        place = std::filesystem::temp_directory_path(error);
    if (error)
        return ENOENT;
    const HANDLE file =
        CreateFileW((place / RandomName()).c_str(), GENERIC_READ | GENERIC_WRITE, shareAll, nullptr,
                    CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return LastError();
    descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(file), _O_BINARY);
    if (descriptor >= 0)
        return 0;
    CloseHandle(file);
    return EMFILE;
}

int FollowLinks(std::string& path)
{
    const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
        return 0;
    const HANDLE file = Open(path, 0);
    if (file == INVALID_HANDLE_VALUE)
        return LastError();
    std::wstring followed(GetFinalPathNameByHandleW(file, nullptr, 0, 0), L'\0');
    const DWORD size =
        GetFinalPathNameByHandleW(file, followed.data(), static_cast<DWORD>(followed.size()), 0);
    const int error = size != 0 && size < followed.size() ? 0 : EIO;
    CloseHandle(file);
    if (error == 0)
        path = Utf8({followed.data(), size});
    return error;
}

int LookAt(const std::string& path, PresentFile& present)
{
    const HANDLE file = Open(path, 0);
    if (file == INVALID_HANDLE_VALUE) {
        const int error = LastError();
        return error == ENOENT ? 0 : error;
    }
    present.exists = true;
    present.regular = IsRegular(file, present.identity);
    CloseHandle(file);
    present.mode = GetFileAttributesW(Wide(path).c_str());
    return 0;
}

int CreateBeside(const std::string& targetPath, const PresentFile& present, int& descriptor,
                 std::string& newPath)
{
    // It could not be replaced at the end.
    if (present.exists && (present.mode & FILE_ATTRIBUTE_READONLY) != 0)
        return EACCES;
    const std::filesystem::path folder = PathOf(targetPath).parent_path();
    int error = EEXIST;
    for (int attempt = 0; attempt < 100 && error == EEXIST; ++attempt) {
        newPath = Utf8((folder / RandomName()).native());
        // Shared, so that it can be removed while it is open.
        const HANDLE file =
            CreateFileW(Wide(newPath).c_str(), GENERIC_READ | GENERIC_WRITE, shareAll, nullptr,
                        CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) {
            error = LastError();
            continue;
        }
        descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(file), _O_BINARY);
        if (descriptor >= 0)
            return 0;
        CloseHandle(file);
        Remove(newPath);
        error = EMFILE;
    }
    newPath.clear();
    return error;
}

int TryBeside(const std::string& targetPath)
{
    const std::filesystem::path folder = PathOf(targetPath).parent_path();
    const DWORD attributes = GetFileAttributesW(folder.empty() ? L"." : folder.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return LastError();
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? 0 : ENOTDIR;
}

int Replace(const std::string& path, const std::string& targetPath)
{
    return Answer(MoveFileExW(Wide(path).c_str(), Wide(targetPath).c_str(),
                              MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
}

int PlaceNew(const std::string& path, const std::string& targetPath)
{
    return Answer(
        MoveFileExW(Wide(path).c_str(), Wide(targetPath).c_str(), MOVEFILE_WRITE_THROUGH));
}

void Remove(const std::string& path) noexcept
{
    // The longest path that the system knows.
    wchar_t wide[32768];
    if (MultiByteToWideChar(CP_UTF8, 0, path.c_str(), -1, wide, 32768) != 0)
        DeleteFileW(wide);
}

} // namespace zvk::Pelkraft::Client
