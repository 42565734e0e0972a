#include "tools/pelkraft/mapped_file.h"

#include <windows.h>

#include <io.h>

#include <atomic>
#include <limits>

namespace zvk::Pelkraft::Client {
namespace {

std::atomic<std::uintptr_t> mappedStart = 0;
std::atomic<std::uintptr_t> mappedEnd = 0;
std::atomic<bool> pageMissed = false;
PVOID handler = nullptr;

// Puts a page of zeros where the file has none to give.
LONG CALLBACK FillMissingPage(EXCEPTION_POINTERS* pointers)
{
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    const bool lost = record.ExceptionCode == EXCEPTION_IN_PAGE_ERROR;
    if ((!lost && record.ExceptionCode != EXCEPTION_ACCESS_VIOLATION) ||
        record.NumberParameters < 2)
        return EXCEPTION_CONTINUE_SEARCH;
    const std::uintptr_t address = record.ExceptionInformation[1];
    if (address < mappedStart || address >= mappedEnd)
        return EXCEPTION_CONTINUE_SEARCH;

    // A view can't be changed in part: with its first lost page it gives way to empty memory, of
    // which every page that is wanted comes here once.
    auto* const start = reinterpret_cast<void*>(mappedStart.load());
    if (!pageMissed.exchange(true)) {
        UnmapViewOfFile(start);
        VirtualAlloc(start, mappedEnd - mappedStart, MEM_RESERVE, PAGE_READONLY);
    }
    const auto page = reinterpret_cast<void*>(address);
    return VirtualAlloc(page, 1, MEM_COMMIT, PAGE_READONLY) != nullptr
               ? EXCEPTION_CONTINUE_EXECUTION
               : EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

MappedFile::MappedFile(int descriptor, std::uint64_t newSize) : size(newSize)
{
    // One at a time.
    if (size == 0 || size > std::numeric_limits<std::size_t>::max() || mappedEnd != 0)
        return;
    const auto file = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
    const HANDLE section =
        CreateFileMappingW(file, nullptr, PAGE_READONLY, static_cast<DWORD>(size >> 32),
                           static_cast<DWORD>(size), nullptr);
    if (section == nullptr)
        return;
    // The view keeps the section.
    data = MapViewOfFile(section, FILE_MAP_READ, 0, 0, static_cast<SIZE_T>(size));
    CloseHandle(section);
    if (data == nullptr)
        return;
    mappedStart = reinterpret_cast<std::uintptr_t>(data);
    mappedEnd = mappedStart + size;
    pageMissed = false;
    handler = AddVectoredExceptionHandler(1, FillMissingPage);
}

MappedFile::~MappedFile()
{
    if (data == nullptr)
        return;
    RemoveVectoredExceptionHandler(handler);
    mappedStart = mappedEnd = 0;
    if (pageMissed)
        VirtualFree(data, 0, MEM_RELEASE);
    else
        UnmapViewOfFile(data);
}

bool MappedFile::Failed() const
{
    return pageMissed;
}

void MappedFile::Release() const
{
    // Windows takes back the memory of pages that are unlocked without having been locked.
    if (data != nullptr)
        VirtualUnlock(data, static_cast<SIZE_T>(size));
}

} // namespace zvk::Pelkraft::Client
