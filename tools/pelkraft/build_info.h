#pragma once

namespace CLI {
class App;
}

namespace zvk::Pelkraft::Client {

// Adds --version and --buildinfo, which print and end the program.
void AddBuildInfo(CLI::App& program);

} // namespace zvk::Pelkraft::Client
