#include "tests/memory_failure/memory_sweep.h"

#include "tests/support/counted_memory.h"

#include <cstdio>
#include <cstring>
#include <new>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Fails = CountedMemory::Fails;

// More than any operation allocates.
constexpr std::size_t mostAllocations = 10000;

// The end of an operation, kept in place: a string would be counted.
struct End
{
    enum class Kind
    {
        Returned,
        BadAlloc,
        Text,
        Other,
    };
    Kind kind = Kind::Returned;
    char text[128] = {};
};

struct Result
{
    End end;
    // Null if all is as documented.
    const char* fault = nullptr;
    std::size_t failed = 0;
    std::ptrdiff_t held = 0;
};

End EndOf(Trial& trial)
{
    End end;
    try {
        trial.Run();
    } catch (const std::bad_alloc&) {
        end.kind = End::Kind::BadAlloc;
    } catch (const char* text) {
        end.kind = End::Kind::Text;
        std::strncpy(end.text, text, sizeof end.text - 1);
    } catch (const wchar_t* text) {
        end.kind = End::Kind::Text;
        for (std::size_t i = 0; text[i] != 0 && i + 1 < sizeof end.text; ++i)
            end.text[i] = static_cast<char>(text[i]);
    } catch (...) {
        end.kind = End::Kind::Other;
    }
    return end;
}

bool IsText(const End& end, const std::string& text)
{
    return end.kind == End::Kind::Text && text == end.text;
}

const char* JudgeWithMemory(const Operation& operation, Trial& trial, const End& end,
                            const Bytes& before)
{
    if (operation.refuses) {
        if (!IsText(end, operation.otherText))
            return "does not refuse as documented";
        return trial.GetState() == before ? nullptr : "refuses, and has changed something";
    }
    if (end.kind != End::Kind::Returned)
        return "fails with all its memory";
    return trial.IsDone() ? nullptr : "has not done its work";
}

const char* JudgeWithoutMemory(const Operation& operation, Trial& trial, const End& end,
                               const Bytes& before)
{
    if (operation.doesWithout) {
        if (end.kind != End::Kind::Returned)
            return "throws, and should do without";
        return trial.IsDone() ? nullptr : "has not done without";
    }
    const bool isText = !operation.otherText.empty() && IsText(end, operation.otherText);
    if (end.kind != End::Kind::BadAlloc && !isText)
        return "does not tell of missing memory";
    if (trial.GetState() != before)
        return "has changed something";
    return nullptr;
}

Result Try(const Operation& operation, std::size_t number, Fails fails)
{
    Result result;
    CountedMemory memory;
    memory.Start();
    {
        const auto trial = operation.prepare();
        const Bytes before = trial->GetState();
        memory.FailAt(number, fails);
        result.end = EndOf(*trial);
        memory.FailNoMore();
        result.failed = memory.CountFailed();
        const bool logged = trial->HasLogged(result.end.kind != End::Kind::Returned);
        if (result.failed != 0)
            result.fault = JudgeWithoutMemory(operation, *trial, result.end, before);
        if (result.failed != 0 && result.fault == nullptr)
            result.end = EndOf(*trial);
        if (result.fault == nullptr)
            result.fault = JudgeWithMemory(operation, *trial, result.end, before);
        if (result.fault == nullptr && !logged)
            result.fault = "has not logged one line for one failure";
    }
    memory.Stop();
    result.held = memory.CountHeld();
    if (result.fault == nullptr && result.held != 0)
        result.fault = "leaks";
    return result;
}

// Returns what failed, or nothing.
std::string Sweep(const Operation& operation, std::size_t& failedAllocations)
{
    for (const Fails fails : {Fails::Once, Fails::ForEver}) {
        for (std::size_t number = 0; number != mostAllocations; ++number) {
            const Result result = Try(operation, number, fails);
            if (result.fault != nullptr)
                return operation.name + " " + result.fault + " without allocation " +
                       std::to_string(number) +
                       (fails == Fails::ForEver ? " and all after it" : "") + " (held " +
                       std::to_string(result.held) + ") " + result.end.text;
            failedAllocations += result.failed;
            // It was done before this allocation's turn came.
            if (result.failed == 0)
                break;
            if (number + 1 == mostAllocations)
                return operation.name + " never has enough";
        }
    }
    return {};
}

} // namespace

void SweepAll(const char* what, const std::vector<Operation>& operations)
{
    std::size_t failedAllocations = 0;
    for (const Operation& operation : operations)
        EXPECT_EQ("", Sweep(operation, failedAllocations));
    std::printf("library: %s: %zu operations, %zu failed allocations\n", what, operations.size(),
                failedAllocations);
}

} // namespace zvk::Pelkraft::TestSupport
