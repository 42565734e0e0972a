#pragma once

#include "tools/pelkraft/page_groups.h"

#include <map>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// While it lives, warnings are kept with the page that they came up at. At the end there is one
// line for each kind of them, with its count.
class PageWarnings
{
public:
    explicit PageWarnings(bool newSeveralPages);
    ~PageWarnings();
    PageWarnings(const PageWarnings&) = delete;
    PageWarnings& operator=(const PageWarnings&) = delete;

    void StartPage(int newPage) { page = newPage; }

    // False where nobody keeps warnings.
    static bool Keep(const std::string& file, const std::string& text);

private:
    static PageWarnings* latest;
    PageWarnings* earlier;
    bool severalPages;
    int page = 1;
    // By files, in the order of their names.
    std::map<std::string, PageGroups> kept;
};

} // namespace zvk::Pelkraft::Client
