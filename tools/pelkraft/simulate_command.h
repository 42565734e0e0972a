#pragma once

#include "tools/pelkraft/subcommand.h"

#include <memory>

namespace zvk::Pelkraft::Client {

// pelkraft simulate PATTERN IN.tif OUT.tif [options]
std::unique_ptr<ISubcommand> MakeSimulateCommand();

} // namespace zvk::Pelkraft::Client
