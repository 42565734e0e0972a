#pragma once

#include "tools/pelkraft/subcommand.h"

#include <memory>

namespace zvk::Pelkraft::Client {

// The verb that looks for what is wrong with files.
std::unique_ptr<ISubcommand> MakeCheckCommand();

} // namespace zvk::Pelkraft::Client
