#pragma once

#include <string>

namespace CLI {
class App;
}

namespace zvk::Pelkraft::Client {

// The level of the processor that the library goes by: "7, AVX-512".
std::string LevelText();

// Adds --version and --buildinfo, which print and end the program.
void AddBuildInfo(CLI::App& program);

} // namespace zvk::Pelkraft::Client
