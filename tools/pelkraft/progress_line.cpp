#include "tools/pelkraft/progress_line.h"

#include "tools/pelkraft/json.h"
#include "tools/pelkraft/shown_text.h"

#include <cmath>
#include <cstdio>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* programName = "pelkraft: ";
constexpr const char* cutMark = "...";
// A label that has less room than this tells nothing.
constexpr std::size_t leastLabelColumns = 12;

double RateOf(const ProgressState& state)
{
    return state.seconds > 0 ? static_cast<double>(state.rows) / state.seconds : 0;
}

double SecondsLeft(const ProgressState& state)
{
    const double rate = RateOf(state);
    return rate > 0 ? static_cast<double>(state.allRows - state.rows) / rate : 0;
}

std::string PercentWords(const ProgressState& state)
{
    const double share = state.allRows == 0
                             ? 1
                             : static_cast<double>(state.rows) / static_cast<double>(state.allRows);
    char text[16];
    // Rounded down: all is done only when it is.
    std::snprintf(text, sizeof text, "%3.0f %%", std::floor(100 * share));
    return text;
}

std::string PageWords(const ProgressState& state)
{
    if (state.pages < 2)
        return {};
    return ", page " + std::to_string(state.page) + " of " + std::to_string(state.pages);
}

std::string RateWords(const ProgressState& state)
{
    char text[40];
    std::snprintf(text, sizeof text, ", %.0f rows/s", RateOf(state));
    return text;
}

std::string TimeWords(const ProgressState& state)
{
    const auto seconds = static_cast<unsigned long long>(std::ceil(SecondsLeft(state)));
    char text[48];
    if (seconds < 3600)
        std::snprintf(text, sizeof text, ", %llu:%02llu left", seconds / 60, seconds % 60);
    else
        std::snprintf(text, sizeof text, ", %llu:%02llu:%02llu left", seconds / 3600,
                      seconds / 60 % 60, seconds % 60);
    return text;
}

} // namespace

std::string ProgressLine(const ProgressState& state, std::size_t columns)
{
    std::string tail = ' ' + PercentWords(state);
    if (tail.size() > columns)
        return {};
    // The most wanted first.
    for (const std::string& words : {TimeWords(state), PageWords(state), RateWords(state)}) {
        if (tail.size() + words.size() > columns)
            break;
        tail += words;
    }
    const std::size_t room = columns - tail.size();
    const std::string head = programName + Shown(state.label);
    if (ShownColumns(head) <= room)
        return head + tail;
    const std::string start = std::string(programName) + cutMark;
    if (room < start.size() + leastLabelColumns)
        return tail.substr(1);
    return start + LastColumns(Shown(state.label), room - start.size()) + tail;
}

std::string ProgressJson(const ProgressState& state)
{
    const Json json = {{"task", state.label},
                       {"page", state.page},
                       {"pages", state.pages},
                       {"rows_done", state.rows},
                       {"rows_total", state.allRows},
                       {"rate", std::round(RateOf(state))},
                       {"seconds_left", std::round(SecondsLeft(state) * 10) / 10}};
    return json.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace zvk::Pelkraft::Client
