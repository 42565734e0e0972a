#pragma once

#include "tools/pelkraft/subcommand.h"

#include <memory>

namespace zvk::Pelkraft::Client {

// The verb that measures how much ink lies where.
std::unique_ptr<ISubcommand> MakeCoverageCommand();

} // namespace zvk::Pelkraft::Client
