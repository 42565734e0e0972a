#include "tools/pelkraft/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::size_t usualColumns = 80;

std::string_view Variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string_view() : std::string_view(value);
}

} // namespace

bool ErrorsAreSeen()
{
    return isatty(STDERR_FILENO) != 0 && Variable("TERM") != "dumb";
}

std::size_t ErrorColumns()
{
    winsize size = {};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0)
        return size.ws_col;
    const std::string_view text = Variable("COLUMNS");
    std::size_t columns = 0;
    std::from_chars(text.data(), text.data() + text.size(), columns);
    return columns != 0 ? columns : usualColumns;
}

bool ErrorsTakeColours()
{
    return ErrorsAreSeen() && !Variable("TERM").empty() && Variable("NO_COLOR").empty();
}

void WipeLine()
{
    std::fputs("\r\033[K", stderr);
}

} // namespace zvk::Pelkraft::Client
