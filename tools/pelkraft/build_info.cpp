#include "tools/pelkraft/build_info.h"

#include "zvk/system_tools.h"

#include <CLI/CLI.hpp>
#include <png.h>
#include <tiffio.h>

#include <array>
#include <sstream>
#include <string>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* versionLine = "pelkraft " PELKRAFT_VERSION;

#if defined(PELKRAFT_VECTOR_ROAD)
constexpr const char* vectorRoad = "built in, taken from level 3 on";
#else
constexpr const char* vectorRoad = "not built";
#endif

// The library that runs, which need not be the one whose headers were there at the build.
std::string TiffVersion()
{
    // "LIBTIFF, Version 4.5.0", and lines of its own after it.
    std::istringstream text(TIFFGetVersion());
    std::string word;
    text >> word >> word >> word;
    return word;
}

std::string BuildInfo()
{
    std::string text = versionLine;
    text += "\ncompiler         " PELKRAFT_COMPILER;
    text += "\nbuild type       " PELKRAFT_BUILD_TYPE;
    text += "\nvector road      " + std::string(vectorRoad);
    text += "\nprocessor level  " + LevelText();
    text += "\nlibtiff          " + TiffVersion();
    text += "\nlibpng           " + std::string(png_get_libpng_ver(nullptr));
    return text;
}

} // namespace

std::string LevelText()
{
    constexpr std::array<const char*, 8> names = {"none",   "SSE",    "SSE2", "SSSE3",
                                                  "SSE4.1", "SSE4.2", "AVX2", "AVX-512"};
    const int level = SystemTools::GetSseVersion();
    return std::to_string(level) + ", " + names.at(static_cast<std::size_t>(level));
}

void AddBuildInfo(CLI::App& program)
{
    program.set_version_flag("--version", versionLine, "Print the version and exit");
    program.add_flag_callback(
        "--buildinfo", [] { throw CLI::CallForVersion(BuildInfo(), 0); },
        "Print how the program was built and what it runs on, and exit");
}

} // namespace zvk::Pelkraft::Client
