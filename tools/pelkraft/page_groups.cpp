#include "tools/pelkraft/page_groups.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/message_style.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {

void PageGroups::Add(int page, const std::string& text)
{
    const auto [place, isNew] = places.try_emplace(text, groups.size());
    if (isNew)
        groups.push_back({text, {}});
    std::vector<int>& pages = groups[place->second].pages;
    const auto at = std::lower_bound(pages.begin(), pages.end(), page);
    if (at == pages.end() || *at != page)
        pages.insert(at, page);
}

std::string PageLabel(const std::vector<int>& pages)
{
    std::string label = pages.size() == 1 ? "page " : "pages ";
    for (std::size_t first = 0, next = 0; first < pages.size(); first = next) {
        next = first + 1;
        while (next < pages.size() && pages[next] == pages[next - 1] + 1)
            ++next;
        label += (first == 0 ? "" : ", ") + std::to_string(pages[first]);
        if (next - first > 1)
            label += '-' + std::to_string(pages[next - 1]);
    }
    return label;
}

std::string PlanText(const PageGroups& plans)
{
    std::string text;
    for (const PageGroup& group : plans.All())
        text += PageLabel(group.pages) + group.text;
    return text;
}

void NotePages(const std::string& file, const PageGroups& groups)
{
    for (const PageGroup& group : groups.All())
        PrintNote(file, PageLabel(group.pages) + ": " + group.text);
}

std::string PageCountWords(const std::vector<int>& pages, bool severalPages)
{
    if (!severalPages || pages.empty())
        return {};
    if (pages.size() == 1 || GetMessageStyle().verbose)
        return PageLabel(pages) + ": ";
    return std::to_string(pages.size()) + " pages: ";
}

} // namespace zvk::Pelkraft::Client
