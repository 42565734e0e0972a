#include "fuzz/verb_folder.h"

#include "tools/pelkraft/exit_code.h"
#include "tools/pelkraft/program.h"

#include <tiffio.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

namespace zvk::Pelkraft::Client {
namespace {

namespace fs = std::filesystem;

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

// Files of the folder that no run makes.
constexpr const char* givenFiles[] = {"in", "pattern.txt", "plate"};

void Write(const std::string& path, const void* bytes, std::size_t count)
{
    std::ofstream(path, std::ios::binary)
        .write(static_cast<const char*>(bytes), static_cast<std::streamsize>(count));
}

// A plate of 8 bits, as wide and as high as some of the corpus.
void WritePlate(const std::string& path)
{
    constexpr std::uint32_t side = 16;
    TIFF* tiff = TIFFOpen(path.c_str(), "w");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, side);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, side);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    std::uint8_t row[side] = {};
    for (std::uint32_t y = 0; y < side; ++y)
        TIFFWriteScanline(tiff, row, y, 0);
    TIFFClose(tiff);
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

// A picture that begins as a TIFF file opens as one; no new file is empty.
bool IsReadable(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::string start(4, '\0');
    file.read(start.data(), 4);
    if (!start.starts_with("II") && !start.starts_with("MM"))
        return file.gcount() > 0;
    TIFF* tiff = TIFFOpen(path.c_str(), "r");
    if (tiff != nullptr)
        TIFFClose(tiff);
    return tiff != nullptr;
}

// Only the file can say whether it has the pages or the channels that these options name.
bool AsksTheFile(const Words& words)
{
    const Words asking = {"--channels", "--page",        "--inks",   "--dot-range", "--order",
                          "--crop",     "--print-order", "--origin", "--window"};
    return std::any_of(words.begin(), words.end(), [&](const std::string& word) {
        return std::find(asking.begin(), asking.end(), word) != asking.end();
    });
}

bool WritesAlways(const std::string& verb)
{
    return verb == "convert" || verb == "simulate" || verb == "join" || verb == "preview";
}

} // namespace

VerbFolder::VerbFolder()
{
    const fs::path shared = "/dev/shm";
    const fs::path above = fs::exists(shared) ? shared : fs::temp_directory_path();
    path = (above / ("fuzz_verb." + std::to_string(getpid()))).string();
    fs::create_directories(path);
    Write(Name("pattern.txt"), patternText, std::char_traits<char>::length(patternText));
    WritePlate(Name("plate"));
}

VerbFolder::~VerbFolder()
{
    fs::remove_all(path);
}

void VerbFolder::WriteInput(const std::uint8_t* bytes, std::size_t count) const
{
    Write(Name("in"), bytes, count);
}

std::vector<std::string> VerbFolder::NewFiles() const
{
    std::vector<std::string> files;
    for (const auto& entry : fs::directory_iterator(path)) {
        const std::string name = entry.path().filename().string();
        if (std::find(std::begin(givenFiles), std::end(givenFiles), name) == std::end(givenFiles))
            files.push_back(entry.path().string());
    }
    return files;
}

void VerbFolder::Check(const Words& words) const
{
    const int code = Run(words);
    if (code == static_cast<int>(ExitCode::Usage) && !AsksTheFile(words))
        Fail(words, "a command line of ours is refused");
    if (code < 0 || code > static_cast<int>(ExitCode::Memory))
        Fail(words, "ended with " + std::to_string(code));
    const bool done = code <= static_cast<int>(ExitCode::Warnings);
    const std::vector<std::string> files = NewFiles();
    if (!files.empty() && !done)
        Fail(words, "ended with " + std::to_string(code) + " and left " + files.front());
    if (done && WritesAlways(words.front()) && !fs::exists(Name("out")))
        Fail(words, "ended with " + std::to_string(code) + " without its new file");
    for (const std::string& file : files) {
        if (!IsReadable(file))
            Fail(words, file + " can't be read");
        fs::remove(file);
    }
}

void Choices::Add(Words& words, std::initializer_list<Words> offers)
{
    const std::size_t chosen = count == 0 ? 0 : *bytes % offers.size();
    if (count != 0) {
        ++bytes;
        --count;
    }
    const Words& more = offers.begin()[chosen];
    words.insert(words.end(), more.begin(), more.end());
}

} // namespace zvk::Pelkraft::Client
