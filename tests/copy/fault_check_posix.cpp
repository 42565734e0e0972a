#include "tests/copy/copy_check.h"

#include <gtest/gtest.h>

#include <setjmp.h>

#include <csignal>

namespace zvk::Pelkraft::TestSupport {
namespace {

// A handler goes on from here.
sigjmp_buf recovery;

void Recover(int)
{
    siglongjmp(recovery, 1);
}

} // namespace

void ExpectDivideError(const std::function<void()>& call)
{
    ExpectRaised(SIGFPE, call);
}

void ExpectQuotientOutOfRange(const std::function<void()>& call)
{
    ExpectRaised(SIGFPE, call);
}

void ExpectRefusedAddress(const std::function<void()>& call)
{
    ExpectRaised(SIGSEGV, call);
}

void ExpectRaised(int signal, const std::function<void()>& call)
{
    const auto callUnhandled = [&] {
        // A sanitizer's own handler would turn the signal into an exit.
        std::signal(signal, SIG_DFL);
        call();
    };
    EXPECT_EXIT(callUnhandled(), testing::KilledBySignal(signal), "");
}

bool IsLeftByHandler(int signal, const std::function<void()>& call)
{
    const auto before = std::signal(signal, Recover);
    volatile bool isLeft = false;
    if (sigsetjmp(recovery, 1) == 0)
        call();
    else
        isLeft = true;
    std::signal(signal, before);
    return isLeft;
}

} // namespace zvk::Pelkraft::TestSupport
