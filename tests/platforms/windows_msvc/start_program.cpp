// A program begins here, since there is no C start-up to link with.
#include <cstdlib>

int main(int argc, char** argv);

extern "C" {

int __stdcall StartLibrary(void* module, unsigned long reason, void* reserved);
int __cdecl _configure_narrow_argv(int mode);

void StartProgram()
{
    constexpr int unexpanded = 1;
    _configure_narrow_argv(unexpanded);
    StartLibrary(nullptr, 1, nullptr);
    std::exit(main(*__p___argc(), *__p___argv()));
}
}
