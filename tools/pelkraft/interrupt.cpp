#include "tools/pelkraft/interrupt.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/input_file.h"

#include <atomic>

namespace zvk::Pelkraft::Client {
namespace {

std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free);

} // namespace

void NoteInterrupt() noexcept
{
    interrupted = true;
}

void StopIfInterrupted(const std::string& outputPath)
{
    if (interrupted)
        throw Failure(ExitCode::Interrupted, OutputName(outputPath),
                      "interrupted; nothing was written");
}

} // namespace zvk::Pelkraft::Client
