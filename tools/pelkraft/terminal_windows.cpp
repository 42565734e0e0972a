#include "tools/pelkraft/terminal.h"

#include <windows.h>

namespace zvk::Pelkraft::Client {

bool ErrorsAreSeen()
{
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

std::size_t ErrorColumns()
{
    CONSOLE_SCREEN_BUFFER_INFO information = {};
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &information) == 0)
        return 80;
    return static_cast<std::size_t>(information.dwSize.X);
}

// Not every console that takes the mode for escape sequences obeys them.
bool ErrorsTakeColours()
{
    return false;
}

void WipeLine()
{
    const HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
    CONSOLE_SCREEN_BUFFER_INFO information = {};
    if (GetConsoleScreenBufferInfo(console, &information) == 0)
        return;
    const COORD start = {0, information.dwCursorPosition.Y};
    DWORD count = 0;
    FillConsoleOutputCharacterW(console, L' ', static_cast<DWORD>(information.dwSize.X), start,
                                &count);
    SetConsoleCursorPosition(console, start);
}

} // namespace zvk::Pelkraft::Client
