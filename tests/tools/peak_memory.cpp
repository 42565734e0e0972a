// Runs a command, and prints the most memory that it held at once and the time it took. Ends with
// the command's own code, or with 1 if it took more than the limit.
//   peak_memory KIBIBYTES COMMAND [ARGUMENT...]

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fputs("usage: peak_memory KIBIBYTES COMMAND [ARGUMENT...]\n", stderr);
        return 2;
    }
    const long limit = std::strtol(argv[1], nullptr, 10);
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        execvp(argv[2], argv + 2);
        _exit(127);
    }
    int status = 0;
    rusage usage = {};
    if (child < 0 || wait4(child, &status, 0, &usage) != child)
        return 126;
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("peak %ld KiB of %ld KiB, %.1f s\n", usage.ru_maxrss, limit, seconds);
    if (!WIFEXITED(status))
        return 125;
    if (WEXITSTATUS(status) != 0)
        return WEXITSTATUS(status);
    return usage.ru_maxrss <= limit ? 0 : 1;
}
