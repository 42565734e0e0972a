#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// A text, and the pages that it is about, in rising order.
struct PageGroup
{
    std::string text;
    std::vector<int> pages;
};

// Brings together the pages that have the same to say.
class PageGroups
{
public:
    void Add(int page, const std::string& text);
    bool Has(const std::string& text) const { return places.contains(text); }
    // In the order of their first pages.
    const std::vector<PageGroup>& All() const { return groups; }

private:
    std::vector<PageGroup> groups;
    std::map<std::string, std::size_t> places;
};

// "page 3", "pages 1, 4-5".
std::string PageLabel(const std::vector<int>& pages);

// The plans of pages, each after the label of its pages.
std::string PlanText(const PageGroups& plans);

// Tells of each group who asks for notes.
void NotePages(const std::string& file, const PageGroups& groups);

// The start of a warning: the page, or the number of pages where nobody asked for more; nothing if
// the file has a single page.
std::string PageCountWords(const std::vector<int>& pages, bool severalPages);

} // namespace zvk::Pelkraft::Client
