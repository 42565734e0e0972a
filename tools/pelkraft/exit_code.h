#pragma once

namespace zvk::Pelkraft::Client {

// The program exits with one of these, which --help lists.
enum class ExitCode : int
{
    Done = 0,
    Warnings = 1,
    Usage = 2,
    BadInput = 3,
    BadPattern = 4,
    Unsupported = 5,
    ReadWrite = 6,
    Memory = 7,
    Interrupted = 130,
};

// The table of all codes for the end of a help text.
inline constexpr const char* exitCodeHelp =
    "Exit codes:\n"
    "  0    done, perhaps with warnings about tags\n"
    "  1    findings of check or in a pattern, ink above the limit of coverage, patterns that\n"
    "       differ, a mask that differs; or done with a warning about pixels: raw samples that\n"
    "       exceed the levels or steps, channels that no in-colour takes, in-colours whose ink\n"
    "       does not rise from step to step, so that they are not dithered\n"
    "  2    wrong usage\n"
    "  3    bad input file\n"
    "  4    bad pattern\n"
    "  5    conversion not supported\n"
    "  6    reading or writing failed\n"
    "  7    out of memory\n"
    "  130  interrupted; nothing was written\n";

} // namespace zvk::Pelkraft::Client
