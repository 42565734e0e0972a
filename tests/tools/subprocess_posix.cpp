#include "tests/tools/subprocess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace zvk::Pelkraft::TestSupport {
namespace {

#if defined(PELKRAFT_SANITIZED)
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif

std::string ReadWhole(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

void Redirect(const std::string& path, int descriptor)
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (file < 0 || dup2(file, descriptor) < 0)
        _exit(126);
}

} // namespace

Subprocess::Subprocess(const std::vector<std::string>& command, const std::string& scratchFolder)
    : Subprocess(command, scratchFolder, {})
{}

Subprocess::Subprocess(const std::vector<std::string>& command, const std::string& scratchFolder,
                       const std::function<void()>& prepare)
    : outputPath(scratchFolder + "/stdout"), errorPath(scratchFolder + "/stderr")
{
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);

    id = fork();
    if (id < 0)
        throw std::runtime_error("no process to be had");
    if (id == 0) {
        Redirect(outputPath, STDOUT_FILENO);
        Redirect(errorPath, STDERR_FILENO);
        if (prepare)
            prepare();
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
}

bool Subprocess::HasEnded() const
{
    siginfo_t information = {};
    return waitid(P_PID, static_cast<id_t>(id), &information, WEXITED | WNOHANG | WNOWAIT) != 0 ||
           information.si_pid == id;
}

void Subprocess::Interrupt(int number) const
{
    kill(static_cast<pid_t>(id), number);
}

Outcome Subprocess::Wait()
{
    int status = 0;
    if (waitpid(static_cast<pid_t>(id), &status, 0) != id)
        throw std::runtime_error("the process is gone");
    Outcome outcome;
    outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    outcome.signalNumber = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    outcome.output = ReadWhole(outputPath);
    outcome.errors = ReadWhole(errorPath);
    return outcome;
}

std::vector<int> Interrupts()
{
    return {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
}

Outcome RunTool(const std::string& scratchFolder, const std::vector<std::string>& arguments,
                unsigned long memoryBytes)
{
    std::vector<std::string> command = {PELKRAFT_TOOL};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const auto limitMemory = [=] {
        const rlimit limit = {memoryBytes, memoryBytes};
        if (memoryBytes != 0 && !sanitized && setrlimit(RLIMIT_DATA, &limit) != 0)
            _exit(126);
    };
    return Subprocess(command, scratchFolder, limitMemory).Wait();
}

} // namespace zvk::Pelkraft::TestSupport
