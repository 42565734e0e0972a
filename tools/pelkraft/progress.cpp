#include "tools/pelkraft/progress.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/message_style.h"
#include "tools/pelkraft/shown_text.h"
#include "tools/pelkraft/terminal.h"
#include "tools/pelkraft/text_output.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::chrono::milliseconds pause(100);

} // namespace

Progress::Form Progress::ChooseForm()
{
    const MessageStyle& style = GetMessageStyle();
    if (style.progress == ProgressForm::Json)
        return Form::Objects;
    const bool wanted = style.progress == ProgressForm::Auto && !style.quiet;
    return wanted && ErrorsAreSeen() ? Form::Line : Form::None;
}

Progress::Progress(std::string label, std::uint64_t allRows, int pages)
    : form(ChooseForm()), start(Clock::now()), lastTime(start - pause)
{
    state.label = std::move(label);
    state.allRows = allRows;
    state.pages = pages;
}

Progress::~Progress()
{
    if (shownColumns != 0)
        WipeLine();
    // Whatever ended ahead of its last row will say so itself.
    if (state.rows == state.allRows)
        PrintNote(state.label, SpeedWords(state.rows, Clock::now() - start));
}

void Progress::Advance(std::uint64_t rows)
{
    state.rows += rows;
    if (form == Form::None)
        return;
    const auto now = Clock::now();
    // Programs are told of the end too.
    const bool lastLine = form == Form::Objects && state.rows == state.allRows;
    if (now - lastTime < pause && !lastLine)
        return;
    lastTime = now;
    state.page = std::max(startedPages, 1);
    state.seconds = std::chrono::duration<double>(now - start).count();
    if (form == Form::Line) {
        ShowLine();
        return;
    }
    const std::string line = ProgressJson(state);
    [[maybe_unused]] const int ignored = WriteAll(standardError, line.data(), line.size());
}

void Progress::ShowLine()
{
    // A letter in the last column would move some terminals to the next line.
    const std::size_t room = std::max<std::size_t>(ErrorColumns(), 1) - 1;
    std::string line = ProgressLine(state, room);
    const std::size_t columns = ShownColumns(line);
    // A longer line before it would show its end, as far as that is still on the same line.
    if (const std::size_t before = std::min(shownColumns, room); columns < before)
        line.append(before - columns, ' ');
    shownColumns = std::max<std::size_t>(columns, 1);
    std::fprintf(stderr, "\r%s", line.c_str());
    std::fflush(stderr);
}

} // namespace zvk::Pelkraft::Client
