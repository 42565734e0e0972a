#include "tests/chunks/watched_pages.h"

#include "tests/support/page_memory.h"

namespace zvk::Pelkraft::TestSupport {

WatchedPages::WatchedPages(Side newClosed)
    : pageBytes(GetPageBytes()), closed(newClosed), pages(ReservePages(2 * pageBytes))
{
    SetPageAccess(pages, 2 * pageBytes, PageAccess::ReadWrite);
    active = this;
    StartTakingFaults();
}

WatchedPages::~WatchedPages()
{
    StopTakingFaults();
    FreePages(pages, 2 * pageBytes);
}

bool WatchedPages::TakeFault(const void* address, bool isWrite)
{
    const unsigned char* const page = active->ClosedPage();
    const auto* const place = static_cast<const unsigned char*>(address);
    if (place < page || place >= page + active->pageBytes || active->touch != Touch::None)
        return false;
    active->touch = isWrite ? Touch::Write : Touch::Read;
    active->Open();
    return true;
}

void WatchedPages::Close()
{
    touch = Touch::None;
    SetPageAccess(ClosedPage(), pageBytes, PageAccess::None);
}

void WatchedPages::Open()
{
    SetPageAccess(ClosedPage(), pageBytes, PageAccess::ReadWrite);
}

} // namespace zvk::Pelkraft::TestSupport
