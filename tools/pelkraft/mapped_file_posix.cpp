#include "tools/pelkraft/mapped_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <limits>

namespace zvk::Pelkraft::Client {
namespace {

std::atomic<std::uintptr_t> mappedStart = 0;
std::atomic<std::uintptr_t> mappedEnd = 0;
std::atomic<std::uintptr_t> pageBytes = 4096;
volatile std::sig_atomic_t pageMissed = 0;

// Puts a page of zeros where the file has none to give.
extern "C" void FillMissingPage(int signalNumber, siginfo_t* information, void*)
{
    const int keptError = errno;
    const auto address = reinterpret_cast<std::uintptr_t>(information->si_addr);
    void* const page = static_cast<char*>(information->si_addr) - address % pageBytes;
    const bool ours = address >= mappedStart && address < mappedEnd;
    if (!ours || mmap(page, pageBytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) ==
                     MAP_FAILED)
        // Somebody else's fault, which comes again and ends the program.
        std::signal(signalNumber, SIG_DFL);
    pageMissed = 1;
    errno = keptError;
}

} // namespace

MappedFile::MappedFile(int descriptor, std::uint64_t newSize) : size(newSize)
{
    if (size == 0 || size > std::numeric_limits<std::size_t>::max())
        return;
    void* const mapped = mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor, 0);
    if (mapped == MAP_FAILED)
        return;
    data = mapped;
    pageBytes = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    mappedStart = reinterpret_cast<std::uintptr_t>(data);
    mappedEnd = mappedStart + size;
    pageMissed = 0;
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
    mappedStart = mappedEnd = 0;
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
