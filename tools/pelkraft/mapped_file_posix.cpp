#include "tools/pelkraft/mapped_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <limits>

namespace zvk::Pelkraft::Client {
namespace {

struct Range
{
    std::atomic<std::uintptr_t> start = 0;
    std::atomic<std::uintptr_t> end = 0;
};

// Those without an end are free.
std::array<Range, 64> ranges;
std::atomic<std::uintptr_t> pageBytes = 4096;
volatile std::sig_atomic_t pageMissed = 0;

// Puts a page of zeros where the file has none to give.
extern "C" void FillMissingPage(int signalNumber, siginfo_t* information, void*)
{
    const int keptError = errno;
    const auto address = reinterpret_cast<std::uintptr_t>(information->si_addr);
    void* const page = static_cast<char*>(information->si_addr) - address % pageBytes;
    const bool ours = std::any_of(ranges.begin(), ranges.end(), [address](const Range& range) {
        return address >= range.start && address < range.end;
    });
    if (!ours || mmap(page, pageBytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) ==
                     MAP_FAILED)
        // Somebody else's fault, which comes again and ends the program.
        std::signal(signalNumber, SIG_DFL);
    pageMissed = 1;
    errno = keptError;
}

// The range with this end, 0 for one that is free; null if there is none.
Range* RangeUpTo(std::uintptr_t end)
{
    Range* const last = ranges.data() + ranges.size();
    Range* const found =
        std::find_if(ranges.data(), last, [end](const Range& range) { return range.end == end; });
    return found == last ? nullptr : found;
}

} // namespace

MappedFile::MappedFile(int descriptor, std::uint64_t newSize) : size(newSize)
{
    if (size == 0 || size > std::numeric_limits<std::size_t>::max())
        return;
    auto* const range = RangeUpTo(0);
    if (range == nullptr)
        return;
    void* const mapped = mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor, 0);
    if (mapped == MAP_FAILED)
        return;
    data = mapped;
    pageBytes = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    if (std::all_of(ranges.begin(), ranges.end(),
                    [](const Range& other) { return other.end == 0; }))
        pageMissed = 0;
    range->start = reinterpret_cast<std::uintptr_t>(data);
    range->end = range->start + size;
    struct sigaction fill = {};
    fill.sa_sigaction = FillMissingPage;
    sigemptyset(&fill.sa_mask);
    fill.sa_flags = SA_SIGINFO;
    sigaction(SIGBUS, &fill, nullptr);
}

MappedFile::~MappedFile()
{
    if (data == nullptr)
        return;
    RangeUpTo(reinterpret_cast<std::uintptr_t>(data) + size)->end = 0;
    munmap(data, size);
}

bool MappedFile::Failed() const
{
    return pageMissed != 0;
}

void MappedFile::Release() const
{
    if (data != nullptr)
        madvise(data, size, MADV_DONTNEED);
}

} // namespace zvk::Pelkraft::Client
