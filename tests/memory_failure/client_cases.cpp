#include "tests/memory_failure/client_runs.h"

#include "tests/tools/pattern_texts.h"

namespace zvk::Pelkraft::TestSupport {
namespace {

using WritePicture = std::function<void(const std::string& path)>;

// A third generation of smallPattern, which has two combinations.
constexpr const char* shuffledPattern = R"(DotWeavePattern
VERSION 3
BEGIN_OUT_INKS Cyan Black END_OUT_INKS
BEGIN_IN_COLORS Cyan Black END_IN_COLORS
BEGIN_IN_COLOR Cyan BEGIN_INKS Cyan END_INKS
BEGIN_VALUES 1 1:3 0-10 0-40 END_VALUES END_IN_COLOR
BEGIN_IN_COLOR Black BEGIN_INKS Black END_INKS
BEGIN_VALUES 1 1 0-200 END_VALUES END_IN_COLOR
)";

// Step 2 is missing, which the reference engine alone puts up with.
constexpr const char* brokenPattern = R"(DotWeavePattern
VERSION 2
BEGIN_OUT_INKS Cyan END_OUT_INKS
BEGIN_IN_COLORS Cyan END_IN_COLORS
BEGIN_IN_COLOR Cyan BEGIN_INKS Cyan END_INKS
BEGIN_VALUES 1 1 0-10 3 1 0-40 END_VALUES END_IN_COLOR
)";

void SetDocumentTags(TIFF* tiff)
{
    const std::string profile(700, 'p');
    TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(profile.size()),
                 profile.data());
    TIFFSetField(tiff, TIFFTAG_XMLPACKET, std::uint32_t{12}, "<packet></p>");
    TIFFSetField(tiff, TIFFTAG_DOCUMENTNAME, "a document");
    TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, "a description");
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 600.0);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 300.0);
}

WritePicture Picture(int width, int height, int channels, int bits, const FileForm& form)
{
    return [=](const std::string& path) {
        WriteTiff(path, RandomImage(width, height, channels, bits, 5), form);
    };
}

FileForm Compressed(int compression, bool separate = false, int tile = 0)
{
    FileForm form;
    form.compression = compression;
    form.separate = separate;
    form.tile = tile;
    return form;
}

FileForm WithTags(int photometric)
{
    FileForm form;
    form.photometric = photometric;
    form.setTags = SetDocumentTags;
    return form;
}

// Five inks with names, of which the last is an extra sample to libtiff.
FileForm Inks()
{
    FileForm form;
    form.photometric = PHOTOMETRIC_SEPARATED;
    form.setTags = [](TIFF* tiff) {
        constexpr char names[] = "Cyan\0Magenta\0Yellow\0Black\0Gold";
        TIFFSetField(tiff, TIFFTAG_INKSET, INKSET_MULTIINK);
        TIFFSetField(tiff, TIFFTAG_INKNAMES, static_cast<int>(sizeof names), names);
        SetDocumentTags(tiff);
    };
    return form;
}

WritePicture TwoPages(const FileForm& form)
{
    return [=](const std::string& path) {
        WriteTiffPages(path, {RandomImage(20, 9, 2, 8, 1), RandomImage(10, 5, 2, 8, 2)}, form);
    };
}

std::vector<std::string> Convert(std::vector<std::string> options)
{
    options.insert(options.begin(), {"convert", "IN.tif", "OUT.tif"});
    return options;
}

std::vector<std::string> Simulate(std::vector<std::string> options)
{
    options.insert(options.begin(), {"simulate", "PATTERN", "IN.tif", "OUT.tif"});
    return options;
}

