#pragma once

#include <memory>

#include "tools/pelkraft/subcommand.h"

namespace zvk::Pelkraft::Client {

// pelkraft pattern FILE [options]
std::unique_ptr<ISubcommand> MakePatternCommand();

} // namespace zvk::Pelkraft::Client
