#pragma once

#include "tools/pelkraft/progress_line.h"

#include <chrono>

namespace zvk::Pelkraft::Client {

// Tells how far the work has come, in the form that the command line asks for: on a terminal a
// line, which the destructor wipes, or lines of JSON.
class Progress
{
public:
    Progress(std::string label, std::uint64_t allRows, int pages = 1);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Called ahead of the rows of each page.
    void StartPage() { ++startedPages; }
    void Advance(std::uint64_t rows);

private:
    enum class Form
    {
        None,
        Line,
        Objects,
    };
    static Form ChooseForm();
    void ShowLine();

    using Clock = std::chrono::steady_clock;
    ProgressState state;
    Form form;
    int startedPages = 0;
    // Letters of the line that is shown.
    std::size_t shownColumns = 0;
    Clock::time_point start;
    Clock::time_point lastTime;
};

} // namespace zvk::Pelkraft::Client