void AddConversions(std::vector<ClientCase>& cases)
{
    const auto add = [&](const char* name, const std::vector<std::string>& options,
                         const WritePicture& picture, int code = 0) {
        cases.push_back({name, Convert(options), code, picture, nullptr});
    };
    const WritePicture rgb = Picture(40, 30, 3, 8, WithTags(PHOTOMETRIC_RGB));
    add("ConvertToPlanes", {"--layout", "planar", "--threads", "1"}, rgb);
    add("ConvertPortable", {"--bits", "16", "--portable", "--threads", "1"}, rgb);
    add("ConvertExplained", {"--bits", "1", "--explain", "--threads", "1"}, rgb);
    add("ConvertCutSamples", {"--bits", "2", "--tones", "raw", "--threads", "1"}, rgb, 1);
    add("ConvertOnThreads", {"--layout", "planar", "--threads", "4"}, rgb);
    add("ConvertInks", {"--channels", "Gold,Black,-,0", "--repeat", "2", "--threads", "1"},
        Picture(40, 30, 5, 8, Inks()));
    add("ConvertMirrorsPackedPlanes", {"--mirror", "--threads", "1"},
        Picture(70, 9, 3, 1, Compressed(COMPRESSION_PACKBITS, true)));
    add("ConvertWovenBits", {"--bits", "8", "--layout", "interleaved", "--threads", "2"},
        Picture(70, 9, 3, 2, Compressed(COMPRESSION_NONE)));
    add("ConvertTiles", {"--layout", "planar", "--threads", "1"},
        Picture(40, 30, 3, 8, Compressed(COMPRESSION_LZW, false, 16)));
    add("ConvertDeflatedPages", {"--repeat", "4", "--mirror", "--threads", "1"},
        TwoPages(Compressed(COMPRESSION_ADOBE_DEFLATE, true)));
    cases.back().mayCompressElse = true;
    FileForm jpeg = Compressed(COMPRESSION_JPEG);
    jpeg.rowsPerStrip = 16;
    add("ConvertJpeg", {"--bits", "16", "--threads", "1"}, Picture(48, 32, 1, 8, jpeg));
    add("ConvertFax", {"--mirror", "--threads", "1"},
        Picture(64, 20, 1, 1, Compressed(COMPRESSION_CCITTFAX4)));
    add(
        "ConvertDamaged", {"--threads", "1"},
        [](const std::string& path) {
            WriteTiff(path, RandomImage(40, 30, 3, 8, 5), Compressed(COMPRESSION_LZW));
            std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
        },
        3);
    add("ConvertUnknownChannel", {"--channels", "Gold"}, rgb, 2);
    add("ConvertUnservedDepth", {}, Picture(10, 3, 1, 4, {}), 5);
}

void AddPatterns(std::vector<ClientCase>& cases)
{
    cases.push_back({"PatternExplained", {"pattern", "PATTERN"}, 0, {}, smallPattern});
    cases.push_back({"PatternAsJson", {"pattern", "PATTERN", "--json"}, 0, {}, smallPattern});
    cases.push_back(
        {"PatternPlotted", {"pattern", "PATTERN", "--plot", "SVG"}, 0, {}, shuffledPattern});
    cases.push_back({"PatternWithFindings", {"pattern", "PATTERN"}, 1, {}, brokenPattern});
    cases.push_back({"PatternRefusedAsJson", {"pattern", "PATTERN", "--json"}, 4, {}, ""});
}

void AddSimulations(std::vector<ClientCase>& cases)
{
    FileForm form;
    form.photometric = PHOTOMETRIC_SEPARATED;
    const WritePicture inks = Picture(40, 30, 2, 8, form);
    const auto add = [&](const char* name, const std::vector<std::string>& options,
                         const char* pattern, int code = 0) {
        cases.push_back({name, Simulate(options), code, inks, pattern});
    };
    add("SimulateByReference", {"--engine", "reference"}, smallPattern);
    add("SimulateByX86", {"--engine", "x86", "--threads", "1"}, smallPattern);
    add("SimulateBySse", {"--engine", "sse", "--threads", "1", "--explain"}, smallPattern);
    add("SimulateShuffledByX86", {"--engine", "x86", "--threads", "2"}, shuffledPattern);
    add("SimulateShuffledBySse", {"--engine", "sse", "--threads", "2"}, shuffledPattern);
    add("SimulateWithPreview", {"--preview", "PNG", "--ink", "Cyan=#00AAFF", "--threads", "3"},
        smallPattern);
    add("SimulateRaw", {"--levels", "raw", "--threads", "1"}, smallPattern, 1);
    add("SimulateRefused", {"--threads", "1"}, brokenPattern, 4);
    cases.push_back({"SimulatePages", Simulate({"--preview", "PNG", "--threads", "1"}), 0,
                     TwoPages(form), smallPattern});
}

} // namespace

const std::vector<ClientCase>& ClientCases()
{
    static const std::vector<ClientCase> cases = [] {
        std::vector<ClientCase> all;
        AddConversions(all);
        AddPatterns(all);
        AddSimulations(all);
        all.push_back({"Help", {"convert", "--help"}, 0, {}, nullptr});
        all.push_back({"BuildInfo", {"--buildinfo"}, 0, {}, nullptr});
        all.push_back({"WrongUsage", {"convert", "--bits", "4"}, 2, {}, nullptr});
        all.push_back({"MissingInput", {"convert", "IN.tif", "OUT.tif"}, 6, {}, nullptr});
        return all;
    }();
    return cases;
}

} // namespace zvk::Pelkraft::TestSupport
