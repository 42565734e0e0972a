#include "tools/pelkraft/option_values.h"

#include <CLI/CLI.hpp>

#include <regex>

namespace zvk::Pelkraft::Client {
namespace {

std::vector<std::string> SplitAtCommas(const std::string& text)
{
    std::vector<std::string> pieces;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        pieces.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return pieces;
}

} // namespace

std::string OptionValues::Words() const
{
    if (!least.empty())
        return least + " to " + most;
    return Enumerated(names);
}

std::string OptionValues::Sign() const
{
    if (!least.empty())
        return least + ".." + most;
    return Joined(names, "|");
}

// The parser keeps what a check declares in the name of the option's type alone.
OptionValues ValuesOf(const CLI::Option& option)
{
    const std::string type = option.get_type_name();
    OptionValues values;
    const std::size_t open = type.find('{');
    const std::size_t shut = type.rfind('}');
    if (open != std::string::npos && shut != std::string::npos && shut > open)
        values.names = SplitAtCommas(type.substr(open + 1, shut - open - 1));
    static const std::regex range(R"(in \[(\S+) - (\S+)\])");
    std::smatch ends;
    if (std::regex_search(type, ends, range)) {
        values.least = ends[1];
        values.most = ends[2];
    }
    return values;
}

std::string Joined(const std::vector<std::string>& names, const std::string& between)
{
    std::string joined;
    for (const std::string& name : names)
        joined.append(joined.empty() ? "" : between).append(name);
    return joined;
}

std::string Enumerated(const std::vector<std::string>& names)
{
    if (names.size() < 2)
        return Joined(names, "");
    const std::vector<std::string> first(names.begin(), names.end() - 1);
    return Joined(first, ", ") + " and " + names.back();
}

} // namespace zvk::Pelkraft::Client
