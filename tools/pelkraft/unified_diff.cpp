#include "tools/pelkraft/unified_diff.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::size_t contextLines = 3;

// With their ends.
std::vector<std::string_view> LinesOf(std::string_view text)
{
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return lines;
}

std::string Marked(char mark, std::string_view line)
{
    std::string marked = mark + std::string(line);
    if (line.back() != '\n')
        marked += "\n\\ No newline at end of file\n";
    return marked;
}

class Differ
{
public:
    Differ(std::string_view oldText, std::string_view newText)
        : oldLines(LinesOf(oldText)), newLines(LinesOf(newText))
    {}

    std::string Hunks()
    {
        std::string hunks;
        for (std::size_t line = NextChange(0); line < Count(); line = NextChange(line)) {
            const std::size_t first = line - std::min(line, contextLines);
            // Changes whose surroundings meet share a hunk.
            std::size_t end = line;
            while (line < Count() && line <= end + 1 + 2 * contextLines) {
                end = line;
                line = NextChange(line + 1);
            }
            end = std::min(end + 1 + contextLines, Count());
            hunks += Hunk(first, end);
            line = end;
        }
        return hunks;
    }

private:
    std::size_t Count() const { return std::min(oldLines.size(), newLines.size()); }

    std::size_t NextChange(std::size_t line) const
    {
        while (line < Count() && oldLines[line] == newLines[line])
            ++line;
        return line;
    }

    std::string Hunk(std::size_t first, std::size_t end) const
    {
        const std::string range = std::to_string(first + 1) + "," + std::to_string(end - first);
        std::string hunk = "@@ -" + range + " +" + range + " @@\n";
        for (std::size_t line = first; line < end;) {
            if (oldLines[line] == newLines[line]) {
                hunk += Marked(' ', oldLines[line++]);
                continue;
            }
            const std::size_t start = line;
            for (; line < end && oldLines[line] != newLines[line]; ++line)
                hunk += Marked('-', oldLines[line]);
            for (std::size_t added = start; added < line; ++added)
                hunk += Marked('+', newLines[added]);
        }
        return hunk;
    }

    std::vector<std::string_view> oldLines;
    std::vector<std::string_view> newLines;
};

} // namespace

std::string UnifiedDiff(const std::string& path, std::string_view oldText, std::string_view newText)
{
    const std::string hunks = Differ(oldText, newText).Hunks();
    return hunks.empty() ? hunks : "--- " + path + "\n+++ " + path + "\n" + hunks;
}

} // namespace zvk::Pelkraft::Client
