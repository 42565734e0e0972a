#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The two spellings of a plate's file name: page(Cyan).tif and page.Cyan.tif.
enum class PlateNaming
{
    Parentheses,
    Dot,
};

// A file name, taken apart.
struct PlateName
{
    // All before the ink: folder, page and its number.
    std::string base;
    // The same without the folder.
    std::string page;
    std::string ink;
};

// Reads either spelling, with %XX for any byte of the ink; nothing where the name tells no ink.
std::optional<PlateName> ReadPlateName(const std::string& path);

// A file for each ink, named base and ink. No two of the names are equal in any case of letters,
// and none has a folder of its own. Inks of the same name are refused, and names too long for a
// file.
std::vector<std::string> PlatePaths(const std::string& base, const std::vector<std::string>& inks,
                                    PlateNaming naming);

// The order of inks in a joined page, as places in inks: first those of the list, which is
// separated by commas, then cyan, magenta, yellow and black, then all others by name. A name in
// the list that is no ink is wrong usage.
std::vector<std::size_t> PlateOrder(const std::vector<std::string>& inks, const std::string& list);

// True for cyan, magenta, yellow and black in this order and no more.
bool AreProcessInks(const std::vector<std::string>& inks);

// True where the first comes before the second: page2 before page10.
bool NumbersBefore(const std::string& left, const std::string& right);

} // namespace zvk::Pelkraft::Client
