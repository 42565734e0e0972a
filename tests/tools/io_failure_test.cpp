#include "tests/tools/io_fixture.h"

#include <cstdio>

namespace zvk::Pelkraft::TestSupport {
namespace {

struct FailingCall
{
    const char* call;
    std::vector<std::string> ways;
};

const std::vector<FailingCall>& FailingCalls()
{
    static const std::vector<FailingCall> list = {
        {"open", {"EACCES", "EMFILE", "EINTR"}},
        {"mkostemp", {"EACCES", "ENOSPC", "EINTR"}},
        {"stat", {"EIO", "EACCES"}},
        {"readlink", {"EIO", "EACCES"}},
        {"fchmod", {"EPERM", "EIO"}},
        {"read", {"EIO", "EINTR", "short", "end"}},
        {"write", {"EIO", "ENOSPC", "EINTR", "short", "end"}},
        {"lseek", {"EIO"}},
        {"fsync", {"EIO", "ENOSPC", "EINTR"}},
        {"ftruncate", {"EIO", "EINTR"}},
        {"close", {"EIO", "ENOSPC", "EINTR"}},
        {"rename", {"EIO", "ENOSPC", "EACCES"}},
        {"mmap", {"ENOMEM", "empty"}},
    };
    return list;
}

class IoFailure : public IoFixture
{
protected:
    // The outcome of the use when nothing fails.
    struct Good
    {
        std::string output;
        FolderState after;
        std::map<std::string, long> calls;
    };

    ~IoFailure() override { std::printf("io_failure: %ld runs\n", runs); }

    [[nodiscard]] Good RunWell(const ToolUse& use, bool withOld)
    {
        PrepareTargets(use, withOld);
        const Outcome outcome = RunUse(use);
        EXPECT_TRUE(EndedSilently(outcome));
        return {WithoutTimes(outcome.output), State(), Calls()};
    }

    // place is the call and its number.
    void FailOnce(const ToolUse& use, const std::string& place, const std::string& way,
                  bool withOld, const Good& good)
    {
        const std::string order = place + ' ' + way;
        SCOPED_TRACE(use.name + ": " + order + (withOld ? ", over old files" : ""));
        PrepareTargets(use, withOld);
        const FolderState before = State();
        const Outcome outcome = RunUse(use, order);
        ++runs;
        if (outcome.exitCode == 0) {
            EXPECT_TRUE(EndedSilently(outcome));
            EXPECT_EQ(good.output, WithoutTimes(outcome.output));
            EXPECT_TRUE(State() == good.after) << "not the files of a good run";
        } else {
            EXPECT_TRUE(Refused(outcome, 6, {"be"}));
            // The first of two files may have taken its place before the second fails.
            EXPECT_TRUE(IsOldOrNew(State(), before, use.targets.size() > 1 ? good.after : before));
        }
    }

    void FailEachCall(const ToolUse& use, const FailingCall& failing, bool withOld)
    {
        const Good good = RunWell(use, withOld);
        const long count = good.calls.at(failing.call);
        for (const std::string& way : failing.ways) {
            for (const long number : CallNumbers(count)) {
                const std::string place = std::string(failing.call) + ' ' + std::to_string(number);
                FailOnce(use, place, way, withOld, good);
                if (way == "ENOSPC" || way == "end")
                    FailOnce(use, place + '+', way, withOld, good);
            }
        }
    }

    long runs = 0;
};

TEST_F(IoFailure, LeavesOldFilesOrNoneWhateverCallFails)
{
    bool withOld = false;
    for (const ToolUse& use : uses) {
        for (const FailingCall& failing : FailingCalls()) {
            // The sample has each case with or without old files.
            const bool whole = std::getenv("PELKRAFT_TEST_FULL") != nullptr;
            withOld = !withOld;
            FailEachCall(use, failing, withOld);
            if (whole && !use.targets.empty())
                FailEachCall(use, failing, !withOld);
        }
    }
}

// Without this the test above might never let anything fail.
TEST_F(IoFailure, CountsTheCallsOfEveryUse)
{
    for (const ToolUse& use : uses) {
        SCOPED_TRACE(use.name);
        auto calls = RunWell(use, false).calls;
        const auto writes = static_cast<long>(use.targets.size());
        EXPECT_GE(calls["write"], 1);
        EXPECT_GE(calls["close"], writes);
        EXPECT_GE(calls["fsync"], writes);
        EXPECT_EQ(writes, calls["mkostemp"]);
        EXPECT_EQ(writes, calls["rename"]);
        EXPECT_EQ(use.name.find("long") == 0, calls["mmap"] > 0);
        if (use.name == "help")
            continue;
        EXPECT_GE(calls["open"], 1);
        EXPECT_GE(calls["read"], 1);
        PrepareTargets(use, true);
        EXPECT_EQ(6, RunUse(use, "read 1 EIO").exitCode);
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
