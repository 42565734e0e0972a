#pragma once

namespace zvk::Pelkraft::Client {

enum class ProgressForm
{
    // A line on a terminal.
    Auto,
    Never,
    // A JSON object a line, for programs.
    Json,
};

// Tells how much the program says on the standard error stream, and in which form.
struct MessageStyle
{
    // Only errors are told.
    bool quiet = false;
    // Notes are told too, and each page of a warning.
    bool verbose = false;
    // Colours where a terminal shows them.
    bool colour = true;
    ProgressForm progress = ProgressForm::Auto;
};

// Every run of the program begins with the plain style; the common options set another.
void SetMessageStyle(const MessageStyle& newStyle);
const MessageStyle& GetMessageStyle();

} // namespace zvk::Pelkraft::Client
