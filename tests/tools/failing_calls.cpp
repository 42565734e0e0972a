// Preloaded into the program under test: counts its calls to the system by kind, and lets one of
// them fail. Orders come from the environment:
//   PELKRAFT_FAIL    "CALL NUMBER WAY": the call of this kind with this number, from 1 on, fails in
//                    this way: an error number by name, "short" for half of what was asked, "end"
//                    for nothing, "empty" for a mapping without a page after it, or a signal by
//                    name that comes just before the call. "NUMBER+" lets all that follow fail too.
//   PELKRAFT_CALLS   the file that gets the counts when the program ends
// A file whose synchronising or closing fails loses its second half, as if it was never stored.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

enum Call
{
    Open,
    Make,
    Look,
    Link,
    Mode,
    Read,
    Write,
    Seek,
    Sync,
    Cut,
    Close,
    Rename,
    Map,
    calls
};

constexpr std::array<const char*, calls> callNames = {
    "open",  "mkostemp", "stat",      "readlink", "fchmod", "read", "write",
    "lseek", "fsync",    "ftruncate", "close",    "rename", "mmap"};

struct Word
{
    const char* name;
    int number;
};

constexpr std::array<Word, 8> errorWords = {{{"EIO", EIO},
                                             {"ENOSPC", ENOSPC},
                                             {"EINTR", EINTR},
                                             {"EACCES", EACCES},
                                             {"EMFILE", EMFILE},
                                             {"EPERM", EPERM},
                                             {"ENOMEM", ENOMEM},
                                             {"ELOOP", ELOOP}}};
constexpr std::array<Word, 3> signalWords = {
    {{"SIGKILL", SIGKILL}, {"SIGINT", SIGINT}, {"SIGTERM", SIGTERM}}};

template <std::size_t size>
int NumberOf(const std::array<Word, size>& words, const std::string& name)
{
    for (const Word& word : words) {
        if (name == word.name)
            return word.number;
    }
    return 0;
}

struct Order
{
    Order()
    {
        const char* const text = std::getenv("PELKRAFT_FAIL");
        char callText[16] = "";
        char numberText[16] = "";
        char wayText[16] = "";
        if (text == nullptr ||
            std::sscanf(text, "%15s %15s %15s", callText, numberText, wayText) != 3)
            return;
        call = callText;
        number = std::strtol(numberText, nullptr, 10);
        onwards = std::strchr(numberText, '+') != nullptr;
        way = wayText;
        error = NumberOf(errorWords, way);
        signalNumber = NumberOf(signalWords, way);
    }

    std::string call;
    std::string way;
    long number = 0;
    bool onwards = false;
    int error = 0;
    int signalNumber = 0;
};

std::array<std::atomic<long>, calls> counts;

const Order& TheOrder()
{
    static const Order order;
    return order;
}

template <typename Function>
Function* Real(const char* name)
{
    void* const symbol = dlsym(RTLD_NEXT, name);
    if (symbol == nullptr)
        std::abort();
    return reinterpret_cast<Function*>(symbol);
}

// Counts the call, and answers whether it is the one that fails. A signal leaves it alone.
bool Fails(Call call)
{
    const long number = ++counts[call];
    const Order& order = TheOrder();
    if (order.call != callNames[call] || number < order.number ||
        (number > order.number && !order.onwards))
        return false;
    if (order.signalNumber == 0)
        return true;
    std::raise(order.signalNumber);
    return false;
}

template <typename Result>
Result Failed(Result result)
{
    errno = TheOrder().error;
    return result;
}

// The failing read or write moves so much in place of size bytes; -1 for an error.
ssize_t ShortCount(std::size_t size)
{
    if (TheOrder().error != 0)
        return -1;
    return TheOrder().way == "short" ? static_cast<ssize_t>((size + 1) / 2) : 0;
}

template <typename Move>
ssize_t MoveBytes(Call call, std::size_t size, Move move)
{
    if (!Fails(call))
        return move(size);
    const ssize_t count = ShortCount(size);
    if (count < 0)
        return Failed(count);
    return count == 0 ? 0 : move(static_cast<std::size_t>(count));
}

void LoseSecondHalf(int file)
{
    struct stat status = {};
    if (fcntl(file, F_GETFL) >= 0 && (fcntl(file, F_GETFL) & O_ACCMODE) != O_RDONLY &&
        Real<int(int, struct stat*)>("fstat")(file, &status) == 0 && S_ISREG(status.st_mode))
        [[maybe_unused]]
        const int ignored = Real<int(int, off_t)>("ftruncate")(file, status.st_size / 2);
}

