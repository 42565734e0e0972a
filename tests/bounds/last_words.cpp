#include "tests/bounds/last_words.h"

#include <csignal>
#include <cstdio>
#include <utility>

namespace zvk::Pelkraft::TestSupport {
namespace {

#if defined(SIGBUS)
constexpr int faults[] = {SIGSEGV, SIGBUS};
#else
constexpr int faults[] = {SIGSEGV};
#endif

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
    for (const int fault : faults)
        std::signal(fault, Speak);
}

LastWords::~LastWords()
{
    for (const int fault : faults)
        std::signal(fault, SIG_DFL);
    speaker = nullptr;
}

} // namespace zvk::Pelkraft::TestSupport
