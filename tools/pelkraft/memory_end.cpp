#include "tools/pelkraft/memory_end.h"

#include "tools/pelkraft/atomic_output.h"
#include "tools/pelkraft/exit_code.h"
#include "tools/pelkraft/file_calls.h"

#include <cerrno>
#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>

namespace zvk::Pelkraft::Client {
namespace {

std::terminate_handler usualEnd = nullptr;

// True if the exception that nobody caught reports missing memory. There may be none even for the
// exception itself.
bool RanOutOfMemory()
{
    const std::exception_ptr uncaught = std::current_exception();
    if (uncaught == nullptr)
        return errno == ENOMEM;
    try {
        std::rethrow_exception(uncaught);
    } catch (const std::bad_alloc&) {
        return true;
    } catch (...) {
        return false;
    }
}

[[noreturn]] void EndUncaught()
{
    if (RanOutOfMemory())
        EndForMemory();
    usualEnd();
    std::abort();
}

// Constructors that run ahead of main, and destructors, may want memory too: nobody can catch what
// they throw. This one runs ahead of them all.
[[gnu::constructor(101)]] void CatchTheUncaught()
{
    usualEnd = std::set_terminate(EndUncaught);
}

} // namespace

void PrintOutOfMemory() noexcept
{
    constexpr std::string_view line =
        "pelkraft: out of memory; a picture needs room for a few of its rows\n";
    [[maybe_unused]] const int ignored = WriteAll(standardError, line.data(), line.size());
}

void EndForMemory() noexcept
{
    AtomicOutput::RemoveAll();
    PrintOutOfMemory();
    std::_Exit(static_cast<int>(ExitCode::Memory));
}

} // namespace zvk::Pelkraft::Client
