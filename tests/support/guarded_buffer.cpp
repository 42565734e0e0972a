#include "tests/support/guarded_buffer.h"

#include "tests/support/page_memory.h"

#include <cstring>

namespace zvk::Pelkraft::TestSupport {

GuardedBuffer::GuardedBuffer(std::size_t size, Flush flush, unsigned char fill) : contentSize(size)
{
    Map(flush, 0);
    if (contentSize != 0)
        std::memset(content, fill, contentSize);
}

GuardedBuffer::GuardedBuffer(const std::vector<unsigned char>& newContent, Flush flush)
    : GuardedBuffer(newContent, flush, 0)
{}

GuardedBuffer::GuardedBuffer(const std::vector<unsigned char>& newContent, Flush flush,
                             std::size_t gap)
    : contentSize(newContent.size())
{
    Map(flush, gap);
    if (contentSize != 0)
        std::memcpy(content, newContent.data(), contentSize);
}

GuardedBuffer::GuardedBuffer(GuardedBuffer&& other) noexcept
    : mapping(other.mapping), mappingSize(other.mappingSize), content(other.content),
      contentSize(other.contentSize)
{
    other.mapping = nullptr;
}

GuardedBuffer::~GuardedBuffer()
{
    if (mapping != nullptr)
        FreePages(mapping, mappingSize);
}

std::vector<unsigned char> GuardedBuffer::bytes() const
{
    return std::vector<unsigned char>(content, content + contentSize);
}

void GuardedBuffer::Map(Flush flush, std::size_t gap)
{
    const std::size_t page = GetPageBytes();
    const std::size_t inside = (contentSize + gap + page - 1) / page * page;
    mappingSize = inside + 2 * page;
    mapping = ReservePages(mappingSize);
    if (inside != 0)
        SetPageAccess(mapping + page, inside, PageAccess::ReadWrite);
    content =
        flush == Flush::AtEnd ? mapping + page + inside - contentSize - gap : mapping + page + gap;
}

} // namespace zvk::Pelkraft::TestSupport
