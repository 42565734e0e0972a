#include "tools/pelkraft/output_rules.h"

#include "tools/pelkraft/failure.h"

#include <algorithm>
#include <cctype>
#include <iterator>

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
                  "would be a " + name + " file under an ending that says " + found->name +
                      "; give it the ending " + written[static_cast<std::size_t>(kind)].ending);
}

} // namespace zvk::Pelkraft::Client
