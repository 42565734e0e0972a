#include "tools/pelkraft/interrupt.h"

#include "tools/pelkraft/failure.h"

#include <csignal>

namespace zvk::Pelkraft::Client {
namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void NoteInterrupt(int)
{
    interrupted = 1;
}

} // namespace

void CatchInterrupts()
{
    struct sigaction note = {};
    note.sa_handler = NoteInterrupt;
    sigemptyset(&note.sa_mask);
    // Calls that were under way go on: the bands ask for the note themselves.
    note.sa_flags = SA_RESTART;
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction present = {};
        // A program started with nohup keeps its deafness.
        if (sigaction(signalNumber, nullptr, &present) == 0 && present.sa_handler == SIG_IGN)
            continue;
        sigaction(signalNumber, &note, nullptr);
    }
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

void StopIfInterrupted(const std::string& outputPath)
{
    if (interrupted != 0)
        throw Failure(ExitCode::Interrupted, outputPath, "interrupted; nothing was written");
}

} // namespace zvk::Pelkraft::Client
