#pragma once

#include "tools/pelkraft/subcommand.h"

#include <memory>

namespace zvk::Pelkraft::Client {

// pelkraft pattern FILE [options]
std::unique_ptr<ISubcommand> MakePatternCommand();

} // namespace zvk::Pelkraft::Client
