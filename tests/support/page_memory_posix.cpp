#include "tests/support/page_memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <new>

namespace zvk::Pelkraft::TestSupport {
namespace {

int ProtectionOf(PageAccess access)
{
    switch (access) {
    case PageAccess::None:
        return PROT_NONE;
    case PageAccess::Read:
        return PROT_READ;
    default:
        return PROT_READ | PROT_WRITE;
    }
}

} // namespace

std::size_t GetPageBytes()
{
    return static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

unsigned char* ReservePages(std::size_t bytes)
{
    void* const memory =
        mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED)
        throw std::bad_alloc();
    return static_cast<unsigned char*>(memory);
}

void SetPageAccess(unsigned char* pages, std::size_t bytes, PageAccess access)
{
    if (mprotect(pages, bytes, ProtectionOf(access)) != 0)
        throw std::bad_alloc();
}

void FreePages(unsigned char* pages, std::size_t bytes)
{
    munmap(pages, bytes);
}

} // namespace zvk::Pelkraft::TestSupport
