#include "tests/rows/refusal.h"

#include "tests/support/structured_lines.h"
#include "tests/system_tools/recording_sink.h"
#include "zvk/diagnostics.h"

#include <new>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Takes the log of the process for as long as it lives.
class LogTaken
{
public:
    LogTaken() { Diagnostics::Seh::SetDefaultLog(&sink); }
    ~LogTaken() { Diagnostics::Seh::SetDefaultLog(nullptr); }
    LogTaken(const LogTaken&) = delete;
    LogTaken& operator=(const LogTaken&) = delete;

    std::vector<std::wstring> Lines() const { return sink.Lines(); }

private:
    Diagnostics::RecordingSink sink;
};

// Looks at the text that is being handled: a handler of const char* takes a thrown char* too.
bool IsWritableText()
{
    try {
        throw;
    } catch (char*) {
        return true;
    } catch (...) {
        return false;
    }
}

std::string BareEndOf(const std::function<void()>& operation)
{
    try {
        operation();
        return returned;
    } catch (const char* text) {
        return IsWritableText() ? "<a text that may be written to>" : text;
    } catch (const std::bad_alloc&) {
        return outOfMemory;
    } catch (...) {
        return "<another failure>";
    }
}

} // namespace

const char* const returned = "<returned>";
const char* const outOfMemory = "<out of memory>";

std::string EndOf(const std::function<void()>& operation)
{
    const LogTaken log;
    return BareEndOf(operation);
}

std::vector<std::wstring> LinesOf(const std::function<void()>& operation)
{
    std::vector<std::wstring> lines = AllLinesOf(operation);
    std::erase_if(lines, IsStructuredLine);
    return lines;
}

std::vector<std::wstring> AllLinesOf(const std::function<void()>& operation)
{
    const LogTaken log;
    (void)BareEndOf(operation);
    return log.Lines();
}

} // namespace zvk::Pelkraft::TestSupport
