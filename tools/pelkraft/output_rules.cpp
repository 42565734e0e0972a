#include "tools/pelkraft/output_rules.h"

#include "tools/pelkraft/failure.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <vector>

namespace zvk::Pelkraft::Client {
namespace {

struct Format
{
    const char* name;
    const char* ending;
};

// By FileKind, with the ending to suggest.
constexpr Format written[] = {{"", ""},          {"TIFF", ".tif"}, {"PNG", ".png"}, {"SVG", ".svg"},
                              {"JSON", ".json"}, {"CSV", ".csv"},  {"text", ".txt"}};

// Several endings may stand for one name.
constexpr Format known[] = {{"TIFF", ".tif"},
                            {"TIFF", ".tiff"},
                            {"PNG", ".png"},
                            {"SVG", ".svg"},
                            {"JSON", ".json"},
                            {"JSON", ".sarif"},
                            {"CSV", ".csv"},
                            {"text", ".txt"},
                            {"JPEG", ".jpg"},
                            {"JPEG", ".jpeg"},
                            {"JPEG", ".jpe"},
                            {"JPEG", ".jfif"},
                            {"JPEG 2000", ".jp2"},
                            {"JPEG XL", ".jxl"},
                            {"GIF", ".gif"},
                            {"BMP", ".bmp"},
                            {"WebP", ".webp"},
                            {"AVIF", ".avif"},
                            {"HEIF", ".heic"},
                            {"PDF", ".pdf"},
                            {"PostScript", ".ps"},
                            {"PostScript", ".eps"},
                            {"a layered picture", ".psd"},
                            {"PNM", ".pbm"},
                            {"PNM", ".pgm"},
                            {"PNM", ".ppm"},
                            {"PNM", ".pam"}};

std::string EndingOf(const std::string& path)
{
    const std::size_t name = path.find_last_of("/\\") + 1;
    const std::size_t dot = path.find_last_of('.');
    if (dot == std::string::npos || dot <= name)
        return {};
    std::string ending = path.substr(dot);
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return ending;
}

struct NotedInput
{
    FileIdentity identity;
    FileKind kind;

    bool operator==(const NotedInput&) const = default;
};

std::vector<NotedInput>& Inputs()
{
    static std::vector<NotedInput> inputs;
    return inputs;
}

} // namespace

void RefuseOtherEnding(const std::string& path, FileKind kind)
{
    if (kind == FileKind::Any)
        return;
    const std::string ending = EndingOf(path);
    const std::string name = written[static_cast<std::size_t>(kind)].name;
    const auto* const found =
        std::find_if(std::begin(known), std::end(known),
                     [&](const Format& format) { return ending == format.ending; });
    if (found == std::end(known) || found->name == name)
        return;
    throw Failure(ExitCode::Usage, path,
                  (name == "SVG" ? "would be an " : "would be a ") + name +
                      " file under an ending that says " + found->name + "; give it the ending " +
                      written[static_cast<std::size_t>(kind)].ending);
}

void NoteInput(const FileIdentity& identity, FileKind kind)
{
    const NotedInput input = {identity, kind};
    if (std::find(Inputs().begin(), Inputs().end(), input) == Inputs().end())
        Inputs().push_back(input);
}

void RefuseInput(const std::string& path, const FileIdentity& identity, FileKind kind)
{
    const auto found = std::find_if(Inputs().begin(), Inputs().end(), [&](const NotedInput& input) {
        return input.identity == identity && input.kind != kind;
    });
    if (found != Inputs().end())
        throw Failure(
            ExitCode::Usage, path,
            std::string("is read as ") + written[static_cast<std::size_t>(found->kind)].name +
                " and can't be written as " + written[static_cast<std::size_t>(kind)].name +
                " too; name another file for the output");
}

void ForgetInputs()
{
    Inputs().clear();
}

} // namespace zvk::Pelkraft::Client
