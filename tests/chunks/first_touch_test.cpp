#include "tests/chunks/chunk_image.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

// The processor says of a fault whether it was a write; this is known for x86 alone.
#if defined(__x86_64__) || defined(__i386__)

#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <new>

namespace zvk::Pelkraft::TestSupport {
namespace {

enum class Touch
{
    None,
    Read,
    Write,
};

enum class Side
{
    Before,
    After,
};

// Two pages, of which one is closed until it is touched for the first time. One lives at a time.
class WatchedPages
{
public:
    explicit WatchedPages(Side newClosed) : closed(newClosed)
    {
        void* memory = mmap(nullptr, 2 * pageBytes, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
            throw std::bad_alloc();
        pages = static_cast<unsigned char*>(memory);
        active = this;
        struct sigaction action = {};
        action.sa_sigaction = NoteTouch;
        action.sa_flags = SA_SIGINFO;
        sigaction(SIGSEGV, &action, &before);
    }
    ~WatchedPages()
    {
        sigaction(SIGSEGV, &before, nullptr);
        munmap(pages, 2 * pageBytes);
    }
    WatchedPages(const WatchedPages&) = delete;
    WatchedPages& operator=(const WatchedPages&) = delete;

    unsigned char* GetBorder() const { return pages + pageBytes; }

    // The first touch of the closed page while the action runs.
    template <typename Action>
    Touch Watch(Action action)
    {
        touch = Touch::None;
        mprotect(ClosedPage(), pageBytes, PROT_NONE);
        action();
        mprotect(ClosedPage(), pageBytes, PROT_READ | PROT_WRITE);
        return touch;
    }

private:
    static void NoteTouch(int, siginfo_t* info, void* context)
    {
        constexpr greg_t isWrite = 2;
        unsigned char* page = active->ClosedPage();
        const auto* address = static_cast<const unsigned char*>(info->si_addr);
        // Any other fault comes again, and ends the program.
        if (address < page || address >= page + active->pageBytes || active->touch != Touch::None) {
            std::signal(SIGSEGV, SIG_DFL);
            return;
        }
        const greg_t error = static_cast<ucontext_t*>(context)->uc_mcontext.gregs[REG_ERR];
        active->touch = (error & isWrite) != 0 ? Touch::Write : Touch::Read;
        mprotect(page, active->pageBytes, PROT_READ | PROT_WRITE);
    }

    unsigned char* ClosedPage() const { return closed == Side::Before ? pages : pages + pageBytes; }

    static inline WatchedPages* active = nullptr;

    const std::size_t pageBytes = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    Side closed;
    unsigned char* pages = nullptr;
    struct sigaction before = {};
    volatile Touch touch = Touch::None;
};

// All rows without a gap between planes, up to pixels of so many bytes.
std::vector<ChunkRow> DenseRows(std::size_t largestPixel)
{
    std::vector<ChunkRow> rows;
    for (std::size_t bytes = 1; bytes <= largestPixel; ++bytes)
        rows.insert(rows.end(), {InterleavedRow(bytes), PlanarRow(bytes, 1), PlanarRow(bytes, 2)});
    return rows;
}

std::string NameOf(const Way& way, const ChunkRow& row)
{
    return way.name + ", " + std::to_string(row.planes) + " planes of " +
           std::to_string(row.sampleBytes);
}

// From each unit of the row on, the first touch is a write: none is read before it is written.
TEST(Save, NeverReadsTheRow)
{
    WatchedPages pages(Side::After);
    for (const ChunkRow& row : DenseRows(50))
        for (const Way& way : WaysOf(End::Save, row)) {
            const std::size_t units = row.PixelBytes();
            const Bytes pixels = RandomBytes(16 * units, 401);
            const GuardedBuffer chunk =
                MakeFilledChunk(pixels, units, way.header, 0xFF, Flush::AtEnd);
            for (std::size_t unit = 0; unit < units; ++unit) {
                unsigned char* to = pages.GetBorder() - 16 * unit;
                ASSERT_EQ(pages.Watch([&] { way.method(chunk.data(), to); }), Touch::Write)
                    << NameOf(way, row) << ", unit " << unit;
            }
        }
}

// The header is closed; the slots begin at the border.
TEST(Method, OfAKnownSizeOrOfOnePlaneTouchesNoHeader)
{
    WatchedPages pages(Side::Before);
    unsigned char* chunk = pages.GetBorder() - firstSlot;
    for (const ChunkRow& row : DenseRows(80))
        for (const End end : {End::Load, End::Save})
            for (const Way& way : WaysOf(end, row)) {
                if (way.name != "vector" || row.planes > 1)
                    continue;
                const GuardedBuffer pixels(16 * row.PixelBytes());
                const auto move = [&] {
                    if (end == End::Load)
                        way.method(pixels.data(), chunk);
                    else
                        way.method(chunk, pixels.data());
                };
                ASSERT_EQ(pages.Watch(move), Touch::None) << NameOf(way, row);
            }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport

#endif
