#include "tests/copy/copy_check.h"
#include "tests/support/structured_handler.h"

#include <gtest/gtest.h>

#include <setjmp.h>
#include <windows.h>

#include <csignal>

namespace zvk::Pelkraft::TestSupport {
namespace {

// A handler goes on from here.
jmp_buf recovery;

void Recover(int)
{
    longjmp(recovery, 1);
}

} // namespace

void ExpectDivideError(const std::function<void()>& call)
{
    EXPECT_EQ(STATUS_INTEGER_DIVIDE_BY_ZERO, RunUnderHandler([&] { call(); }).code);
}

void ExpectQuotientOutOfRange(const std::function<void()>& call)
{
    const unsigned long code = RunUnderHandler([&] { call(); }).code;
    // The processor has one error for both, so the system has to look at the divisor.
    EXPECT_TRUE(code == STATUS_INTEGER_DIVIDE_BY_ZERO || code == STATUS_INTEGER_OVERFLOW)
        << std::hex << code;
}

void ExpectRefusedAddress(const std::function<void()>& call)
{
    EXPECT_EQ(STATUS_ACCESS_VIOLATION, RunUnderHandler([&] { call(); }).code);
}

void ExpectRaised(int, const std::function<void()>& call)
{
    // This is what a raised signal without a handler exits with, whichever it is.
    EXPECT_EXIT(call(), testing::ExitedWithCode(3), "");
}

bool IsLeftByHandler(int signal, const std::function<void()>& call)
{
    const auto before = std::signal(signal, Recover);
    volatile bool isLeft = false;
    if (setjmp(recovery) == 0)
        call();
    else
        isLeft = true;
    std::signal(signal, before);
    return isLeft;
}

} // namespace zvk::Pelkraft::TestSupport
