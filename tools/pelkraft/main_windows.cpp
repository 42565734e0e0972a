#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/program.h"
#include "tools/pelkraft/wide_text_windows.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <memory>
#include <vector>

namespace zvk::Pelkraft::Client {
namespace {

// Both streams take bytes as they are, and a console reads them as UTF-8 until the program ends.
class Utf8Streams
{
public:
    Utf8Streams() : usualCodePage(GetConsoleOutputCP())
    {
        _setmode(standardOutput, _O_BINARY);
        _setmode(standardError, _O_BINARY);
        SetConsoleOutputCP(CP_UTF8);
        // Byte by byte, as errors go out otherwise, a console can't read a letter of several.
        std::setvbuf(stderr, nullptr, _IOFBF, 4096);
    }
    ~Utf8Streams() { SetConsoleOutputCP(usualCodePage); }
    Utf8Streams(const Utf8Streams&) = delete;
    Utf8Streams& operator=(const Utf8Streams&) = delete;

private:
    UINT usualCodePage;
};

struct Free
{
    void operator()(wchar_t** memory) const { LocalFree(memory); }
};

// The arguments of main have lost the letters that the code page of the machine lacks.
std::vector<std::string> Arguments()
{
    int count = 0;
    const std::unique_ptr<wchar_t*[], Free> wide(CommandLineToArgvW(GetCommandLineW(), &count));
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i)
        arguments.push_back(Utf8(wide[static_cast<std::size_t>(i)]));
    return arguments;
}

int RunInUtf8()
{
    const Utf8Streams streams;
    const std::vector<std::string> arguments = Arguments();
    std::vector<const char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(argument.c_str());
    pointers.push_back(nullptr);
    return RunProgram(static_cast<int>(arguments.size()), pointers.data());
}

} // namespace
} // namespace zvk::Pelkraft::Client

int main()
{
    return zvk::Pelkraft::Client::RunInUtf8();
}
