#include "tools/pelkraft/warning_counts.h"

#include "tools/pelkraft/failure.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {

void WarningCounts::Add(const std::string& text)
{
    const auto known = std::find_if(kinds.begin(), kinds.end(),
                                    [&text](const auto& kind) { return kind.first == text; });
    if (known == kinds.end())
        kinds.emplace_back(text, 1);
    else
        ++known->second;
}

void WarningCounts::Print(const std::string& file) const
{
    for (const auto& [text, pages] : kinds)
        PrintWarning(file,
                     text + " (" + std::to_string(pages) + (pages == 1 ? " page)" : " pages)"));
}

} // namespace zvk::Pelkraft::Client
