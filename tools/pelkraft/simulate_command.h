#pragma once

#include <memory>

#include "tools/pelkraft/subcommand.h"

namespace zvk::Pelkraft::Client {

// pelkraft simulate PATTERN IN.tif OUT.tif [options]
std::unique_ptr<ISubcommand> MakeSimulateCommand();

} // namespace zvk::Pelkraft::Client
