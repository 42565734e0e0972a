#include "tools/pelkraft/page_warnings.h"

#include "tools/pelkraft/failure.h"

namespace zvk::Pelkraft::Client {

PageWarnings* PageWarnings::latest = nullptr;

PageWarnings::PageWarnings(bool newSeveralPages) : earlier(latest), severalPages(newSeveralPages)
{
    latest = this;
}

PageWarnings::~PageWarnings()
{
    latest = earlier;
    for (const auto& [file, groups] : kept) {
        for (const PageGroup& group : groups.All())
            PrintWarning(file, PageCountWords(group.pages, severalPages) + group.text);
    }
}

bool PageWarnings::Keep(const std::string& file, const std::string& text)
{
    if (latest == nullptr)
        return false;
    latest->kept[file].Add(latest->page, text);
    return true;
}

} // namespace zvk::Pelkraft::Client
