#include "tools/pelkraft/program.h"

int main(int argc, char** argv)
{
    return zvk::Pelkraft::Client::RunProgram(argc, argv);
}
