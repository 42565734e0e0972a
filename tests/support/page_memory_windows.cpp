#include "tests/support/page_memory.h"

#include <windows.h>

#include <new>

namespace zvk::Pelkraft::TestSupport {
namespace {

DWORD ProtectionOf(PageAccess access)
{
    switch (access) {
    case PageAccess::None:
        return PAGE_NOACCESS;
    case PageAccess::Read:
        return PAGE_READONLY;
    default:
        return PAGE_READWRITE;
    }
}

} // namespace

std::size_t GetPageBytes()
{
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    return system.dwPageSize;
}

unsigned char* ReservePages(std::size_t bytes)
{
    void* const memory = VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_NOACCESS);
    if (memory == nullptr)
        throw std::bad_alloc();
    return static_cast<unsigned char*>(memory);
}

void SetPageAccess(unsigned char* pages, std::size_t bytes, PageAccess access)
{
    DWORD before = 0;
    if (!VirtualProtect(pages, bytes, ProtectionOf(access), &before))
        throw std::bad_alloc();
}

void FreePages(unsigned char* pages, std::size_t)
{
    VirtualFree(pages, 0, MEM_RELEASE);
}

} // namespace zvk::Pelkraft::TestSupport
