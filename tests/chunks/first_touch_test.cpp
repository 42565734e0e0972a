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

// A row or strip without gaps. From each of its units on, the first touch is a write: no unit is
// read before it is written.
void ExpectWritesAlone(WatchedPages& pages, const SaveWay& way, std::size_t pixelBytes)
{
    const Bytes pixels = RandomBytes(16 * pixelBytes, 401);
    const GuardedBuffer chunk = MakeFilledChunk(pixels, pixelBytes, way.header, 0xFF, Flush::AtEnd);
    for (std::size_t unit = 0; unit < pixelBytes; ++unit) {
        unsigned char* row = pages.GetBorder() - 16 * unit;
        ASSERT_EQ(pages.Watch([&] { way.method(chunk.data(), row); }), Touch::Write)
            << way.name << ", " << pixelBytes << " bytes, unit " << unit;
    }
}

TEST(Save, NeverReadsTheRow)
{
    WatchedPages pages(Side::After);
    for (std::size_t pixelBytes = 1; pixelBytes <= 100; ++pixelBytes) {
        for (const SaveWay& way : InterleavedSaveWays(pixelBytes))
            ExpectWritesAlone(pages, way, pixelBytes);
    }
    for (const std::size_t sampleBytes : {1U, 2U}) {
        for (std::size_t planes = 1; planes <= 40; ++planes) {
            for (const SaveWay& way : PlanarSaveWays({planes, sampleBytes, 16 * sampleBytes}))
                ExpectWritesAlone(pages, way, planes * sampleBytes);
        }
    }
}

// The header is closed; the slots begin at the border.
template <typename Way>
void ExpectNoHeader(const Way& way, std::size_t pixelBytes, bool isLoad)
{
    if (way.name != "vector")
        return;
    WatchedPages pages(Side::Before);
    const GuardedBuffer row(16 * pixelBytes);
    unsigned char* chunk = pages.GetBorder() - firstSlot;
    const auto move = [&] {
        if (isLoad)
            way.method(row.data(), chunk);
        else
            way.method(chunk, row.data());
    };
    ASSERT_EQ(pages.Watch(move), Touch::None) << pixelBytes << " bytes";
}

TEST(MethodOfAKnownSize, TouchesNoHeader)
{
    for (std::size_t pixelBytes = 1; pixelBytes <= 80; ++pixelBytes) {
        for (const LoadWay& way : InterleavedLoadWays(pixelBytes))
            ExpectNoHeader(way, pixelBytes, true);
        for (const SaveWay& way : InterleavedSaveWays(pixelBytes))
            ExpectNoHeader(way, pixelBytes, false);
    }
}

TEST(MethodOfOnePlane, TouchesNoHeader)
{
    for (const std::size_t sampleBytes : {1U, 2U}) {
        const PlanarRow row{1, sampleBytes, 16 * sampleBytes};
        for (const LoadWay& way : PlanarLoadWays(row))
            ExpectNoHeader(way, sampleBytes, true);
        for (const SaveWay& way : PlanarSaveWays(row))
            ExpectNoHeader(way, sampleBytes, false);
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport

#endif
