#include "tools/pelkraft/interrupt.h"

#include <windows.h>

namespace zvk::Pelkraft::Client {
namespace {

BOOL WINAPI NoteEvent(DWORD event)
{
    NoteInterrupt();
    // Once this returns, the system ends the program unless only a key was pressed. The command
    // ends it as soon as it has cleaned up.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        Sleep(INFINITE);
    return TRUE;
}

} // namespace

void CatchInterrupts()
{
    SetConsoleCtrlHandler(NoteEvent, TRUE);
}

} // namespace zvk::Pelkraft::Client
