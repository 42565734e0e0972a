#pragma once

#include "tools/pelkraft/subcommand.h"

#include <memory>

namespace zvk::Pelkraft::Client {

// The verb that says what a file holds.
std::unique_ptr<ISubcommand> MakeInfoCommand();

} // namespace zvk::Pelkraft::Client
