#include "tests/bounds/last_words.h"

#include <csignal>
#include <cstdio>
#include <utility>

namespace zvk::Pelkraft::TestSupport {
namespace {

const std::function<std::string()>* speaker = nullptr;

// Nothing is left to lose: the program is about to end.
void Speak(int signal)
{
    std::signal(signal, SIG_DFL);
    if (speaker != nullptr)
        std::fprintf(stderr, "fault in: %s\n", (*speaker)().c_str());
    std::raise(signal);
}

} // namespace

LastWords::LastWords(std::function<std::string()> newTell) : tell(std::move(newTell))
{
    speaker = &tell;
    std::signal(SIGSEGV, Speak);
    std::signal(SIGBUS, Speak);
}

LastWords::~LastWords()
{
    std::signal(SIGSEGV, SIG_DFL);
    std::signal(SIGBUS, SIG_DFL);
    speaker = nullptr;
}

} // namespace zvk::Pelkraft::TestSupport
