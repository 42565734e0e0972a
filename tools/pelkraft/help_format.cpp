#include "tools/pelkraft/help_format.h"

#include "tools/pelkraft/option_values.h"

#include <CLI/CLI.hpp>

#include <string>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::size_t helpColumns = 100;
constexpr std::size_t namesColumns = 30;

// Breaks a text between words, so that each line ends before the last column of the help.
std::string Wrapped(const std::string& text)
{
    const std::string indent(namesColumns, ' ');
    std::string lines;
    std::size_t column = namesColumns;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const bool first = column == namesColumns;
        if (!first && column + 1 + word.size() > helpColumns) {
            lines += '\n' + indent;
            column = namesColumns;
        } else if (!first) {
            lines += ' ';
            ++column;
        }
        lines += word;
        column += word.size();
    }
    return lines;
}

std::string Entry(const std::string& name, const std::string& text)
{
    std::string entry = "  " + name;
    if (entry.size() + 1 >= namesColumns)
        entry += '\n' + std::string(namesColumns, ' ');
    else
        entry.resize(namesColumns, ' ');
    return entry + Wrapped(text) + '\n';
}

std::string NamesOf(const CLI::Option& option)
{
    std::string names;
    for (const std::string& name : option.get_snames())
        names.append(names.empty() ? "-" : ", -").append(name);
    for (const std::string& name : option.get_lnames())
        names.append(names.empty() ? "--" : ", --").append(name);
    return names;
}

std::string ValueOf(const CLI::Option& option)
{
    if (!option.get_option_text().empty())
        return ' ' + option.get_option_text();
    if (option.get_type_size() == 0)
        return {};
    const std::string sign = ValuesOf(option).Sign();
    if (!sign.empty())
        return ' ' + sign;
    const std::string type = option.get_type_name();
    return type.empty() ? std::string() : ' ' + type;
}

// Parentheses after a description.
std::string Remarks(const CLI::Option& option)
{
    std::string remarks;
    for (const CLI::Option* needed : option.get_needs())
        remarks += " (with " + needed->get_name() + ")";
    for (const CLI::Option* excluded : option.get_excludes())
        remarks += " (not with " + excluded->get_name() + ")";
    if (option.get_type_size() != 0 && !option.get_default_str().empty())
        remarks += " (default: " + option.get_default_str() + ")";
    return remarks;
}

class HelpFormat final : public CLI::Formatter
{
public:
    std::string make_help(const CLI::App* verb, std::string name,
                          CLI::AppFormatMode mode) const override
    {
        // The parser's own form leaves two lines empty between groups.
        return CLI::detail::find_and_replace(Formatter::make_help(verb, std::move(name), mode),
                                             "\n\n\n", "\n\n");
    }

    std::string make_option(const CLI::Option* option, bool isPositional) const override
    {
        if (!isPositional)
            return Entry(NamesOf(*option) + ValueOf(*option),
                         option->get_description() + Remarks(*option));
        const bool several = option->get_expected_max() >= CLI::detail::expected_max_vector_size;
        return Entry(option->get_name(true) + (several ? "..." : ""), option->get_description());
    }

    std::string make_subcommand(const CLI::App* verb) const override
    {
        return Entry(verb->get_name(), verb->get_description());
    }
};

} // namespace

std::shared_ptr<CLI::FormatterBase> MakeHelpFormat()
{
    return std::make_shared<HelpFormat>();
}

} // namespace zvk::Pelkraft::Client
