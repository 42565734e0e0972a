#pragma once

namespace zvk::Pelkraft::Client {

// The whole program: parses the arguments, runs the verb and gives the code to end with. May be
// called again, with all that an earlier call noted of interrupts still in force.
int RunProgram(int argc, const char* const* argv);

} // namespace zvk::Pelkraft::Client
