#pragma once

#include <cstddef>

namespace zvk::Pelkraft::TestSupport {

enum class PageAccess
{
    None,
    Read,
    ReadWrite,
};

// Bytes of a page, which is what access is given to or taken from.
std::size_t GetPageBytes();

// Whole pages that nobody may touch yet. Throws std::bad_alloc where there are none left.
unsigned char* ReservePages(std::size_t bytes);

// Gives access to some of these pages, or takes it. Throws std::bad_alloc where it can't be had.
void SetPageAccess(unsigned char* pages, std::size_t bytes, PageAccess access);

// Frees all that one reservation gave.
void FreePages(unsigned char* pages, std::size_t bytes);

} // namespace zvk::Pelkraft::TestSupport
