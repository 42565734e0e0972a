#include "tools/pelkraft/exit_code.h"
#include "tools/pelkraft/program.h"

#include <tiffio.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// Any bytes as a TIFF file, or as a pattern, for each verb of the program. Whatever they are, the
// program ends with one of its codes; the new file is there and readable if that means success,
// and isn't there at all if not.
namespace zvk::Pelkraft::Client {
namespace {

namespace fs = std::filesystem;

using Words = std::vector<std::string>;

constexpr const char* patternText = R"(DotWeavePattern
VERSION 2
BEGIN_OUT_INKS Cyan LightCyan Black END_OUT_INKS
BEGIN_IN_COLORS Cyan Black END_IN_COLORS
BEGIN_IN_COLOR Cyan
BEGIN_INKS Cyan LightCyan END_INKS
BEGIN_VALUES
1 1 1-64
2 1:3 1-128 0-40
3 1 0-255
END_VALUES
END_IN_COLOR
BEGIN_IN_COLOR Black
BEGIN_INKS Black END_INKS
BEGIN_VALUES 1 1 0-255 END_VALUES
END_IN_COLOR
)";

void Write(const fs::path& path, const void* bytes, std::size_t count)
{
    std::ofstream(path, std::ios::binary)
        .write(static_cast<const char*>(bytes), static_cast<std::streamsize>(count));
}

// A folder of this process alone, in memory where the machine has such a place.
class Folder
{
public:
    Folder()
    {
        const fs::path shared = "/dev/shm";
        const fs::path above = fs::exists(shared) ? shared : fs::temp_directory_path();
        path = above / ("fuzz_tiff_file." + std::to_string(getpid()));
        fs::create_directories(path);
        Write(path / "pattern.txt", patternText, std::char_traits<char>::length(patternText));
    }
    ~Folder() { fs::remove_all(path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string Name(const char* file) const { return (path / file).string(); }

private:
    fs::path path;
};

// Takes a choice from one byte after the other.
class Choices
{
public:
    Choices(const std::uint8_t* newBytes, std::size_t newCount) : bytes(newBytes), count(newCount)
    {}

    // Adds one of these; an empty one adds nothing.
    void Add(Words& words, std::initializer_list<Words> offers)
    {
        const std::size_t chosen = count == 0 ? 0 : *bytes % offers.size();
        if (count != 0) {
            ++bytes;
            --count;
        }
        const Words& more = offers.begin()[chosen];
        words.insert(words.end(), more.begin(), more.end());
    }

private:
    const std::uint8_t* bytes;
    std::size_t count;
};

Words ConvertLine(Choices& choices, const Folder& folder)
{
    Words words{"convert", folder.Name("in"), folder.Name("out")};
    choices.Add(words, {{}, {"--layout", "planar"}, {"--layout", "interleaved"}});
    choices.Add(words, {{}, {"--bits", "8"}, {"--bits", "1"}, {"--bits", "2"}, {"--bits", "16"}});
    choices.Add(
        words,
        {{}, {"--mirror"}, {"--repeat", "2"}, {"--repeat", "4", "--mirror"}, {"--portable"}});
    choices.Add(words, {{}, {"--channels", "0"}, {"--channels", "2,-,1,0"}, {"--tones", "raw"}});
    choices.Add(words, {{"--threads", "1"}, {"--threads", "2", "--explain"}});
    return words;
}

Words SimulateLine(Choices& choices, const Folder& folder)
{
    Words words{"simulate", folder.Name("pattern.txt"), folder.Name("in"), folder.Name("out")};
    choices.Add(words, {{}, {"--engine", "reference"}, {"--engine", "x86"}});
    choices.Add(words, {{}, {"--levels", "raw"}});
    choices.Add(words, {{}, {"--preview", folder.Name("preview")}});
    choices.Add(words, {{"--threads", "1"}, {"--threads", "2", "--explain"}});
    return words;
}

Words PatternLine(Choices& choices, const Folder& folder)
{
    Words words{"pattern", folder.Name("in")};
    choices.Add(words, {{}, {"--json"}, {"--plot", folder.Name("out")}});
    return words;
}

[[noreturn]] void Fail(const Words& words, const std::string& what)
{
    for (const std::string& word : words)
        std::fprintf(stderr, "%s ", word.c_str());
    std::fprintf(stderr, "\n%s\n", what.c_str());
    std::abort();
}

int Run(const Words& words)
{
    std::vector<const char*> arguments{"pelkraft"};
    for (const std::string& word : words)
        arguments.push_back(word.c_str());
    return RunProgram(static_cast<int>(arguments.size()), arguments.data());
}

bool IsReadableTiff(const std::string& path)
{
    TIFF* tiff = TIFFOpen(path.c_str(), "r");
    if (tiff != nullptr)
        TIFFClose(tiff);
    return tiff != nullptr;
}

void Check(const Words& words, const Folder& folder)
{
    const int code = Run(words);
    // Only the file can say whether it has these channels.
    const bool namesChannels = std::find(words.begin(), words.end(), "--channels") != words.end();
    if (code == static_cast<int>(ExitCode::Usage) && !namesChannels)
        Fail(words, "a command line of ours is refused");
    if (code < 0 || code > static_cast<int>(ExitCode::Memory))
        Fail(words, "ended with " + std::to_string(code));
    const std::string out = folder.Name("out");
    const bool done = code <= static_cast<int>(ExitCode::Warnings);
    const bool written = fs::exists(out);
    if (words.front() != "pattern" && (written != done || (done && !IsReadableTiff(out))))
        Fail(words, "ended with " + std::to_string(code) + ", and its new file doesn't agree");
    fs::remove(out);
    fs::remove(folder.Name("preview"));
    for (const auto& entry : fs::directory_iterator(fs::path(out).parent_path())) {
        if (entry.path().filename() != "in" && entry.path().filename() != "pattern.txt")
            Fail(words, "left " + entry.path().string());
    }
}

} // namespace
} // namespace zvk::Pelkraft::Client

// Six bytes choose verb and options; the file follows them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    using namespace zvk::Pelkraft::Client;
    constexpr std::size_t choiceBytes = 6;
    if (count < choiceBytes)
        return -1;
    static const Folder folder;
    Write(folder.Name("in"), bytes + choiceBytes, count - choiceBytes);
    Choices choices(bytes + 1, choiceBytes - 1);
    switch (bytes[0] % 4) {
    case 0:
        Check(SimulateLine(choices, folder), folder);
        break;
    case 1:
        Check(PatternLine(choices, folder), folder);
        break;
    default:
        Check(ConvertLine(choices, folder), folder);
    }
    return 0;
}
