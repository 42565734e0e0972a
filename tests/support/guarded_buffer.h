#pragma once

#include <cstddef>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// The end of the buffer that lies flush with a forbidden page.
enum class Flush
{
    AtEnd,
    AtStart,
};

// A buffer of exactly the stated size between two forbidden pages: a read or write one byte too
// far on the flush side ends the program.
class GuardedBuffer
{
public:
    explicit GuardedBuffer(std::size_t size, Flush flush = Flush::AtEnd, unsigned char fill = 0);
    explicit GuardedBuffer(const std::vector<unsigned char>& content, Flush flush = Flush::AtEnd);
    // Moves the content away from the flush end by gap bytes, to try other addresses.
    GuardedBuffer(const std::vector<unsigned char>& content, Flush flush, std::size_t gap);
    ~GuardedBuffer();
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;
    GuardedBuffer(GuardedBuffer&& other) noexcept;
    GuardedBuffer& operator=(GuardedBuffer&&) = delete;

    unsigned char* data() const { return content; }
    std::size_t size() const { return contentSize; }
    [[nodiscard]] std::vector<unsigned char> bytes() const;

private:
    void Map(Flush flush, std::size_t gap);

    unsigned char* mapping = nullptr;
    std::size_t mappingSize = 0;
    unsigned char* content = nullptr;
    std::size_t contentSize = 0;
};

} // namespace zvk::Pelkraft::TestSupport
