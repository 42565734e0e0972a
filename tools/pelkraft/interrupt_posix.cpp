#include "tools/pelkraft/interrupt.h"

#include <csignal>

namespace zvk::Pelkraft::Client {
namespace {

extern "C" void NoteSignal(int)
{
    NoteInterrupt();
}

} // namespace

void CatchInterrupts()
{
    struct sigaction note = {};
    note.sa_handler = NoteSignal;
    sigemptyset(&note.sa_mask);
    // Calls that were under way go on: the bands ask for the note themselves.
    note.sa_flags = SA_RESTART;
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        struct sigaction present = {};
        // A program started with nohup keeps its deafness.
        if (sigaction(signalNumber, nullptr, &present) == 0 && present.sa_handler == SIG_IGN)
            continue;
        sigaction(signalNumber, &note, nullptr);
    }
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace zvk::Pelkraft::Client
