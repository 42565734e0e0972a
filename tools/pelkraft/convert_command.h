#pragma once

#include "tools/pelkraft/subcommand.h"

#include <memory>

namespace zvk::Pelkraft::Client {

// pelkraft convert IN.tif OUT.tif [options]
std::unique_ptr<ISubcommand> MakeConvertCommand();

} // namespace zvk::Pelkraft::Client
