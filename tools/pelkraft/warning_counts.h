#pragma once

#include <string>
#include <utility>
#include <vector>

namespace zvk::Pelkraft::Client {

// Warnings about the pages of a file, each kind once, with the number of pages that it is about.
class WarningCounts
{
public:
    // Each page names a kind at most once.
    void Add(const std::string& text);
    void Print(const std::string& file) const;

private:
    // In the order in which the kinds came.
    std::vector<std::pair<std::string, int>> kinds;
};

} // namespace zvk::Pelkraft::Client