mode_t ModeAmong(int flags, va_list arguments)
{
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

void* MapNothing(std::size_t size, int protection)
{
    const int empty = memfd_create("empty", MFD_CLOEXEC);
    void* const memory = Real<void*(void*, std::size_t, int, int, int, off_t)>("mmap")(
        nullptr, size, protection, MAP_SHARED, empty, 0);
    Real<int(int)>("close")(empty);
    return memory;
}

[[gnu::destructor]] void ReportCounts()
{
    const char* const path = std::getenv("PELKRAFT_CALLS");
    if (path == nullptr)
        return;
    std::string report;
    for (int call = 0; call < calls; ++call)
        report += std::string(callNames[static_cast<std::size_t>(call)]) + ' ' +
                  std::to_string(counts[static_cast<std::size_t>(call)]) + '\n';
    const int file =
        Real<int(const char*, int, ...)>("open")(path, O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (Real<ssize_t(int, const void*, std::size_t)>("write")(file, report.data(), report.size()) <
        0)
        std::abort();
}

} // namespace

#define EXPORTED extern "C" [[gnu::visibility("default")]]

#define OPENS(name)                                                                                \
    EXPORTED int name(const char* path, int flags, ...)                                            \
    {                                                                                              \
        va_list arguments;                                                                         \
        va_start(arguments, flags);                                                                \
        const mode_t mode = ModeAmong(flags, arguments);                                           \
        va_end(arguments);                                                                         \
        return Fails(Open) ? Failed(-1)                                                            \
                           : Real<int(const char*, int, ...)>(#name)(path, flags, mode);           \
    }
OPENS(open)
OPENS(open64)

#define MAKES(name)                                                                                \
    EXPORTED int name(char* pattern, int flags)                                                    \
    {                                                                                              \
        return Fails(Make) ? Failed(-1) : Real<int(char*, int)>(#name)(pattern, flags);            \
    }
MAKES(mkostemp)
MAKES(mkostemp64)

#define LOOKS(name, of, record)                                                                    \
    EXPORTED int name(of file, struct record* status) noexcept                                     \
    {                                                                                              \
        return Fails(Look) ? Failed(-1) : Real<int(of, struct record*)>(#name)(file, status);      \
    }
LOOKS(stat, const char*, stat)
LOOKS(stat64, const char*, stat64)
LOOKS(lstat, const char*, stat)
LOOKS(lstat64, const char*, stat64)
LOOKS(fstat, int, stat)
LOOKS(fstat64, int, stat64)

EXPORTED ssize_t readlink(const char* path, char* text, std::size_t size) noexcept
{
    return Fails(Link)
               ? Failed<ssize_t>(-1)
               : Real<ssize_t(const char*, char*, std::size_t)>("readlink")(path, text, size);
}

EXPORTED int fchmod(int file, mode_t mode) noexcept
{
    return Fails(Mode) ? Failed(-1) : Real<int(int, mode_t)>("fchmod")(file, mode);
}

EXPORTED ssize_t read(int file, void* to, std::size_t size)
{
    return MoveBytes(Read, size, [=](std::size_t count) {
        return Real<ssize_t(int, void*, std::size_t)>("read")(file, to, count);
    });
}

EXPORTED ssize_t write(int file, const void* from, std::size_t size)
{
    return MoveBytes(Write, size, [=](std::size_t count) {
        return Real<ssize_t(int, const void*, std::size_t)>("write")(file, from, count);
    });
}

#define READS_AT(name, place)                                                                      \
    EXPORTED ssize_t name(int file, void* to, std::size_t size, place offset)                      \
    {                                                                                              \
        return MoveBytes(Read, size, [=](std::size_t count) {                                      \
            return Real<ssize_t(int, void*, std::size_t, place)>(#name)(file, to, count, offset);  \
        });                                                                                        \
    }
READS_AT(pread, off_t)
READS_AT(pread64, off64_t)

#define WRITES_AT(name, place)                                                                     \
    EXPORTED ssize_t name(int file, const void* from, std::size_t size, place offset)              \
    {                                                                                              \
        return MoveBytes(Write, size, [=](std::size_t count) {                                     \
            return Real<ssize_t(int, const void*, std::size_t, place)>(#name)(file, from, count,   \
                                                                              offset);             \
        });                                                                                        \
    }
WRITES_AT(pwrite, off_t)
WRITES_AT(pwrite64, off64_t)

#define SEEKS(name, place)                                                                         \
    EXPORTED place name(int file, place offset, int from) noexcept                                 \
    {                                                                                              \
        return Fails(Seek) ? Failed<place>(-1)                                                     \
                           : Real<place(int, place, int)>(#name)(file, offset, from);              \
    }
SEEKS(lseek, off_t)
SEEKS(lseek64, off64_t)

#define CUTS(name, place)                                                                          \
    EXPORTED int name(int file, place size) noexcept                                               \
    {                                                                                              \
        return Fails(Cut) ? Failed(-1) : Real<int(int, place)>(#name)(file, size);                 \
    }
CUTS(ftruncate, off_t)
CUTS(ftruncate64, off64_t)

#define SYNCS(name)                                                                                \
    EXPORTED int name(int file)                                                                    \
    {                                                                                              \
        if (!Fails(Sync))                                                                          \
            return Real<int(int)>(#name)(file);                                                    \
        if (TheOrder().error != EINTR)                                                             \
            LoseSecondHalf(file);                                                                  \
        return Failed(-1);                                                                         \
    }
SYNCS(fsync)
SYNCS(fdatasync)

// The descriptor is gone whatever the call says, as the system has it.
EXPORTED int close(int file)
{
    const bool fails = Fails(Close);
    if (fails && TheOrder().error != EINTR)
        LoseSecondHalf(file);
    const int result = Real<int(int)>("close")(file);
    return fails ? Failed(-1) : result;
}

EXPORTED int rename(const char* from, const char* to) noexcept
{
    return Fails(Rename) ? Failed(-1) : Real<int(const char*, const char*)>("rename")(from, to);
}

#define MAPS(name, place)                                                                          \
    EXPORTED void* name(void* at, std::size_t size, int protection, int flags, int file,           \
                        place offset) noexcept                                                     \
    {                                                                                              \
        if (file < 0 || !Fails(Map))                                                               \
            return Real<void*(void*, std::size_t, int, int, int, place)>(#name)(                   \
                at, size, protection, flags, file, offset);                                        \
        return TheOrder().error != 0 ? Failed(MAP_FAILED) : MapNothing(size, protection);          \
    }
MAPS(mmap, off_t)
MAPS(mmap64, off64_t)
