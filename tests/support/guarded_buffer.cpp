#include "tests/support/guarded_buffer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <new>

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
        munmap(mapping, mappingSize);
}

std::vector<unsigned char> GuardedBuffer::bytes() const
{
    return std::vector<unsigned char>(content, content + contentSize);
}

void GuardedBuffer::Map(Flush flush, std::size_t gap)
{
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t inside = (contentSize + gap + page - 1) / page * page;
    mappingSize = inside + 2 * page;
    void* memory =
        mmap(nullptr, mappingSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED)
        throw std::bad_alloc();
    mapping = static_cast<unsigned char*>(memory);
    if (inside != 0 && mprotect(mapping + page, inside, PROT_READ | PROT_WRITE) != 0)
        throw std::bad_alloc();
    content =
        flush == Flush::AtEnd ? mapping + page + inside - contentSize - gap : mapping + page + gap;
}

} // namespace zvk::Pelkraft::TestSupport
