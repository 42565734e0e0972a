#include "tests/tools/subprocess.h"

#include "tests/tools/path_text.h"

#include <windows.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace zvk::Pelkraft::TestSupport {
namespace {

std::string ReadWhole(const std::string& path)
{
    std::ifstream file(PathOf(path), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

// A file that the new process inherits.
class Inherited
{
public:
    explicit Inherited(const std::string& path)
    {
        SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
        handle =
            CreateFileW(PathOf(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                        &inherit, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    ~Inherited() { CloseHandle(handle); }
    Inherited(const Inherited&) = delete;
    Inherited& operator=(const Inherited&) = delete;

    HANDLE handle;
};

// A program takes its command line apart so that backslashes count only before a quotation mark.
std::wstring Quoted(const std::string& argument)
{
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t letter : PathOf(argument).wstring()) {
        if (letter == L'"')
            quoted.append(backslashes + 1, L'\\');
        backslashes = letter == L'\\' ? backslashes + 1 : 0;
        quoted += letter;
    }
    return quoted.append(backslashes, L'\\') + L'"';
}

// The test is asked to stop with the program, and goes on.
BOOL WINAPI GoOn(DWORD)
{
    return TRUE;
}

// An interrupt goes to every process of a console, so the test and its programs have one that
// nobody else has.
void TakeAConsole()
{
    static const bool taken = [] {
        FreeConsole();
        return AllocConsole() != 0 && SetConsoleCtrlHandler(GoOn, TRUE) != 0;
    }();
    if (!taken)
        throw std::runtime_error("no console to be had");
}

} // namespace

Subprocess::Subprocess(const std::vector<std::string>& command, const std::string& scratchFolder)
    : outputPath(scratchFolder + "/stdout"), errorPath(scratchFolder + "/stderr")
{
    TakeAConsole();
    std::wstring line;
    for (const std::string& argument : command)
        line += (line.empty() ? L"" : L" ") + Quoted(argument);

    const Inherited output(outputPath);
    const Inherited errors(errorPath);
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = output.handle;
    start.hStdError = errors.handle;
    PROCESS_INFORMATION process = {};
    if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                       &process) == 0)
        throw std::runtime_error("no process to be had: " + std::to_string(GetLastError()));
    CloseHandle(process.hThread);
    id = reinterpret_cast<std::intptr_t>(process.hProcess);
}

bool Subprocess::HasEnded() const
{
    return WaitForSingleObject(reinterpret_cast<HANDLE>(id), 0) == WAIT_OBJECT_0;
}

void Subprocess::Interrupt(int number) const
{
    GenerateConsoleCtrlEvent(static_cast<DWORD>(number), 0);
}

Outcome Subprocess::Wait()
{
    const auto process = reinterpret_cast<HANDLE>(id);
    WaitForSingleObject(process, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process, &code);
    CloseHandle(process);
    Outcome outcome;
    outcome.exitCode = static_cast<int>(code);
    outcome.output = ReadWhole(outputPath);
    outcome.errors = ReadWhole(errorPath);
    return outcome;
}

std::vector<int> Interrupts()
{
    // Wine passes no other on.
    return {CTRL_C_EVENT};
}

Outcome RunTool(const std::string& scratchFolder, const std::vector<std::string>& arguments,
                unsigned long)
{
    std::vector<std::string> command = {PELKRAFT_TOOL};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return Subprocess(command, scratchFolder).Wait();
}

} // namespace zvk::Pelkraft::TestSupport
