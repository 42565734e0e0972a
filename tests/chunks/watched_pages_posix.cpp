#include "tests/chunks/watched_pages.h"

#include <ucontext.h>

#include <csignal>

namespace zvk::Pelkraft::TestSupport {
namespace {

struct sigaction before = {};

void TakeSignal(int, siginfo_t* info, void* context)
{
    constexpr greg_t isWrite = 2;
    const greg_t error = static_cast<ucontext_t*>(context)->uc_mcontext.gregs[REG_ERR];
    // Any other fault comes again, and ends the program.
    if (!WatchedPages::TakeFault(info->si_addr, (error & isWrite) != 0))
        std::signal(SIGSEGV, SIG_DFL);
}

} // namespace

void StartTakingFaults()
{
    struct sigaction action = {};
    action.sa_sigaction = TakeSignal;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGSEGV, &action, &before);
}

void StopTakingFaults()
{
    sigaction(SIGSEGV, &before, nullptr);
}

} // namespace zvk::Pelkraft::TestSupport
